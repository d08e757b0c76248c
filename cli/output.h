// What the program prints: data on standard output, words for the reader on standard error.
//
// A failure to write is remembered, not thrown: the caller asks once a message has been printed.
#pragma once

#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zqv::cli {

// From now on writing to a closed pipe ends the process without a word, whatever it inherited.
void EndOnClosedPipe();

// When lines are coloured; kAuto: on a terminal, unless NO_COLOR is set or TERM is "dumb".
enum class Colour { kAuto, kAlways, kNever };

class Output {
 public:
  explicit Output(Colour colour = Colour::kNever);

  void Print(std::string_view text);
  void PrintLine(std::string_view text);
  // Prints a text before what is printed next, if anything is; it takes the place of one that
  // still waits.
  void PrintBeforeNext(std::string text) { waiting_ = std::move(text); }
  void PrintWaiting() { Print(std::exchange(waiting_, {})); }
  bool HasPrinted() const { return has_printed_; }

  // Whether somebody reads this as it is printed.
  static bool IsTerminal();
  // The columns of the terminal; nothing when standard output is none.
  static std::optional<std::size_t> Width();
  // Marks a safe text as a heading, where lines are coloured.
  std::string Strong(std::string_view text) const;
  // False once standard output could not be written.
  bool IsGood() const { return error_ == 0; }
  // Writes out what is held back; says "zqv: standard output: ..." and gives false when that or
  // something before it failed.
  bool Finish();

 private:
  const bool has_colour_;
  std::string waiting_;
  bool has_printed_ = false;
  int error_ = 0;  // errno of the first failure
};

// Shows a safe line on standard error, which the next one or what is written there wipes away. For
// terminals only. An empty one just wipes.
void ShowPassingLine(std::string_view line);

// What went wrong, for Complain.
std::string ReasonOf(const std::exception& error);

// Writes "zqv: message" to standard error, after everything printed so far. The message is made
// safe for a terminal here.
void Complain(std::string_view message);

}  // namespace zqv::cli
