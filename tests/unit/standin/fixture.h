// A test fixture that runs a stand-in host and offers its entry points by name. At its end, a test
// fails if the plug-in still holds a lock.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "abi/encodings.h"
#include "abi/records.h"
#include "standin/application.h"
#include "standin/capabilities.h"
#include "standin/host.h"
#include "standin/library.h"

namespace zqv::standin {

// All entry points as a plug-in gets them: resolved by name, null when missing.
struct Api {
  using PlatformString = abi::PlatformString;
  using RBBoolean = abi::RBBoolean;
  using RBInteger = abi::RBInteger;
  using REALarray = abi::REALarray;
  using REALclassDefinition = abi::REALclassDefinition;
  using REALobject = abi::REALobject;
  using REALstring = abi::REALstring;
  using REALstringData = abi::REALstringData;
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) result(*name) arguments;
#include "abi/entry_points.def"

  explicit Api(abi::Resolver resolver) {
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) \
  this->name = reinterpret_cast<decltype(this->name)>(resolver(#name));
#include "abi/entry_points.def"
  }
};

class HostTest : public ::testing::Test {
 protected:
  void Start(Capabilities capabilities = {}) {
    host_ = Host::Start(std::move(capabilities));
    api_.emplace(host_->resolver());
  }

  void StartWithPlugin(Capabilities capabilities = {}) {
    Start(std::move(capabilities));
    Library(ZQV_TEST_PLUGIN).Enter(*host_);
  }

  void TearDown() override {
    if (host_ == nullptr) return;
    if (host_->CountsLocks()) {
      EXPECT_EQ(host_->ledger().Report(), "");
    }
    host_.reset();
  }

  Host& host() { return *host_; }
  const Api& api() const { return *api_; }

  abi::REALstring Build(std::string_view bytes, abi::Encoding encoding = abi::kUtf8) {
    return api().REALBuildStringWithEncoding(bytes.data(), static_cast<int>(bytes.size()),
                                             encoding);
  }

  std::string Bytes(abi::REALstring string) {
    const auto length = reinterpret_cast<abi::RBInteger (*)(abi::REALstring)>(
        api().REALLoadGlobalMethod(nullptr, "LenB( s as string ) as integer"));
    return {static_cast<const char*>(api().StringGetCString(string)),
            static_cast<std::size_t>(length(string))};
  }

  static std::int64_t Locks(const void* thing) {
    return static_cast<const Thing*>(thing)->LockCount();
  }

 private:
  std::unique_ptr<Host> host_;
  std::optional<Api> api_;
};

}  // namespace zqv::standin
