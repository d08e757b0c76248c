#include "objects/input.h"

#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

#include "base/log.h"
#include "host/errors.h"
#include "host/platform.h"

namespace zqv::objects {
namespace {

constexpr std::size_t kStreamBuffer = 0x100000;  // bytes: 1 MiB
constexpr std::int64_t kSlack = 4;               // zero bytes after the file's content

// Opens the file of a FolderItem; null, with lines in the debug log, on failure.
host::File OpenFile(abi::REALobject file) {
  if (file == nullptr) {
    ZQV_LOG("folderitem is nil");
    return nullptr;
  }
  host::File stream;
  const std::string path = host::FilePath(file);
  if (!path.empty()) {
    stream = host::OpenForReading(path);
    if (stream != nullptr)
      static_cast<void>(std::setvbuf(stream.get(), nullptr, _IOFBF, kStreamBuffer));
    ZQV_LOG("result %p", static_cast<void*>(stream.get()));
  }
  ZQV_LOG("f %p", static_cast<void*>(stream.get()));
  return stream;
}

}  // namespace

BlockBytes::BlockBytes(abi::REALobject block) : hold_(host::ObjectRef::Share(block)) {
  if (block == nullptr) return;
  const abi::RBInteger size = host::entry::memoryBlockGetSize(block);
  const auto* data = static_cast<const char*>(host::entry::memoryBlockGetPtr(block));
  if (size > 0 && data != nullptr) bytes_ = {data, static_cast<std::size_t>(size)};
}

std::optional<MessageBytes> ReadFile(abi::REALobject file) {
  const host::File stream = OpenFile(file);
  if (stream == nullptr) {
    host::RaiseException(host::kIOException, "Failed to open file for reading.");
    return std::nullopt;
  }
  const std::int64_t length = host::LengthOf(stream.get());
  ZQV_LOG("fileLen %llu", static_cast<unsigned long long>(length));
  std::rewind(stream.get());

  // The length of a directory, which Linux opens like a file, is 2^63 - 1.
  const std::size_t wanted = length > 0 ? static_cast<std::size_t>(length) : 0;
  auto memory = length <= std::numeric_limits<std::int64_t>::max() - kSlack
                    ? base::AllocateZeroed<char>(wanted + kSlack)
                    : nullptr;
  if (memory == nullptr) {
    host::RaiseException(host::kOutOfMemoryException, "Failed to allocate memory for email");
    return std::nullopt;
  }
  const std::size_t got = std::fread(memory.get(), 1, wanted, stream.get());
  ZQV_LOG("r %zu", got);
  if (got != wanted || length < 0) {
    host::RaiseException(host::kIOException, "Failed to read data from file.");
    return std::nullopt;
  }
  return MessageBytes(std::move(memory), wanted);
}

}  // namespace zqv::objects
