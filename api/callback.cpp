/* Registration of callbacks and of the caller's terminate flag, and what a running callback may ask for. */
#include "env/entry.h"
#include "lp/binding/callback_frame.h"

using namespace tovik;

int TVKsetlpcallbackfunc(EnvHandle env, int (*func)(ConstEnvHandle, void*, int, void*), void* handle) {
  return with_environment(env, [&](Environment& e) -> Status {
    e.callbacks.lp = func;
    e.callbacks.lp_handle = handle;
    return 0;
  });
}

int TVKgetlpcallbackfunc(ConstEnvHandle env, int (**func_p)(ConstEnvHandle, void*, int, void*),
                         void** handle_p) {
  return with_environment(env, [&](Environment& e) -> Status {
    if (func_p != nullptr) *func_p = e.callbacks.lp;
    if (handle_p != nullptr) *handle_p = e.callbacks.lp_handle;
    return 0;
  });
}

int TVKsetprofcallbackfunc(EnvHandle env, void (*func)(ConstEnvHandle, int, void*), void* handle) {
  return with_environment(env, [&](Environment& e) -> Status {
    e.callbacks.profile = func;
    e.callbacks.profile_handle = handle;
    return 0;
  });
}

int TVKsetterminate(EnvHandle env, volatile int* terminate_p) {
  const auto store = [&](Environment& e) -> Status {
    e.callbacks.terminate = terminate_p;
    return 0;
  };
  return with_environment(env, store, CallbackContext::allowed);
}

namespace {

constexpr int kLastContext = 113;

/* Items of contexts that a callback may ask for while an informational one runs. */
bool allowed_in_info_callback(int wherefrom, int item) {
  const bool context = wherefrom == 101 || (wherefrom >= 107 && wherefrom <= 111);
  if (!context) return false;
  for (const int allowed : {19, 109, 113, 114, 116, 118, 121, 123, 125}) {
    if (item == allowed) return true;
  }
  return (item >= 101 && item <= 106) || (item >= 127 && item <= 132);
}

}  // namespace

int TVKgetcallbackinfo(ConstEnvHandle env, void* cbdata, int wherefrom, int whichinfo, void* result_p) {
  if (wherefrom < 1 || wherefrom > kLastContext) return TVK_ERROR_BAD_ARGUMENT;
  const auto write = [&](Environment& e) -> Status {
    if (cbdata == nullptr || e.callback_frame == nullptr || !e.callback_frame->belongs_to(cbdata, wherefrom))
      return TVK_ERROR_CALLBACK;
    if (result_p == nullptr) return TVK_ERROR_NULL_POINTER;
    return e.callback_frame->write(whichinfo, result_p);
  };
  return with_environment(
      env, write,
      allowed_in_info_callback(wherefrom, whichinfo) ? CallbackContext::allowed : CallbackContext::refused);
}
