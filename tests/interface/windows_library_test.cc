// Loading and unloading the library, and C++ exceptions from the host's file in the library's.
#include <gtest/gtest.h>
#include <windows.h>

// After windows.h, whose types it uses.
#include <psapi.h>

#include <string>

#include "standin/library.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"

namespace zqv::interface_test {
namespace {

class LibraryFile : public InterfaceTest {};

HMODULE g_loaded = nullptr;

abi::REALproc Open(const std::string& path) {
  g_loaded = LoadLibraryA(path.c_str());
  return g_loaded == nullptr
             ? nullptr
             : reinterpret_cast<abi::REALproc>(GetProcAddress(g_loaded, "REALPluginMain"));
}

// Loads the library, reads mail with it, and unloads it.
void LoadUseAndFree() {
  {
    Capabilities capabilities;
    // Reading a message throws and catches inside the library, and the host throws into it.
    capabilities.faults["RuntimeUBound"] = {Fault::Kind::kThrows, 1, 1};
    const auto host = Host::Start(capabilities);
    standin::UseOpener(&Open);
    standin::Library(ZQV_LIBRARY).Enter(*host);
    EXPECT_EQ(Construct(Way::kBlock, "").raised.empty(), false);
    static_cast<void>(Construct(Way::kString, RichMessage()));
    host->DropAllStrays();
  }
  EXPECT_NE(FreeLibrary(g_loaded), 0);
}

std::size_t PrivateBytes() {
  PROCESS_MEMORY_COUNTERS_EX counters = {};
  GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                       sizeof counters);
  return counters.PrivateUsage;
}

// If each load leaked one handle, one slot for threads or a kilobyte, a thousand would exceed the
// bounds.
TEST_F(LibraryFile, IsLoadedAndFreedAThousandTimes) {
  constexpr int kTimes = 1000;
  for (int i = 0; i < 50; ++i) LoadUseAndFree();
  DWORD handles_before = 0;
  GetProcessHandleCount(GetCurrentProcess(), &handles_before);
  const std::size_t memory_before = PrivateBytes();
  const DWORD slot_before = TlsAlloc();
  TlsFree(slot_before);
  for (int i = 0; i < kTimes && !HasFailure(); ++i) LoadUseAndFree();
  const DWORD slot = TlsAlloc();
  EXPECT_EQ(slot, slot_before) << "slots for threads are leaked";
  TlsFree(slot);
  DWORD handles = 0;
  GetProcessHandleCount(GetCurrentProcess(), &handles);
  EXPECT_EQ(handles, handles_before);
  EXPECT_LT(PrivateBytes(), memory_before + 1'000 * kTimes)
      << "about a kilobyte is leaked each time";
}

TEST_F(LibraryFile, CatchesExceptionsOfTheHost) {
  Capabilities capabilities;
  capabilities.faults["REALBuildStringWithEncoding"] = {Fault::Kind::kThrows, 1, 1'000'000};
  Session session(capabilities, Exceptions::kMayBeLost);
  const Constructed constructed = ConstructFromString(RichMessage());
  EXPECT_NE(constructed.raised.find("RuntimeException"), std::string::npos) << constructed.raised;
}

TEST_F(LibraryFile, CatchesNumbersThrownByTheHost) {
  Capabilities capabilities;
  capabilities.faults["PluginNewInstance"] = {Fault::Kind::kThrowsInt, 5, 1};
  Session session(capabilities, Exceptions::kMayBeLost);
  const Constructed constructed = ConstructFromString(RichMessage());
  EXPECT_NE(constructed.raised, "");
}

}  // namespace
}  // namespace zqv::interface_test
