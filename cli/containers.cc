#include "cli/containers.h"

#include <archive.h>
#include <archive_entry.h>

#include <array>
#include <cstddef>
#include <exception>
#include <stdexcept>
#include <utility>

namespace zqv::cli {
namespace {

constexpr std::size_t kTarMagicAt = 257;
constexpr std::string_view kTarMagic = "ustar";
constexpr std::array<std::string_view, 5> kMagics = {"\x1F\x8B", "BZh",
                                                     "\xFD"
                                                     "7zXZ",
                                                     "\x28\xB5\x2F\xFD", "PK\x03\x04"};

struct FreeArchive {
  void operator()(archive* opened) const { archive_read_free(opened); }
};

constexpr const char* kNoName = "data";

}  // namespace

struct Container::State {
  explicit State(NextBlock blocks) : source(std::move(blocks)), opened(archive_read_new()) {}

  [[noreturn]] void Fail() const {
    if (failure) std::rethrow_exception(failure);
    const char* const reason = archive_error_string(opened.get());
    throw std::runtime_error(std::string("cannot be unpacked: ") +
                             (reason == nullptr ? "it is damaged" : reason));
  }

  // A callback of libarchive. No exception may pass through that library.
  static la_ssize_t Read(archive*, void* data, const void** block) {
    auto* const state = static_cast<State*>(data);
    try {
      const std::string_view bytes = state->source();
      *block = bytes.data();
      return static_cast<la_ssize_t>(bytes.size());
    } catch (...) {
      state->failure = std::current_exception();
      return -1;
    }
  }

  NextBlock source;
  std::exception_ptr failure;
  const std::unique_ptr<archive, FreeArchive> opened;
  std::string name;
};

bool IsContainer(std::string_view start) {
  for (const std::string_view magic : kMagics) {
    if (start.substr(0, magic.size()) == magic) return true;
  }
  return start.size() > kTarMagicAt && start.substr(kTarMagicAt, kTarMagic.size()) == kTarMagic;
}

Container::Container(NextBlock source) : state_(std::make_unique<State>(std::move(source))) {
  archive* const opened = state_->opened.get();
  archive_read_support_filter_gzip(opened);
  archive_read_support_filter_bzip2(opened);
  archive_read_support_filter_xz(opened);
  archive_read_support_filter_zstd(opened);
  archive_read_support_format_zip(opened);
  archive_read_support_format_tar(opened);
  archive_read_support_format_raw(opened);
  archive_read_support_format_empty(opened);
  if (archive_read_open(opened, state_.get(), nullptr, State::Read, nullptr) != ARCHIVE_OK) {
    state_->Fail();
  }
}

Container::~Container() = default;

bool Container::Next() {
  archive* const opened = state_->opened.get();
  archive_entry* entry = nullptr;
  while (true) {
    const int result = archive_read_next_header(opened, &entry);
    if (result == ARCHIVE_EOF) return false;
    if (result != ARCHIVE_OK && result != ARCHIVE_WARN) state_->Fail();
    if (archive_format(opened) == ARCHIVE_FORMAT_RAW) {
      state_->name.clear();
      return true;
    }
    if (archive_entry_filetype(entry) != AE_IFREG) continue;
    const char* const path = archive_entry_pathname(entry);
    state_->name = path == nullptr ? kNoName : path;
    return true;
  }
}

const std::string& Container::name() const { return state_->name; }

std::string_view Container::Block() {
  const void* block = nullptr;
  std::size_t size = 0;
  la_int64_t offset = 0;
  while (true) {
    const int result = archive_read_data_block(state_->opened.get(), &block, &size, &offset);
    if (result == ARCHIVE_EOF) return {};
    if (result != ARCHIVE_OK && result != ARCHIVE_WARN) state_->Fail();
    if (size > 0) return {static_cast<const char*>(block), size};
  }
}

}  // namespace zqv::cli
