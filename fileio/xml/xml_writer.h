/* The elements and attributes of an XML document on their way out, one blank of indentation a level. */
#pragma once

#include <string_view>

#include "fileio/stream/output.h"

namespace tovik::fileio {

/* How a document stands to a text. */
enum class XmlText { utf8, latin1, impossible };
XmlText xml_text(std::string_view text);

class XmlWriter {
 public:
  /* latin1: the document declares iso-8859-1. */
  XmlWriter(TextWriter& out, bool latin1);

  void open(std::string_view name);  // a container: <name>
  void close(std::string_view name);
  /* A container with attributes, which stand between the two. */
  void begin_container(std::string_view name);
  void end_of_attributes();
  /* An empty element with attributes; each on a line of its own when `tall`. */
  void begin(std::string_view name, bool tall = false);
  void end();
  void attribute(std::string_view name, std::string_view text);
  void attribute(std::string_view name, int value);
  void attribute(std::string_view name, double value);
  void open_with_version(std::string_view name, std::string_view version);

  /* From now on numbers have as many digits as read back as the same. */
  void use_all_digits() { all_digits_ = true; }
  bool finite() const { return finite_; }

 private:
  void indent();
  void start_attribute(std::string_view name);
  void escaped(std::string_view text);

  TextWriter& out_;
  int level_ = 0;
  bool tall_ = false;
  bool finite_ = true;
  bool all_digits_ = false;
};

}  // namespace tovik::fileio
