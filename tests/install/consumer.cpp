// Uses an installed library from C++: a parameter set and read back.
#include <tovik.h>

#include <iostream>

int main() {
  int status = 0, limit = 0;
  EnvHandle env = TVKopenTOVIK(&status);
  if (env == nullptr || TVKsetintparam(env, TVK_PARAM_ITLIM, 12) != 0) return 1;
  if (TVKgetintparam(env, TVK_PARAM_ITLIM, &limit) != 0 || limit != 12) return 1;
  std::cout << "C++: TOVIK " << TVKversion(env) << '\n';
  return TVKcloseTOVIK(&env);
}
