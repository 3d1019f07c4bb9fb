/* The layout of SAV files, as docs/sav-format.md tells it: a prologue of 16 bytes, then sections, each one
 * array of numbers of one type, the last one the checksum. All numbers are little-endian. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "env/sav_signature.h"

namespace tovik::fileio::sav {

/* Behind the signature. A transfer that changes line ends, stops at a control-Z or drops eighth bits
 * shows. */
inline constexpr std::string_view kTransferMark{"\r\n\x1a\x89\0", 5};

inline constexpr std::size_t kPrologue = 16;  // line feed, signature, mark, 0, major, minor version
inline constexpr std::uint16_t kMajor = 1;    // readers of another one cannot read the file
inline constexpr std::uint16_t kMinor = 0;    // of additions that every reader of this major version may skip

inline constexpr std::size_t kSectionHeader = 16;  // kind 4, type 1, flags 1, zero 2, count 8
inline constexpr std::size_t kAlignment = 8;       // of every header and array in the file
inline constexpr std::uint8_t kOptional = 1;       // flag: who does not know the kind may skip the section

/* Four letters as they stand in the file. */
constexpr std::uint32_t kind(const char (&letters)[5]) {
  std::uint32_t value = 0;
  for (std::size_t k = 4; k-- > 0;) value = value << 8 | static_cast<unsigned char>(letters[k]);
  return value;
}
inline constexpr std::uint32_t kEnd = kind("END.");

/* Kinds of one family of sparse vectors. */
struct VectorKinds {
  std::uint32_t start, index, value;
};
inline constexpr VectorKinds kMatrix{kind("MSTA"), kind("MIDX"), kind("MVAL")};
inline constexpr VectorKinds kSets{kind("SSTA"), kind("SIDX"), kind("SVAL")};
inline constexpr VectorKinds kStarts{kind("TSTA"), kind("TIDX"), kind("TVAL")};

struct RowKinds {
  VectorKinds terms;
  std::uint32_t rhs, sense, names;
};
inline constexpr RowKinds kIndicators{
    {kind("ISTA"), kind("IIDX"), kind("IVAL")}, kind("IRHS"), kind("ISEN"), kind("INAM")};
inline constexpr RowKinds kUserCuts{
    {kind("USTA"), kind("UIDX"), kind("UVAL")}, kind("URHS"), kind("USEN"), kind("UNAM")};
inline constexpr RowKinds kLazy{
    {kind("LSTA"), kind("LIDX"), kind("LVAL")}, kind("LRHS"), kind("LSEN"), kind("LNAM")};
inline constexpr RowKinds kQuadraticRows{
    {kind("QSTA"), kind("QIDX"), kind("QVAL")}, kind("QRHS"), kind("QSEN"), kind("QNAM")};

/* Letter of an array's type in the file. */
template <class T>
inline constexpr char kTypeLetter = '\0';
template <>
inline constexpr char kTypeLetter<char> = 'c';
template <>
inline constexpr char kTypeLetter<std::int32_t> = 'i';
template <>
inline constexpr char kTypeLetter<std::int64_t> = 'l';
template <>
inline constexpr char kTypeLetter<double> = 'd';

/* Bytes of one element; 0 for a letter that is none. */
constexpr std::size_t size_of_type(char letter) {
  return letter == 'c' ? 1 : letter == 'i' ? 4 : letter == 'l' || letter == 'd' ? 8 : 0;
}

}  // namespace tovik::fileio::sav
