/* Sections of a SAV file into the arrays that they are for. */
#include <algorithm>
#include <cstring>
#include <variant>

#include "fileio/sav/file.h"
#include "fileio/sav/format.h"
#include "fileio/sav/input.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

using namespace sav;

using Array =
    std::variant<std::vector<char>*, std::vector<int>*, std::vector<std::int64_t>*, std::vector<double>*>;

struct Slot {
  std::uint32_t kind;
  Array array;
  bool filled = false;
};

class Slots {
 public:
  explicit Slots(SavFile& file) {
    add_model(file);
    add_families(file);
    add_state(file.state);
  }
  Slot* find(std::uint32_t kind) {
    const auto found = std::ranges::find(slots_, kind, &Slot::kind);
    return found == slots_.end() ? nullptr : &*found;
  }

 private:
  template <class T>
  void add(std::uint32_t kind, std::vector<T>& to) {
    slots_.push_back({kind, &to});
  }
  void add(const VectorKinds& kinds, SavVectors& to) {
    add(kinds.start, to.start);
    add(kinds.index, to.index);
    add(kinds.value, to.value);
  }
  void add(const RowKinds& kinds, SavRows& to) {
    add(kinds.terms, to.terms);
    add(kinds.rhs, to.rhs);
    add(kinds.sense, to.sense);
    add(kinds.names, to.names);
  }
  void add_model(SavFile& file) {
    add(kind("PROB"), file.sizes);
    add(kind("POFF"), file.offset);
    add(kind("PNAM"), file.problem_name);
    add(kind("ONAM"), file.objective_name);
    add(kind("BNAM"), file.bounds_name);
    add(kind("CCST"), file.objective);
    add(kind("CLOW"), file.lower);
    add(kind("CUPP"), file.upper);
    add(kind("CTYP"), file.types);
    add(kind("CNAM"), file.column_names);
    add(kind("RRHS"), file.rhs);
    add(kind("RSEN"), file.sense);
    add(kind("RRNG"), file.range);
    add(kind("RNAM"), file.row_names);
    add(kMatrix, file.matrix);
  }
  void add_families(SavFile& file) {
    add(kSets, file.sets);
    add(kind("STYP"), file.set_types);
    add(kind("SNAM"), file.set_names);
    add(kIndicators, file.indicators);
    add(kind("ICOL"), file.switches);
    add(kind("ICMP"), file.complemented);
    add(kUserCuts, file.user_cuts);
    add(kLazy, file.lazy_constraints);
    add(kQuadraticRows, file.quadratic_rows);
    add(kind("QPST"), file.products.start);
    add(kind("QPCL"), file.products.column);
    add(kind("QPOT"), file.products.other);
    add(kind("QPVL"), file.products.value);
    add(kind("FCOL"), file.form_column);
    add(kind("FROW"), file.form_row);
    add(kind("FVAL"), file.form_value);
    add(kind("OCOL"), file.order_column);
    add(kind("OPRI"), file.order_priority);
    add(kind("ODIR"), file.order_direction);
    add(kStarts, file.starts);
    add(kind("TEFF"), file.start_efforts);
    add(kind("TNAM"), file.start_names);
  }
  void add_state(SavState& state) {
    add(kind("BCOL"), state.column_status);
    add(kind("BROW"), state.row_status);
    add(kind("VPRI"), state.primal);
    add(kind("VROW"), state.row_primal);
    add(kind("VDUA"), state.dual);
    add(kind("VRDU"), state.row_dual);
    add(kind("NHED"), state.norm_head);
    add(kind("NDUA"), state.dual_norms);
    add(kind("XINT"), state.counts);
    add(kind("XNUM"), state.numbers);
    add(kind("XVAL"), state.x);
    add(kind("XSLK"), state.slack);
    add(kind("XDUA"), state.pi);
    add(kind("XRED"), state.dj);
    add(kind("XRAY"), state.ray);
    add(kind("XFAR"), state.farkas);
  }

  std::vector<Slot> slots_;
};

struct SectionHeader {
  std::uint32_t kind;
  char type;
  std::uint8_t flags;
  std::uint16_t zero;
  std::uint64_t count;
};

class SavReader {
 public:
  SavReader(ByteSource& source, SavFile& file) : in_(source), slots_(file) {}

  int read() {
    if (const int code = read_prologue(); code != 0) return code;
    for (;;) {
      SectionHeader header{};
      if (!take_header(header)) return kTooShort;
      if (header.kind == kEnd) return read_end(header);
      if (const int code = read_section(header); code != 0) return code;
    }
  }

 private:
  static constexpr int kTooShort = TVK_ERROR_SAV_FILE_TOO_SHORT;
  static constexpr int kUnfit = TVK_ERROR_FILE_FORMAT;

  int read_prologue() {
    char begin[1 + kSavSignature.size() + kTransferMark.size()];
    if (!in_.take(begin, sizeof begin)) return TVK_ERROR_NOT_SAV_FILE;
    const std::string_view text(begin, sizeof begin);
    const bool fits =
        text[0] == '\n' && text.substr(1).starts_with(kSavSignature) && text.ends_with(kTransferMark);
    if (!fits) return TVK_ERROR_NOT_SAV_FILE;
    std::uint16_t major = 0, minor = 0;
    char zero = 0;
    if (!in_.take(&zero, 1) || !in_.take_number(major) || !in_.take_number(minor)) return kTooShort;
    return zero == 0 && major == kMajor ? 0 : kUnfit;
  }

  bool take_header(SectionHeader& header) {
    char pair[2];
    if (!in_.take_number(header.kind) || !in_.take(pair, sizeof pair) || !in_.take_number(header.zero) ||
        !in_.take_number(header.count))
      return false;
    header.type = pair[0];
    header.flags = static_cast<std::uint8_t>(pair[1]);
    return true;
  }

  int read_section(const SectionHeader& header) {
    const std::size_t size = size_of_type(header.type);
    if (size == 0 || header.zero != 0) return kUnfit;
    Slot* const slot = slots_.find(header.kind);
    if (slot == nullptr) {
      if ((header.flags & kOptional) == 0) return kUnfit;
      if (header.count > kLargest || !in_.skip(header.count * size)) return kTooShort;
    } else if (const int code = fill(*slot, header); code != 0) {
      return code;
    }
    const std::uint64_t beyond = header.count % kAlignment * size % kAlignment;
    return in_.skip((kAlignment - beyond) % kAlignment) ? 0 : kTooShort;
  }

  int fill(Slot& slot, const SectionHeader& header) {
    if (slot.filled) return kUnfit;
    slot.filled = true;
    return std::visit(
        [&]<class T>(std::vector<T>* array) {
          if (header.type != kTypeLetter<T>) return kUnfit;
          return in_.take_array(header.count, *array) ? 0 : kTooShort;
        },
        slot.array);
  }

  int read_end(const SectionHeader& header) {
    const std::uint64_t expected = in_.checksum();
    std::uint64_t stored = 0;
    if (!in_.take_number(stored)) return kTooShort;
    const bool fits = header.type == kTypeLetter<std::int64_t> && header.count == 1 && stored == expected;
    return fits && in_.at_end() ? 0 : kUnfit;
  }

  static constexpr std::uint64_t kLargest = std::uint64_t{1} << 56;

  Input in_;
  Slots slots_;
};

}  // namespace

int read_sav(ByteSource& source, SavFile& file) {
  if (const int code = SavReader(source, file).read(); code != 0) return code;
  return check_sav(file);
}

}  // namespace tovik::fileio
