/* Where text goes.
 * The library's results channel (its log) and the program's own lines go to one stream: standard output, or
 * standard error when standard output belongs to JSON. Warnings and errors go to standard error; while a
 * label is set, each of their lines begins with it ("model.mps: TOVIK Error  1423: ..."). What passes the
 * results channel also reaches the log file, whether it is shown or not. The console attaches itself to the
 * environment's channels and must be destroyed before the environment. */
#pragma once

#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "cli/library.h"

namespace tovik::cli {

/* What of the results channel is shown: all of it, the lines of print(), none. */
enum class Verbosity { full, results, none };

class Console {
 public:
  /* `patient`: what the library says in the first fifth of a second is shown when the model takes longer, and
   * never when it does not; its lines of single iterations are for the log file. */
  Console(const Environment& environment, FILE* stream, Verbosity verbosity, bool patient = false);
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  /* All four channels also into this file from now on. False when it cannot be opened. */
  bool open_log(const std::string& name);
  /* The program's own lines: of the log, and of the results, which a quiet console still shows. */
  void log(const std::string& text);
  void print(const std::string& text);
  /* A line of the log while a model is solved: what waited is shown before it. */
  void progress(const std::string& text);
  /* Shows what waited, when the model has turned out to take longer. */
  void catch_up();
  /* Since a line of the log was shown, or the model begun. */
  double seconds_without_line() const;
  /* The program's own error line, in the log file too. */
  void print_error(const std::string& text);

  /* Starts a new model: forgets the last error and presolve time; `label` names the model in messages, "" for
   * none. */
  void begin_model(const std::string& label);
  void set_label(const std::string& label) { label_ = label; }
  /* Errors of a question whose answer may be "no" are not shown while one of these lives. */
  class Silence {
   public:
    explicit Silence(Console& console) : console_(console) { ++console_.silenced_; }
    ~Silence() { --console_.silenced_; }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

   private:
    Console& console_;
  };

  const std::string& first_error() const { return first_error_; }
  std::optional<double> presolve_seconds() const { return presolve_seconds_; }

 private:
  static void on_result(void* self, const char* text);
  static void on_problem(void* self, const char* text);
  static void on_error(void* self, const char* text);
  void write_problem(const char* text);
  void show_library_text(const char* text);
  void show_held();

  struct Close {
    void operator()(FILE* file) const { std::fclose(file); }
  };
  const Environment& environment_;
  FILE* stream_;
  Verbosity verbosity_;
  ChannelHandle results_ = nullptr, warning_ = nullptr, error_ = nullptr;
  std::unique_ptr<FILE, Close> log_;
  std::string label_, first_error_;
  std::optional<double> presolve_seconds_;
  bool printing_ = false, logging_ = false;
  bool patient_;      // lines of the library wait
  std::string held_;  // ... here
  std::chrono::steady_clock::time_point model_begin_, last_line_;
  bool at_line_start_ = true;
  int silenced_ = 0;
};

}  // namespace tovik::cli
