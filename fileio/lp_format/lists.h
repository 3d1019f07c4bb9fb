/* The sections of an LP file that list columns: types and special ordered sets. */
#pragma once

#include <string>

#include "fileio/lp_format/builder.h"
#include "fileio/lp_format/scanner.h"

namespace tovik::fileio::lp_format {

/* Integers, binaries, generals, semi-continuous columns: names, any number a line. */
class TypeReader {
 public:
  TypeReader(Scanner& scanner, Builder& builder, Messages& messages)
      : scanner_(scanner), builder_(builder), messages_(messages) {}
  bool read_section(Section section);  // false after a failure

 private:
  void declare(Section section, int column);

  Scanner& scanner_;
  Builder& builder_;
  Messages& messages_;
};

/* Sets: an optional name and ':', "S1 ::" or "S2 ::", then members as column:weight. */
class SetReader {
 public:
  SetReader(Scanner& scanner, Builder& builder, Messages& messages)
      : scanner_(scanner), builder_(builder), messages_(messages) {}
  bool read_section();  // false after a failure

 private:
  bool read_statement();
  bool begin_set(const std::string& name, const std::string& type, int line);
  bool read_member(const std::string& name);
  bool read_word(std::string& word);
  bool expect_colon();
  /* Whether `word` is a set type with "::" behind it; the colons are then taken. */
  bool take_type_mark(const std::string& word, bool& is_type);

  Scanner& scanner_;
  Builder& builder_;
  Messages& messages_;
  bool has_set_ = false;
};

}  // namespace tovik::fileio::lp_format
