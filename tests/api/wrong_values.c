/* Loaded before the library, this makes TVKgetx tell a slightly wrong value of column 0, as a faulty
 * optimizer would: the program must notice. */
#define _GNU_SOURCE
#include <dlfcn.h>

#include "tovik.h"

TVK_API int TVKgetx(ConstEnvHandle env, ConstProbHandle lp, double* x, int begin, int end) {
  int (*real)(ConstEnvHandle, ConstProbHandle, double*, int, int);
  int code;
  *(void**)&real = dlsym(RTLD_NEXT, "TVKgetx");
  code = real(env, lp, x, begin, end);
  if (code == 0 && begin == 0) x[0] += 1e-3;
  return code;
}
