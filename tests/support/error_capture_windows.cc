// On Windows the library writes its log to the debugger. Each line is raised as an exception, which
// a handler in the process can receive.
#include <windows.h>

#include <string>

#include "tests/support/error_capture.h"

namespace zqv::test {
namespace {

constexpr DWORD kPrinted = 0x40010006;  // DBG_PRINTEXCEPTION_C: length with the NUL, address
std::string g_text;

LONG CALLBACK KeepText(EXCEPTION_POINTERS* raised) {
  const EXCEPTION_RECORD& record = *raised->ExceptionRecord;
  if (record.ExceptionCode != kPrinted || record.NumberParameters < 2) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  g_text += reinterpret_cast<const char*>(record.ExceptionInformation[1]);
  return EXCEPTION_CONTINUE_EXECUTION;
}

}  // namespace

ErrorCapture::ErrorCapture() : handler_(AddVectoredExceptionHandler(1, &KeepText)) {
  g_text.clear();
}

ErrorCapture::~ErrorCapture() { RemoveVectoredExceptionHandler(handler_); }

std::string ErrorCapture::Text() const { return g_text; }

}  // namespace zqv::test
