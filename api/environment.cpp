/* Opening and closing environments, child environments, and what can be asked of an environment. */
#include <pthread.h>

#include <memory>
#include <utility>

#include "env/entry.h"
#include "env/handles.h"
#include "fileio/params/override_file.h"
#include "param/environments.h"

using namespace tovik;

namespace {

Status open_master(std::unique_ptr<Environment>& opened) {
  std::unique_ptr<Environment> env;
  if (const Status status = param::open_environment(env); !status.ok()) return status;
  fileio::read_override_file(*env);
  opened = std::move(env);
  return 0;
}

template <class Value, class Get>
Value read_environment(ConstEnvHandle handle, Value invalid, Get&& get) {
  Environment* env = nullptr;
  return check_handles(handle, &env, CallbackContext::allowed) == 0 ? get(*env) : invalid;
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
    if (Status status = may_be_freed(env, 1); !status.ok()) return status;
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
    return param::open_child(parent, child);
  });
  if (status_p != nullptr) *status_p = code;
  return to_handle(child);
}

int TVKfreeparenv(EnvHandle env, EnvHandle* child_p) {
  return with_environment(env, [&](Environment& parent) -> Status {
    if (child_p == nullptr) return TVK_ERROR_NULL_POINTER;
    if (const Status status = free_child(parent, from_handle(*child_p)); !status.ok()) return status;
    *child_p = nullptr;
    return 0;
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
      CallbackContext::allowed);
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
