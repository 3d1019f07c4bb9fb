/* A model file under the name that the library can open. Standard input ("-") is copied into a temporary
 * file, whose name tells the library how it is compressed; the file is removed when the object ends. */
#pragma once

#include <memory>
#include <string>

#include "cli/library.h"

namespace tovik::cli {

class Input {
 public:
  /* std::system_error when standard input cannot be copied. */
  explicit Input(const std::string& file);
  ~Input();
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;
  const std::string& path() const { return path_; }

  /* Removes the temporary file, if there is one, when the program ends without destroying its objects.
   * Async-safe. */
  static void remove_temporary_file();

 private:
  class TemporaryFile;
  std::string path_;
  std::unique_ptr<TemporaryFile> temporary_;
};

/* Reads a model file, "-" is standard input. LibraryError, std::system_error. */
void read_model_file(const Model& model, const std::string& file);

}  // namespace tovik::cli
