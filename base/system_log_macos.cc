// The debug log on macOS goes to the system log, through NSLog. When CoreFoundation's headers are
// missing, as in cross builds, the few declarations that NSLog needs stand here.
#include "base/system_log.h"

#if __has_include(<CoreFoundation/CoreFoundation.h>)
#include <CoreFoundation/CoreFoundation.h>
#else
using CFStringRef = const struct CFString*;
#define CFSTR(text) (reinterpret_cast<CFStringRef>(__builtin___CFStringMakeConstantString(text)))
#endif

// Declared here because the header that declares it, of Foundation, is Objective-C.
extern "C" void NSLog(CFStringRef format, ...);

namespace zqv::base {

void WriteLogLine(const char* text) noexcept { NSLog(CFSTR("%s\n"), text); }

}  // namespace zqv::base
