// The zqv program: shows messages through the library in a stand-in host.
//
// Exit codes: 0 done; 1 a message, the library or a file could not be read or written, or what was
// asked for is not there, or `check` found something; 2 the command line is wrong.
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <variant>

#include "cli/arguments.h"
#include "cli/output.h"
#include "cli/session.h"
#include "cli/verbs.h"
#include "standin/fatal.h"

namespace zqv::cli {
namespace {

// In the middle of a call of the library there is no way back.
[[noreturn]] void EndWithoutMemory(const std::string&) {
  constexpr std::string_view kLine = "zqv: memory ran out\n";
  static_cast<void>(write(STDERR_FILENO, kLine.data(), kLine.size()) == 0);
  _exit(1);
}

// An exception for which there is no memory, or that nobody catches because it is thrown before
// main. Others are mistakes of the program, which the system is to report.
[[noreturn]] void EndOnTerminate() {
  const std::exception_ptr exception = std::current_exception();
  if (!exception) EndWithoutMemory({});
  try {
    std::rethrow_exception(exception);
  } catch (const std::bad_alloc&) {
    EndWithoutMemory({});
  } catch (...) {
    std::abort();
  }
}

// Made before all other objects of the program.
struct TerminateHandler {
  TerminateHandler() { std::set_terminate(EndOnTerminate); }
};
__attribute__((init_priority(101))) const TerminateHandler kTerminateHandler;

int Run(int count, const char* const* values) {
  const std::variant<Arguments, int> parsed = ParseArguments(count, values);
  const auto* const arguments = std::get_if<Arguments>(&parsed);
  Output output(arguments == nullptr ? Colour::kNever : arguments->colour);
  int code = 1;
  if (const int* const exit_code = std::get_if<int>(&parsed)) {
    code = *exit_code;
  } else {
    try {
      code = arguments->verb(Session(arguments->session), arguments->request, &output);
    } catch (const std::exception& error) {
      Complain(ReasonOf(error));
    }
  }
  return output.Finish() ? code : 1;
}

int Main(int count, const char* const* values) {
  EndOnClosedPipe();
  standin::SetOutOfMemoryHandler(EndWithoutMemory);
  try {
    return Run(count, values);
  } catch (const std::bad_alloc&) {
    EndWithoutMemory({});
  }
}

}  // namespace
}  // namespace zqv::cli

int main(int count, char** values) { return zqv::cli::Main(count, values); }
