#include "tests/interface/session.h"

#include "standin/library.h"
#include "tests/interface/again.h"

namespace zqv::interface_test {
namespace {

const standin::Library& TheLibrary() {
  static const standin::Library kLibrary(ZQV_LIBRARY);
  return kLibrary;
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
  EXPECT_EQ(host_->StrangeNames(), 0U) << "the library looked up names that no host has";
  if (exceptions_ == Exceptions::kMayBeLost) return;
  EXPECT_EQ(host_->DroppedExceptions(), 0U);
  EXPECT_EQ(host_->StrayExceptions(), 0U);
}

void InterfaceTest::SetUp() {
  if (::testing::UnitTest::GetInstance()->test_to_run_count() == 1) return;
  EXPECT_TRUE(PassesAgain());
  GTEST_SKIP() << "the test ran in its own process";
}

}  // namespace zqv::interface_test
