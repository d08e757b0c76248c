// Loads a Mach-O dynamic library into this process: maps it, binds it to functions of this system
// and runs its initialisers. The file is not changed. Supported is the format that macOS's linker
// writes by default: 64 bits, one processor, compressed binding information.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::macho {

// The addresses of a library's tables for exception handling. A table that is missing has length 0.
struct UnwindTables {
  const void* header = nullptr;
  const void* frames = nullptr;
  std::size_t frames_length = 0;
  const void* compact = nullptr;
  std::size_t compact_length = 0;
};

class Image {
 public:
  // Returns the address for a symbol that another library defines; never null. The name is that of
  // the object file, with an underscore before the name of the source.
  using Resolve = std::function<void*(const std::string& name)>;

  // Loads the file. Throws std::runtime_error when it has something that is not supported.
  // `resolve_weak` binds symbols that the process may replace, and returns null for those that it
  // does not.
  Image(const std::string& path, const Resolve& resolve, const Resolve& resolve_weak);
  // The library must not be called any more.
  ~Image();
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  // Runs the library's initialisers. Call it once, after exception handling was told about the
  // library.
  void Initialise() const;

  // The address of an exported symbol; null when there is none of this name.
  void* Find(std::string_view name) const;

  bool Contains(const void* address) const;
  const UnwindTables& unwind_tables() const { return unwind_tables_; }

 private:
  struct Part {
    std::uint64_t address, size, file_offset, file_size;
    int protection;
  };
  // A range of the library. Addresses are relative to its start.
  struct Stretch {
    std::uint64_t address = 0, size = 0;
  };

  void ReadCommands();
  void ReadSegment(const unsigned char* command);
  void Map();
  void Rebase(std::size_t offset, std::size_t length) const;
  void Bind(std::size_t offset, std::size_t length, bool is_lazy, const Resolve& resolve) const;
  void Protect() const;
  char* AddressIn(std::size_t segment, std::uint64_t offset) const;

  const std::string path_;
  std::vector<unsigned char> file_;
  char* base_ = nullptr;
  std::size_t size_ = 0;  // in memory
  std::vector<Part> segments_;
  Stretch initialisers_, frames_, compact_;
  std::uint32_t binding_[10] = {};  // pairs of offset and length: rebase, bind, weak, lazy, export
  std::uint32_t symbols_ = 0, symbol_count_ = 0, strings_ = 0;
  UnwindTables unwind_tables_;
};

}  // namespace zqv::macho
