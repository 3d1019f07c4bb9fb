/* Opening and closing environments, child environments, and what can be asked of an environment. */
#include <pthread.h>
#include <cstdlib>

#include <algorithm>

#include "env/entry.h"
#include "env/handles.h"
#include "fileio/params/file.h"
#include "param/registry.h"

using namespace tovik;

namespace {

void show_on_screen(Environment& env, bool on) {
  /* 0 and 1 are always accepted, and memory that is short is told by bad_alloc. */
  static_cast<void>(param::set_integer(env, TVK_PARAM_SCRIND, on ? 1 : 0));
}

/* The file named by the process environment overrides the defaults. What is wrong with it stays unseen. */
void read_override_file(Environment& env) {
  const char* path = secure_getenv("MERU_TOVIK_PARAMETER_FILE");
  if (path == nullptr) return;
  show_on_screen(env, true);
  message(env.warning_channel, "Reading override parameter file '%s' ", path);
  show_on_screen(env, false);
  const bool read = guarded([&] { return fileio::read_parameter_file(env, path); }).ok();
  show_on_screen(env, true);
  message(env.warning_channel, read ? "succeeded.\n" : "failed.\n");
  env.warning_channel->flush();
  show_on_screen(env, false);
}

Status open_master(std::unique_ptr<Environment>& opened) {
  auto env = std::make_unique<Environment>();
  if (Status status = param::install(*env); !status.ok()) return status;
  env->random.seed(1);
  env->ready = true;
  read_override_file(*env);
  opened = std::move(env);
  return 0;
}

int free_thread_number(const Environment& parent) {
  int number = 1;
  const auto taken = [&](const auto& child) { return child->thread_number == number; };
  while (std::any_of(parent.children.begin(), parent.children.end(), taken)) ++number;
  return number;
}

Status open_child(Environment& parent, Environment*& opened) {
  constexpr int kRandomSeed = 1124;
  if (parent.parent != nullptr) return TVK_ERROR_CHILD_OF_CHILD;
  if (parent.children.size() >= static_cast<std::size_t>(thread_limit())) return TVK_ERROR_THREAD_LIMIT;
  auto child = std::make_unique<Environment>();
  if (Status status = param::install(*child); !status.ok()) return status;
  child->settings = parent.settings;
  child->callbacks = parent.callbacks;
  child->binding_handle = parent.binding_handle;
  child->parent = &parent;
  child->thread_number = free_thread_number(parent);
  child->random.seed(static_cast<std::uint64_t>(parent.settings.integer(kRandomSeed)));
  /* The child counts for itself, from where the parent stands, so that tick deadlines compare and no two
   * threads write one counter. */
  child->own_work = *parent.work;
  child->ready = true;
  opened = child.get();
  parent.children.push_back(std::move(child));
  return 0;
}

/* Not while a routine works in it: the caller is then inside a callback or a message function. */
Status may_be_freed(const Environment& env) {
  const bool busy = env.in_callback != 0 || !env.limits.empty() || env.delivering() || env.in_use();
  return busy ? TVK_ERROR_IN_INFO_CALLBACK : 0;
}

Status free_child(Environment& parent, EnvHandle& handle) {
  const auto is_handle = [&](const auto& child) { return to_handle(child.get()) == handle; };
  const auto found = std::find_if(parent.children.begin(), parent.children.end(), is_handle);
  if (found == parent.children.end()) return TVK_ERROR_NO_ENVIRONMENT;
  if (Status status = may_be_freed(**found); !status.ok()) return status;
  parent.children.erase(found);
  handle = nullptr;
  return 0;
}

template <class Value, class Get>
Value read_environment(ConstEnvHandle handle, Value invalid, Get&& get) {
  Environment* env = nullptr;
  return check_handles(handle, &env, In::callback_allowed) == 0 ? get(*env) : invalid;
}

}  // namespace

EnvHandle TVKopenTOVIK(int* status_p) {
  if (status_p == nullptr) return nullptr;
  std::unique_ptr<Environment> env;
  *status_p = guarded([&] { return open_master(env); }).code();
  return to_handle(env.release());
}

int TVKcloseTOVIK(EnvHandle* env_p) {
  if (env_p == nullptr) return TVK_ERROR_NULL_POINTER;
  std::unique_ptr<Environment> closing;
  const auto close = [&](Environment& env) -> Status {
    if (env.parent != nullptr) return TVK_ERROR_CLOSE_CHILD;
    if (Status status = may_be_freed(env); !status.ok()) return status;
    closing.reset(&env);
    return 0;
  };
  const int code = with_environment(*env_p, close);
  if (code == 0) *env_p = nullptr;
  return code;
}

EnvHandle TVKparenv(EnvHandle env, int* status_p) {
  Environment* child = nullptr;
  const int code = with_environment(env, [&](Environment& parent) -> Status {
    if (status_p == nullptr) return TVK_ERROR_NULL_POINTER;
    return open_child(parent, child);
  });
  if (status_p != nullptr) *status_p = code;
  return to_handle(child);
}

int TVKfreeparenv(EnvHandle env, EnvHandle* child_p) {
  return with_environment(env, [&](Environment& parent) -> Status {
    if (child_p == nullptr) return TVK_ERROR_NULL_POINTER;
    return free_child(parent, *child_p);
  });
}

const char* TVKversion(ConstEnvHandle env) {
  return read_environment<const char*>(env, nullptr, [](Environment&) { return kVersion; });
}

int TVKgettime(ConstEnvHandle env, double* time_p) {
  return with_environment(
      env,
      [&](Environment& e) -> Status {
        if (time_p == nullptr) return TVK_ERROR_NULL_POINTER;
        *time_p = clock_seconds(e);
        return 0;
      },
      In::callback_allowed);
}

int TVKEgetmaxthreads(ConstEnvHandle env) {
  return read_environment(env, 0, [](Environment&) { return thread_limit(); });
}

int TVKEgetThreadNumber(ConstEnvHandle env) {
  return read_environment(env, 0, [](Environment& e) { return e.thread_number; });
}

int TVKEsetJNI(EnvHandle env, void* handle) {
  return with_environment(env, [&](Environment& e) -> Status {
    e.binding_handle = handle;
    return 0;
  });
}

void* TVKEgetJNI(ConstEnvHandle env) {
  return read_environment<void*>(env, nullptr, [](Environment& e) { return e.binding_handle; });
}

void TVKEgeneric_lock(void* lock) {
  if (lock != nullptr) pthread_mutex_lock(static_cast<pthread_mutex_t*>(lock));
}

void TVKEgeneric_unlock(void* lock) {
  if (lock != nullptr) pthread_mutex_unlock(static_cast<pthread_mutex_t*>(lock));
}
