#include "fileio/params/override_file.h"

#include <cstdlib>

#include "env/entry.h"
#include "fileio/params/file.h"
#include "include/tovik.h"
#include "param/registry.h"

namespace tovik::fileio {
namespace {

void show_on_screen(Environment& env, bool on) {
  /* 0 and 1 are always accepted, and memory that is short is told by bad_alloc. */
  static_cast<void>(param::set_integer(env, TVK_PARAM_SCRIND, on ? 1 : 0));
}

}  // namespace

void read_override_file(Environment& env) {
  const char* path = secure_getenv("MERU_TOVIK_PARAMETER_FILE");
  if (path == nullptr) return;
  show_on_screen(env, true);
  message(env.warning_channel, "Reading override parameter file '%s' ", path);
  show_on_screen(env, false);
  const bool read = guarded([&] { return read_parameter_file(env, path); }).ok();
  show_on_screen(env, true);
  message(env.warning_channel, read ? "succeeded.\n" : "failed.\n");
  env.warning_channel->flush();
  show_on_screen(env, false);
}

}  // namespace tovik::fileio
