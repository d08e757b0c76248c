// The host that plays an application's part, with the library loaded into it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/source.h"
#include "standin/handles.h"
#include "standin/host.h"

namespace zqv::cli {

struct SessionOptions {
  std::string library;  // empty: the one that lies beside the program
  std::optional<double> host_version;
  std::vector<std::string> without;  // entry points that the host lacks
  bool debug = false;
};

// Whether hosts have an entry point of this name at all.
bool IsEntryPoint(const std::string& name);

inline constexpr std::string_view kEmailClass = "MimeEmailZQV";

class Session {
 public:
  // Throws std::runtime_error when the library cannot be loaded.
  explicit Session(const SessionOptions& options);

  const standin::Host& host() const { return *host_; }

  // The message as a MimeEmailZQV: from the file, as applications do, or from the bytes when those
  // were read already. What the constructor raises is let through.
  standin::Object Open(const Item& item) const;

 private:
  const std::unique_ptr<standin::Host> host_;
};

}  // namespace zqv::cli
