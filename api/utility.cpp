/* The standard library's services for callers that must share the library's run-time, and sorting of keys. */
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "include/tovik.h"

FILE* TVKfopen(const char* filename, const char* mode) {
  return std::fopen(filename, mode);
}

int TVKfclose(FILE* stream) {
  return std::fclose(stream);
}

int TVKfputs(const char* text, FILE* stream) {
  return std::fputs(text, stream);
}

void* TVKmalloc(size_t size) {
  return std::malloc(size);
}

void* TVKrealloc(void* ptr, size_t size) {
  return std::realloc(ptr, size);
}

void TVKfree(void* ptr) {
  std::free(ptr);
}

void* TVKmemcpy(void* dst, const void* src, size_t n) {
  return n == 0 ? dst : std::memcpy(dst, src, n);
}

size_t TVKstrlen(const char* s) {
  return std::strlen(s);
}

char* TVKstrcpy(char* dst, const char* src) {
  return std::strcpy(dst, src);
}

int TVKputenv(char* assignment) {
  return putenv(assignment);
}

void TVKEisort(int n, int* keys) {
  if (n > 1 && keys != nullptr) std::sort(keys, keys + n);
}

void TVKEinsort(int n, int* keys) {
  if (keys == nullptr) return;
  for (int i = 1; i < n; ++i) {
    const int key = keys[i];
    int place = i;
    for (; place > 0 && keys[place - 1] > key; --place) keys[place] = keys[place - 1];
    keys[place] = key;
  }
}
