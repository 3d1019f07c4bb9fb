/* The public header in a C99 program, and the C calling conventions in use: handles, texts, callbacks. */
#include <stdio.h>
#include <string.h>
#include <tovik.h>

static int failures = 0;

static void expect(int holds, const char* what) {
  if (!holds) {
    ++failures;
    fprintf(stderr, "failed: %s\n", what);
  }
}

static void collect(void* handle, const char* text) {
  strcat((char*)handle, text);
}

int main(void) {
  char printed[1000] = "";
  char name[TVK_PARAM_NAME_MAX];
  int status = -1, value = 0;
  ChannelHandle errors = NULL;
  EnvHandle env = TVKopenTOVIK(&status);
  expect(status == 0 && env != NULL, "open");
  expect(TVKgetchannels(env, NULL, NULL, &errors, NULL) == 0, "channels");
  expect(TVKaddfuncdest(env, errors, printed, collect) == 0, "function destination");
  expect(TVKsetintparam(env, TVK_PARAM_ITLIM, 500) == 0, "set");
  expect(TVKgetintparam(env, TVK_PARAM_ITLIM, &value) == 0 && value == 500, "get");
  expect(TVKgetparamname(env, TVK_PARAM_ITLIM, name) == 0 && strcmp(name, "TVK_PARAM_ITLIM") == 0, "name");
  expect(TVKsetintparam(env, TVK_PARAM_ITLIM, -1) == 1014, "range");
  expect(strcmp(printed, "TOVIK Error  1014: Parameter value too small.\n") == 0, "error line");
  expect(TVKcloseTOVIK(&env) == 0 && env == NULL, "close");
  return failures != 0;
}
