// What the program prints: data on standard output, words for the reader on standard error.
//
// A failure to write is remembered, not thrown: the caller asks once a message has been printed.
#pragma once

#include <string>
#include <string_view>

namespace zqv::cli {

// From now on writing to a closed pipe ends the process without a word, whatever it inherited.
void EndOnClosedPipe();

class Output {
 public:
  void Print(std::string_view text);
  void PrintLine(std::string_view text);

  // Whether somebody reads this as it is printed.
  static bool IsTerminal();
  // False once standard output could not be written.
  bool IsGood() const { return error_ == 0; }
  // Writes out what is held back; says "zqv: standard output: ..." and gives false when that or
  // something before it failed.
  bool Finish();

 private:
  int error_ = 0;  // errno of the first failure
};

// Writes "zqv: message" to standard error, after everything printed so far. The message is made
// safe for a terminal here.
void Complain(std::string_view message);

}  // namespace zqv::cli
