/* The frame of every reader of XML documents: Expat with bounded memory and depth, exceptions held back while it runs, names as
 * the bytes that they were written from, numbers, look-up of columns and rows, warnings.
 *
 * A reader derives from it, gets each element by start() and end(), and sets failure_ to end the reading. */
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "fileio/record/model_reader.h"
#include "fileio/xml/xml_memory.h"
#include "model/store/model.h"

namespace tovik::fileio {

class XmlReader {
 public:
  explicit XmlReader(ReaderLog& log);
  XmlReader(const XmlReader&) = delete;
  XmlReader& operator=(const XmlReader&) = delete;
  virtual ~XmlReader() = default;

  /* 1425, 1434, and what the reader sets. Once. */
  ReadFailure run(ByteSource& source);

 protected:
  /* attributes: names and values by turns, null at the end. */
  virtual void start(std::string_view name, const XML_Char** attributes) = 0;
  virtual void end(std::string_view name) = 0;

  int line() const { return static_cast<int>(XML_GetCurrentLineNumber(parser_.get())); }
  std::string text(const char* bytes) const;
  /* absent: for a null text. 1434 becomes the failure where it is no number. */
  double number(const char* digits, double absent);
  /* How an element names a column or row; null: not told. */
  struct Identity {
    const char* name = nullptr;
    const char* index = nullptr;
  };
  /* Its position: by the name, where the model has names and the element tells one; of several items with one name the index
   * chooses. -1 after a warning, or a failure. */
  int resolve(const Identity& element, const model::NameTable& names, int count, bool column);
  template <class... Arguments>
  void warn(const char* format, Arguments... arguments) {
    if (warnings_.admit()) log_.warn(format, arguments...);
  }

  ReadFailure failure_;

 private:
  template <class Work>
  static void guarded(void* self, Work&& work);
  static void XMLCALL on_start(void* self, const XML_Char* name, const XML_Char** attributes);
  static void XMLCALL on_end(void* self, const XML_Char* name);
  static void XMLCALL on_declaration(void* self, const XML_Char*, const XML_Char* encoding, int);

  ReaderLog& log_;
  XmlMemory memory_;
  XmlParser parser_;
  bool out_of_memory_ = false;
  bool latin1_ = false;
  int depth_ = 0;
  WarningLimit warnings_;
};

}  // namespace tovik::fileio
