/* Registration of callbacks and of the caller's terminate flag. */
#include "env/entry.h"

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
