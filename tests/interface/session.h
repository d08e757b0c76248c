// A stand-in host with the built library loaded into it.
//
// When a session ends, it expects that nothing which the library or the application made is left,
// unless the host does not count locks. The library keeps state for the life of the process, so a
// process can have one session only. InterfaceTest therefore runs each test in a process of its
// own.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <utility>

#include "abi/records.h"
#include "standin/application.h"
#include "standin/capabilities.h"
#include "standin/host.h"

namespace zqv::interface_test {

using standin::Call;
using standin::CallShared;
using standin::Capabilities;
using standin::Construct;
using standin::Fault;
using standin::Get;
using standin::GetShared;
using standin::Host;
using standin::HostException;
using standin::MakeFolderItem;
using standin::MakeMemoryBlock;
using standin::MakeString;
using standin::NewInstance;
using standin::Object;
using standin::ObjectOf;
using standin::SetShared;
using standin::String;
using standin::Value;

// Loads the library's file without calling any of its functions, so that forked children need not
// load it.
void LoadLibraryFile();

// Expectation about host exceptions at the end of a session.
enum class Exceptions {
  kNoneLost,  // each was delivered by the call that raised it
  kMayBeLost  // a broken host may make the library raise twice in one call, or outside of one
};

// Whether lent string data that was not given back counts as a leak. In a host without the function
// to give it back it does not.
enum class StringData { kGivenBack, kMayStay };

class Session {
 public:
  explicit Session(Capabilities capabilities = {}, Exceptions exceptions = Exceptions::kNoneLost);
  // Does the same, but gives the library this resolver instead of the host's.
  Session(Capabilities capabilities, Exceptions exceptions, abi::Resolver resolver);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Host& host() { return *host_; }
  void Expect(StringData string_data) { string_data_ = string_data; }

 private:
  void ExpectNothingLeft();

  std::unique_ptr<Host> host_;
  const Exceptions exceptions_;
  StringData string_data_ = StringData::kGivenBack;
};

// A test with at most one session, in a process of its own. When the process runs several tests,
// SetUp starts a new process for the test and skips the body here.
class InterfaceTest : public ::testing::Test {
 protected:
  void SetUp() override;

  Host& Start(Capabilities capabilities = {}) {
    session_.emplace(std::move(capabilities));
    return session_->host();
  }
  Host& StartVersion(double version) {
    Capabilities capabilities;
    capabilities.version = version;
    return Start(std::move(capabilities));
  }
  Host& host() { return session_->host(); }

 private:
  std::optional<Session> session_;
};

}  // namespace zqv::interface_test
