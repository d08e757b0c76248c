#include "email/input.h"

#include <sys/stat.h>

#include <cstdio>
#include <limits>
#include <memory>
#include <string>

#include "host/errors.h"
#include "host/log.h"
#include "host/platform.h"

namespace zqv::email {
namespace {

constexpr std::size_t kStreamBuffer = 0x100000;  // 1 MiB
constexpr long kSlack = 4;                       // zero bytes after the last

struct CloseFile {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseFile>;

// Opening a pipe would wait for somebody to write into it.
bool IsPipe(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

Stream OpenFile(abi::REALobject file) {
  if (file == nullptr) {
    ZQV_LOG("%s%s", "folderitem is nil");
    return nullptr;
  }
  Stream stream;
  const std::string path = host::FilePath(file);
  if (!path.empty() && !IsPipe(path)) {
    stream.reset(std::fopen(path.c_str(), "rb"));
    ZQV_LOG("%s%s %p", "result", static_cast<void*>(stream.get()));
    if (stream != nullptr) std::setvbuf(stream.get(), nullptr, _IOFBF, kStreamBuffer);
  }
  ZQV_LOG("%s%s %p", "f", static_cast<void*>(stream.get()));
  return stream;
}

}  // namespace

BlockBytes::BlockBytes(abi::REALobject block) : hold_(host::ObjectRef::Share(block)) {
  if (block == nullptr) return;
  const abi::RBInteger size = host::entry::memoryBlockGetSize(block);
  const auto* data = static_cast<const char*>(host::entry::memoryBlockGetPtr(block));
  if (size > 0 && data != nullptr) bytes_ = {data, static_cast<std::size_t>(size)};
}

std::optional<FileContent> ReadFile(abi::REALobject file) {
  const Stream stream = OpenFile(file);
  if (stream == nullptr) {
    host::RaiseException(host::kIOException, "Failed to open file for reading.");
    return std::nullopt;
  }
  std::fseek(stream.get(), 0, SEEK_END);
  const long length = std::ftell(stream.get());
  ZQV_LOG("%s%s %lu", "fileLen", static_cast<unsigned long>(length));
  std::fseek(stream.get(), 0, SEEK_SET);

  // A directory claims the greatest length of all, a file that cannot be positioned a negative one.
  const std::size_t wanted = length > 0 ? static_cast<std::size_t>(length) : 0;
  auto memory = length <= std::numeric_limits<long>::max() - kSlack
                    ? host::AllocateZeroed<char>(wanted + kSlack)
                    : nullptr;
  if (memory == nullptr) {
    host::RaiseException(host::kOutOfMemoryException, "Failed to allocate memory for email");
    return std::nullopt;
  }
  const std::size_t got = std::fread(memory.get(), 1, wanted, stream.get());
  ZQV_LOG("%s%s %lu", "r", static_cast<unsigned long>(got));
  if (got != wanted || length < 0) {
    host::RaiseException(host::kIOException, "Failed to read data from file.");
    return std::nullopt;
  }
  return FileContent(std::move(memory), wanted);
}

}  // namespace zqv::email
