// Tests of Capabilities::release_stack: the stack that each release of an object uses, as in a host
// with large frames.
#include <cstddef>
#include <cstdint>

#include "tests/support/thread_stack.h"
#include "tests/unit/standin/fixture.h"

namespace zqv::standin {
namespace {

constexpr std::size_t kStack = 100'000;
constexpr std::size_t kSlack =
    20'000;  // for the stand-in's own frames, whose size depends on the compiler

// The address of the last destructor's frame.
std::uintptr_t g_frame = 0;

void NoteFrame(abi::REALobject) {
  g_frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
}

class ReleaseStackTest : public HostTest {
 protected:
  void StartWithClass(std::size_t release_stack) {
    Capabilities capabilities;
    capabilities.release_stack = release_stack;
    Start(std::move(capabilities));
    definition_.version = 13;
    definition_.name = "Framed";
    definition_.dataSize = 16;
    definition_.destructor = reinterpret_cast<abi::REALproc>(&NoteFrame);
    api().RegisterPluginVersion(13);
    api().PluginRegisterClass(&definition_);
  }

  // Releases an object inside `arrays` nested arrays. Returns the distance in bytes between this
  // function's frame and the destructor's.
  std::size_t DepthOfRelease(int arrays) {
    abi::REALobject thing = api().PluginNewInstance("Framed");
    for (int i = 0; i < arrays; ++i) {
      const abi::REALarray array = api().RuntimeArrayCreateSingleDimBoundedArray(4, -1);
      reinterpret_cast<abi::ObjectArrayInsertProc>(api().PluginObjectArrayInsertProc(array))(
          array, 0, thing);
      api().REALUnlockObject(thing);
      thing = reinterpret_cast<abi::REALobject>(array);
    }
    g_frame = 0;
    api().REALUnlockObject(thing);
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) - g_frame;
  }

 private:
  abi::REALclassDefinition definition_ = {};
};
using ReleaseStackDeathTest = ReleaseStackTest;

TEST_F(ReleaseStackTest, IsNotUsedByDefault) {
  StartWithClass(0);
  EXPECT_LT(DepthOfRelease(0), kSlack);
}

TEST_F(ReleaseStackTest, IsTakenForEachObjectAndArray) {
  StartWithClass(kStack);
  for (const int arrays : {0, 1, 5}) {
    const std::size_t releases = static_cast<std::size_t>(arrays) + 1;
    const std::size_t depth = DepthOfRelease(arrays);
    EXPECT_GE(depth, releases * kStack) << arrays;
    EXPECT_LT(depth, releases * (kStack + kSlack)) << arrays;
  }
}

TEST_F(ReleaseStackTest, IsGivenBackAfterEachRelease) {
  StartWithClass(kStack);
  const std::size_t first = DepthOfRelease(0);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(DepthOfRelease(0), first);
}

TEST_F(ReleaseStackDeathTest, IsReallyUsed) {
  StartWithClass(1024 * 1024);
  EXPECT_DEATH(test::RunOnStack(test::kSmallStack, [this] { DepthOfRelease(0); }), "");
}

// Releasing a string does not use that stack.
TEST_F(ReleaseStackTest, StringsTakeNone) {
  StartWithClass(1024 * 1024);
  test::RunOnStack(test::kSmallStack, [this] { api().REALUnlockString(Build("text")); });
}

}  // namespace
}  // namespace zqv::standin
