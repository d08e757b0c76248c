// The host that plays an application's part, with the library loaded into it.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/output.h"
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

  // The message in a file, or in standard input for "-", as a MimeEmailZQV. What the constructor
  // raises is let through; std::runtime_error when standard input cannot be read.
  standin::Object Open(const std::string& file) const;

 private:
  const std::unique_ptr<standin::Host> host_;
};

// The bytes of a file, or of standard input for "-". Throws std::runtime_error with the reason.
std::string ReadBytes(const std::string& file);

// What a verb does with one message; false when it could not do all of it, having said why.
using Visit = std::function<bool(const std::string& file, const standin::Object& email)>;

enum class Headings { kAmongSeveral, kNone };

// Opens the files one after the other and visits each, below a heading when there are several.
// What goes wrong with one file is said and does not keep the others from being visited. The exit
// code: 0, or 1 when anything went wrong.
int ForEachFile(const Session& session, const std::vector<std::string>& files, Output* output,
                const Visit& visit, Headings headings = Headings::kAmongSeveral);

}  // namespace zqv::cli
