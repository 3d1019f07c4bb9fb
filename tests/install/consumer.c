/* Uses an installed library from C: opens an environment and prints the library's version. */
#include <stdio.h>
#include <tovik.h>

int main(void) {
  int status = 0;
  EnvHandle env = TVKopenTOVIK(&status);
  if (env == NULL) return 1;
  printf("C: TOVIK %s\n", TVKversion(env));
  return TVKcloseTOVIK(&env);
}
