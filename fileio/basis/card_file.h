/* What basis, vector and priority-order files share: a NAME line, records that begin with a blank, ENDATA;
 * comment lines that begin with '*'; and names of columns and rows. */
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "fileio/record/model_reader.h"
#include "fileio/record/writer_names.h"
#include "model/base/names.h"
#include "model/store/default_names.h"

namespace tovik::fileio {

/* The records of such a file.
 *
 *   while (cards.next()) use(cards.fields());
 *   if (cards.failure()) ... */
class CardFile {
 public:
  CardFile(ByteSource& source, ReaderLog& log) : lines_(source, kLineLimit + 2), log_(log) {}

  bool next();  // false at ENDATA, at the end of the data (with a warning) and after a failure
  const std::vector<std::string_view>& fields() const { return fields_; }
  int line() const { return lines_.number(); }
  const ReadFailure& failure() const { return failure_; }
  /* Notes a failure of this line and returns false. */
  bool fail(int code) { return fail(ReadFailure::at(code, line())); }
  bool fail(int code, std::string_view text) { return fail(ReadFailure::at(code, line(), text)); }
  bool fail(ReadFailure failure);
  /* The number that a field holds; 1434. */
  bool read_number(std::string_view field, double& value);

  /* Warnings about names, of which the first 20 are printed. */
  void unknown_name(std::string_view name, const char* kind);  // "a variable", "a row"
  void close();                                                // tells how many were not printed

 private:
  static constexpr int kLineLimit = 65535;
  LineReader lines_;
  ReaderLog& log_;
  std::vector<std::string_view> fields_;
  ReadFailure failure_;
  WarningLimit unknown_;
};

/* The names that the MPS writer gives to the items of a family; tells when they are generated. */
WriterNames card_names(const model::NameTable& table, const model::NameFamily& family, int count,
                       ReaderLog& log);

/* Finds the items of a model by these names. */
class CardNames {
 public:
  explicit CardNames(const model::NameTable& names);
  int find(std::string_view name) const;  // -1 when there is none

 private:
  int find_rewritten(std::string_view name) const;
  const model::NameTable& names_;
  bool rewritten_;
};

}  // namespace tovik::fileio
