#include "cli/session.h"

#include <filesystem>
#include <string_view>
#include <utility>

#include "abi/records.h"
#include "standin/application.h"
#include "standin/capabilities.h"
#include "standin/library.h"

namespace zqv::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLibraryName = "MimeEmailZQV.so";

constexpr std::string_view kEntryPoints[] = {
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) #name,
#include "abi/entry_points.def"
};

standin::Capabilities CapabilitiesOf(const SessionOptions& options) {
  standin::Capabilities capabilities;
  if (options.host_version) capabilities.version = *options.host_version;
  for (const std::string& name : options.without) capabilities.faults[name] = standin::Fault();
  // A small quarantine stays in the processor's cache, which makes working on many messages several
  // times as fast.
  capabilities.quarantine_entries = 1000;
  capabilities.quarantine_bytes = std::size_t{1} << 20U;
  // Without that entry point the library inserts at index 1 of an array that may be empty.
  capabilities.refuses_insertion_beyond_the_end = capabilities.faults.count("RuntimeUBound") > 0;
  return capabilities;
}

std::string LibraryBesideProgram() {
  return fs::read_symlink("/proc/self/exe").replace_filename(kLibraryName);
}

// Hosts return absolute paths.
std::string WholePath(const std::string& file) {
  return file.empty() ? file : (fs::current_path() / file).string();
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

standin::Object Session::Open(const Item& item) const {
  if (item.bytes) {
    return standin::Construct(kEmailClass, "Constructor(Content as MemoryBlock)",
                              standin::MakeMemoryBlock(*item.bytes));
  }
  return standin::Construct(kEmailClass, "Constructor(File as FolderItem)",
                            standin::MakeFolderItem(WholePath(item.path)));
}

}  // namespace zqv::cli
