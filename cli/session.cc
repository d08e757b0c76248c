#include "cli/session.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <exception>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "abi/records.h"
#include "cli/text.h"
#include "standin/application.h"
#include "standin/capabilities.h"
#include "standin/library.h"

namespace zqv::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLibraryName = "MimeEmailZQV.so";
constexpr std::string_view kStandardInput = "-";

constexpr std::string_view kEntryPoints[] = {
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) #name,
#include "abi/entry_points.def"
};

standin::Capabilities CapabilitiesOf(const SessionOptions& options) {
  standin::Capabilities capabilities;
  if (options.host_version) capabilities.version = *options.host_version;
  for (const std::string& name : options.without) capabilities.faults[name] = standin::Fault();
  return capabilities;
}

std::string LibraryBesideProgram() {
  return fs::read_symlink("/proc/self/exe").replace_filename(kLibraryName);
}

// Hosts hand out whole paths.
std::string WholePath(const std::string& file) {
  return file.empty() ? file : (fs::current_path() / file).string();
}

[[noreturn]] void FailToRead() { throw std::runtime_error(std::generic_category().message(errno)); }

std::string ReadAll(int descriptor) {
  std::string bytes;
  std::array<char, 65536> buffer{};
  while (true) {
    const ssize_t got = read(descriptor, buffer.data(), buffer.size());
    if (got == 0) return bytes;
    if (got > 0) {
      bytes.append(buffer.data(), static_cast<std::size_t>(got));
    } else if (errno != EINTR) {
      FailToRead();
    }
  }
}

}  // namespace

bool IsEntryPoint(const std::string& name) {
  for (const std::string_view entry_point : kEntryPoints) {
    if (entry_point == name) return true;
  }
  return false;
}

Session::Session(const SessionOptions& options)
    : host_(standin::Host::Start(CapabilitiesOf(options))) {
  const std::string path = options.library.empty() ? LibraryBesideProgram() : options.library;
  standin::Library(path).Enter(*host_);
  if (options.debug) standin::SetShared(kEmailClass, "Debugging", true);
}

standin::Object Session::Open(const std::string& file) const {
  if (file == kStandardInput) {
    return standin::Construct(kEmailClass, "Constructor(Content as MemoryBlock)",
                              standin::MakeMemoryBlock(ReadBytes(file)));
  }
  return standin::Construct(kEmailClass, "Constructor(File as FolderItem)",
                            standin::MakeFolderItem(WholePath(file)));
}

std::string ReadBytes(const std::string& file) {
  if (file == kStandardInput) return ReadAll(STDIN_FILENO);
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) FailToRead();
  const std::unique_ptr<const int, void (*)(const int*)> closer(
      &descriptor, [](const int* opened) { close(*opened); });
  return ReadAll(descriptor);
}

int ForEachFile(const Session& session, const std::vector<std::string>& files, Output* output,
                const Visit& visit, Headings headings) {
  const bool has_headings = headings == Headings::kAmongSeveral && files.size() > 1;
  bool all_good = true;
  bool is_first = true;
  for (const std::string& file : files) {
    try {
      const standin::Object email = session.Open(file);
      if (has_headings) {
        if (!is_first) output->PrintLine("");
        output->PrintLine("==> " + SafeText(file, Lines::kOne) + " <==");
        is_first = false;
      }
      if (!visit(file, email)) all_good = false;
    } catch (const std::exception& error) {
      Complain(file + ": " + error.what());
      all_good = false;
    }
    if (!output->IsGood()) break;
  }
  return all_good ? 0 : 1;
}

}  // namespace zqv::cli
