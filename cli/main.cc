// The zqv program: reads messages with the library, which it loads into a stand-in host.
//
// Exit codes: 0: success; 1: a failure to read or write, something requested does not exist, or
// `check` has findings; 2: wrong command line.
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

// Ends the process without unwinding, since a call of the library may be in progress.
[[noreturn]] void EndWithoutMemory(const std::string&) {
  constexpr std::string_view kLine = "zqv: memory ran out\n";
  static_cast<void>(write(STDERR_FILENO, kLine.data(), kLine.size()) == 0);
  _exit(1);
}

// Reports lack of memory: an exception that could not be allocated, or a std::bad_alloc thrown
// before main. Every other uncaught exception is a mistake of the program and aborts.
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

// Constructed before all other objects of the program, whose constructors may throw.
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
