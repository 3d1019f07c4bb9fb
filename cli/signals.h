/* Ctrl-C and SIGTERM.
 * The first asks the library, through its terminate flag, to stop at the next safe point; the program then
 * reports as after any other limit. The second ends the program at once with what is known; the third without
 * a word. While a model is being read there is nothing to keep, and the first already ends the program. The
 * handlers only count, set the flag and wake a watching thread; everything else happens on that thread. */
#pragma once

#include <functional>

namespace tovik::cli {

class Signals {
 public:
  /* Installs the handlers and starts the watcher. `on_interrupt` runs on the watching thread when the program
   * is to end at once; its result becomes the exit status. Only one object may exist. */
  explicit Signals(std::function<int()> on_interrupt);
  ~Signals();
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  volatile int* terminate_flag() const;
  bool interrupted() const { return *terminate_flag() != 0; }

  /* While one of these lives, the first signal already ends the program. */
  class ExitOnFirstSignal {
   public:
    explicit ExitOnFirstSignal(Signals& signals);
    ~ExitOnFirstSignal();
    ExitOnFirstSignal(const ExitOnFirstSignal&) = delete;
    ExitOnFirstSignal& operator=(const ExitOnFirstSignal&) = delete;

   private:
    Signals& signals_;
  };

 private:
  struct Watcher;
  Watcher* watcher_;
};

}  // namespace tovik::cli
