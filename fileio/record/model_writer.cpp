#include "fileio/record/model_writer.h"

namespace tovik::fileio {

std::string title(std::string_view problem_name) {
  std::string text(problem_name.substr(0, kMaxNameLength));
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < ' ') c = '_';
  }
  return text;
}

}  // namespace tovik::fileio
