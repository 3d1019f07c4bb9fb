/* Feeds bytes to the reader of parameter files: what it takes must be written and read again as the same
 * settings. Seeds: tests/fileio/corpus/params. */
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "fuzz/reader_harness.h"
#include "param/hidden.h"

namespace {

std::string content(const std::string& name) {
  std::ostringstream text;
  text << std::ifstream(name, std::ios::binary).rdbuf();
  return text.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string name =
      std::filesystem::temp_directory_path() / ("tovik-fuzz-" + std::to_string(getpid()) + ".prm");
  std::ofstream(name, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  static EnvHandle env = [] {
    int status = 0;
    return TVKopenTOVIK(&status);
  }();
  if (TVKreadcopyparam(env, name.c_str()) == 0) {
    TVKsetintparam(env, TVK_PARAM_SCRIND, 0);
    TVKsetintparam(env, tovik::param::kNamesOnly, 0);  // else numbers, which the writer uses, are no names
    tovik::fileio::fuzz::require(TVKwriteparam(env, name.c_str()) == 0);
    const std::string first = content(name);
    tovik::fileio::fuzz::require(TVKreadcopyparam(env, name.c_str()) == 0);
    tovik::fileio::fuzz::require(TVKwriteparam(env, name.c_str()) == 0 && content(name) == first);
  }
  TVKsetdefaults(env);
  std::remove(name.c_str());
  return 0;
}
