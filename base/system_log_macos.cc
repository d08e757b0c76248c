// The debug log on macOS: the system log, as Foundation's NSLog writes it.
#include "base/system_log.h"

#if __has_include(<CoreFoundation/CoreFoundation.h>)
#include <CoreFoundation/CoreFoundation.h>
#else
using CFStringRef = const struct CFString*;
#define CFSTR(text) (reinterpret_cast<CFStringRef>(__builtin___CFStringMakeConstantString(text)))
#endif

// Foundation's headers are Objective-C; this is the one function that is needed of them.
extern "C" void NSLog(CFStringRef format, ...);

namespace zqv::base {

void WriteLogLine(const char* text) noexcept { NSLog(CFSTR("%s\n"), text); }

}  // namespace zqv::base
