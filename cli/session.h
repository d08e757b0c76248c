// A stand-in host with the library loaded into it. It takes the place of an application.
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
  std::string library;  // path of the library; empty: the file next to the program
  std::optional<double> host_version;
  std::vector<std::string> without;  // entry points that the host lacks
  bool debug = false;
};

// Whether this is the name of an entry point.
bool IsEntryPoint(const std::string& name);

inline constexpr std::string_view kEmailClass = "MimeEmailZQV";

class Session {
 public:
  // Throws std::runtime_error when the library cannot be loaded.
  explicit Session(const SessionOptions& options);

  const standin::Host& host() const { return *host_; }

  // Constructs a MimeEmailZQV: from the item's bytes if they were read already, else from its file,
  // as applications do. Exceptions of the constructor are passed on.
  standin::Object Open(const Item& item) const;

 private:
  const std::unique_ptr<standin::Host> host_;
};

}  // namespace zqv::cli
