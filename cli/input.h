/* A model file under the name that the library can open. Standard input ("-") is copied into a temporary
 * file, whose name tells the library how it is compressed; the file is removed when the object ends. */
#pragma once

#include <memory>
#include <stdexcept>
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

/* The reader ignored text of the file: the model is not what somebody wrote. */
struct DroppedText : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/* Whether the name is that of a network file: .net, .min, .dimacs or .dmx, compressed or not. */
bool is_network_file(const std::string& file);

/* Reads a model file, "-" is standard input. LibraryError, std::system_error. */
void read_model_file(const Model& model, const std::string& file);
/* DroppedText where the last reading ignored text and nobody asked to be `lenient`. */
void refuse_dropped_text(const Model::ReadWarnings& warnings, bool lenient);

}  // namespace tovik::cli
