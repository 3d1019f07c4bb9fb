/* The result value of every worker, and the reporter that turns it into the caller's int.
 * A Status is a code and the note whether its line has been printed already, so that each failure is reported
 * once. A failure within a delivery on the error channel goes to the files of the channel alone: a destination
 * function that fails itself would be called without end. Internal codes (9000-9009) must never leave the component that makes them. */
#pragma once

namespace tovik {

struct Environment;

class [[nodiscard]] Status {
 public:
  constexpr Status() = default;
  constexpr Status(int code) : code_(code) {}  // NOLINT: an unreported code converts by itself
  static constexpr Status reported(int code) { return Status(code, true); }
  constexpr bool ok() const { return code_ == 0; }
  constexpr int code() const { return code_; }
  constexpr bool is_reported() const { return reported_; }

 private:
  constexpr Status(int code, bool reported) : code_(code), reported_(reported) {}
  int code_ = 0;
  bool reported_ = false;
};

/* Prints the line of `code` with its conversions filled from the arguments and returns it as reported. The
 * arguments must fit the message's conversions (texts longer than any buffer are delivered whole). The
 * conclusions of presolve are printed only while the presolve display is on. */
Status fail(Environment& env, int code, ...) noexcept;

/* Prints the line of a status that is not yet reported (a text with conversions as it stands); returns the
 * positive code for the caller. A code below 0 counts as reported. */
int report(Environment& env, Status status) noexcept;

/* Message text of a code, or null. */
const char* error_text(int code);

}  // namespace tovik
