/* What a running callback may ask for. */
#include "env/entry.h"

using namespace tovik;

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
    RunningCallback* const callback = e.running_callback;
    if (cbdata == nullptr || callback == nullptr || callback->cbdata() != cbdata ||
        callback->wherefrom() != wherefrom)
      return TVK_ERROR_CALLBACK;
    if (result_p == nullptr) return TVK_ERROR_NULL_POINTER;
    return callback->write(whichinfo, result_p);
  };
  return with_environment(
      env, write,
      allowed_in_info_callback(wherefrom, whichinfo) ? CallbackContext::allowed : CallbackContext::refused);
}
