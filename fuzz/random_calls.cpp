/* The program: calls until the time is over, and a word about the last calls when it dies. */
#include "fuzz/random_calls.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>

using tovik::fuzz::Caller;
using tovik::fuzz::the_caller;

extern "C" void __sanitizer_set_death_callback(void (*)()) __attribute__((weak));
extern "C" void __sanitizer_print_stack_trace() __attribute__((weak));

namespace {

unsigned longest_call = 60;  // seconds
std::uint64_t seed = 1;

void print_trace() {
  std::fprintf(stderr, "The last calls:\n%sRepeat them with random_calls --seed %llu\n",
               the_caller != nullptr ? the_caller->trace().c_str() : "",
               static_cast<unsigned long long>(seed));
}

extern "C" void on_alarm(int) {
  print_trace();
  if (__sanitizer_print_stack_trace != nullptr) __sanitizer_print_stack_trace();
  std::fprintf(stderr, "A call does not end.\n");
  std::abort();
}

}  // namespace

int main(int count, char** arguments) {
  double seconds = 10;
  std::uint64_t calls = ~std::uint64_t{0};
  for (int k = 1; k + 1 < count; k += 2) {
    const std::string option = arguments[k];
    if (option == "--seconds") seconds = std::atof(arguments[k + 1]);
    if (option == "--seed") seed = std::strtoull(arguments[k + 1], nullptr, 10);
    if (option == "--longest") longest_call = static_cast<unsigned>(std::atoi(arguments[k + 1]));
    if (option == "--calls") calls = std::strtoull(arguments[k + 1], nullptr, 10);
  }
  if (__sanitizer_set_death_callback != nullptr) __sanitizer_set_death_callback(print_trace);
  signal(SIGALRM, on_alarm);
  const int null = open("/dev/null", O_RDWR);
  dup2(null, STDIN_FILENO);
  dup2(null, STDOUT_FILENO);
  const std::filesystem::path memory =
      "/dev/shm";  // whole files are forced to the disk, which takes its time
  const std::filesystem::path place =
      std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
  std::string folder = place / "tovik-calls-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr || chdir(folder.c_str()) != 0) return 2;
  const auto begin = std::chrono::steady_clock::now();
  const auto elapsed = [&] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  };
  std::uint64_t done = 0, succeeded = 0;
  bool holds = true;
  {
    Caller caller(seed, folder);
    for (; holds && done < calls && (done % 16 != 0 || elapsed() < seconds); ++done) {
      alarm(longest_call);
      holds = caller.step();
    }
    alarm(0);
    succeeded = caller.succeeded();
    if (!holds) {
      std::fprintf(stderr, "A call that failed has changed its problem.\n");
      print_trace();
    }
  }
  the_caller = nullptr;
  std::filesystem::remove_all(folder);
  std::fprintf(stderr, "%llu calls and what they called, %llu of them without an error, seed %llu\n",
               static_cast<unsigned long long>(done), static_cast<unsigned long long>(succeeded),
               static_cast<unsigned long long>(seed));
  return holds ? 0 : 1;
}
