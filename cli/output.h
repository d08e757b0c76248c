// Output of the program: data on standard output, messages for the user on standard error.
//
// A write error is remembered, not thrown. The caller checks IsGood after each message.
#pragma once

#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zqv::cli {

// From now on writing to a closed pipe ends the process silently, even if the process was started
// with SIGPIPE ignored.
void EndOnClosedPipe();

// When to colour lines. kAuto: on a terminal, unless NO_COLOR is set or TERM is "dumb".
enum class Colour { kAuto, kAlways, kNever };

class Output {
 public:
  explicit Output(Colour colour = Colour::kNever);

  void Print(std::string_view text);
  void PrintLine(std::string_view text);
  // Stores a text that is printed before the next output, or never when there is none. Replaces a
  // stored text that was not printed.
  void PrintBeforeNext(std::string text) { waiting_ = std::move(text); }
  void PrintWaiting() { Print(std::exchange(waiting_, {})); }
  bool HasPrinted() const { return has_printed_; }

  // Whether standard output is a terminal.
  static bool IsTerminal();
  // The width of the terminal in columns. Nothing when standard output is not a terminal.
  static std::optional<std::size_t> Width();
  // Marks an escaped text as a heading, if lines are coloured.
  std::string Strong(std::string_view text) const;
  // False after standard output could not be written.
  bool IsGood() const { return error_ == 0; }
  // Flushes standard output. False when that or an earlier write failed, which it then reports on
  // standard error.
  bool Finish();

 private:
  const bool has_colour_;
  std::string waiting_;
  bool has_printed_ = false;
  int error_ = 0;  // errno of the first write error; 0: none
};

// Shows an escaped line on standard error, which the next output there erases. An empty line only
// erases. For terminals only.
void ShowPassingLine(std::string_view line);

// Returns the reason of an exception, for Complain.
std::string ReasonOf(const std::exception& error);

// Writes "zqv: message" to standard error, after everything printed so far. Escapes the message for
// a terminal.
void Complain(std::string_view message);

}  // namespace zqv::cli
