#include "tests/interface/session.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "standin/library.h"

namespace zqv::interface_test {
namespace {

const standin::Library& TheLibrary() {
  static const standin::Library kLibrary(ZQV_LIBRARY);
  return kLibrary;
}

// The words that start this program anew: those of the emulator, for another processor's, and its
// path.
std::vector<std::string> Command() {
  std::istringstream emulator(ZQV_EMULATOR);
  std::vector<std::string> words{std::istream_iterator<std::string>(emulator), {}};
  words.push_back(std::filesystem::read_symlink("/proc/self/exe"));
  return words;
}

// Runs the present test alone in a new process; true when it passed there.
bool PassesAlone() {
  const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
  std::vector<std::string> words = Command();
  words.push_back(std::string("--gtest_filter=") + test->test_suite_name() + "." + test->name());
  words.emplace_back("--gtest_output=");
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  std::fflush(nullptr);
  pid_t child = 0;
  int status = -1;
  return posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) == 0 &&
         waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace

void LoadLibraryFile() { TheLibrary(); }

Session::Session(Capabilities capabilities, Exceptions exceptions)
    : host_(Host::Start(std::move(capabilities))), exceptions_(exceptions) {
  TheLibrary().Enter(*host_);
}

Session::Session(Capabilities capabilities, Exceptions exceptions, abi::Resolver resolver)
    : host_(Host::Start(std::move(capabilities))), exceptions_(exceptions) {
  TheLibrary().EnterWith(resolver);
  host_->FinishRegistration();
}

void Session::ExpectNothingLeft() {
  if (!host_->CountsLocks()) return;
  const standin::LiveCounts live = host_->ledger().Live();
  const bool only_string_data = live.Total() == live.string_data;
  if (string_data_ == StringData::kMayStay && only_string_data) return;
  EXPECT_EQ(host_->ledger().Report(), "");
}

Session::~Session() {
  host_->DropAllStrays();
  ExpectNothingLeft();
  EXPECT_EQ(host_->StrangeNames(), 0U) << "the library asks for names that no host has";
  if (exceptions_ == Exceptions::kMayBeLost) return;
  EXPECT_EQ(host_->DroppedExceptions(), 0U);
  EXPECT_EQ(host_->StrayExceptions(), 0U);
}

void InterfaceTest::SetUp() {
  if (::testing::UnitTest::GetInstance()->test_to_run_count() == 1) return;
  EXPECT_TRUE(PassesAlone());
  GTEST_SKIP() << "ran in a process of its own";
}

}  // namespace zqv::interface_test
