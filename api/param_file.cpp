#include "env/entry.h"
#include "fileio/params/file.h"

using namespace tovik;
using fileio::Omitted;

int TVKreadcopyparam(EnvHandle env, const char* filename) {
  return with_environment(env, [&](Environment& e) { return fileio::read_parameter_file(e, filename); });
}

int TVKwriteparam(ConstEnvHandle env, const char* filename) {
  return with_environment(
      env, [&](Environment& e) { return fileio::write_parameter_file(e, filename, Omitted::nothing); });
}

int TVKEwriteparam(EnvHandle env, const char* filename) {
  return with_environment(env, [&](Environment& e) {
    return fileio::write_parameter_file(e, filename, Omitted::screen_and_callback_form);
  });
}
