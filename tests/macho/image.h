// A Mach-O dynamic library in the memory of this process: mapped, bound to functions of this system
// and initialised, without a change to the file. What is known of the format is what macOS's linker
// writes by default: 64 bits, one processor, compressed binding information.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::macho {

// Where exception handling finds a library's tables; lengths of 0 where there are none.
struct UnwindTables {
  const void* header = nullptr;
  const void* frames = nullptr;
  std::size_t frames_length = 0;
  const void* compact = nullptr;
  std::size_t compact_length = 0;
};

class Image {
 public:
  // What a symbol that another library defines is bound to; never null. The name is the object
  // file's, which has an underscore before that of the source.
  using Resolve = std::function<void*(const std::string& name)>;

  // Loads the file. Throws std::runtime_error for what is not understood.
  // Symbols that the process may define in the library's place are bound by `resolve_weak`, which
  // gives null for those that it does not.
  Image(const std::string& path, const Resolve& resolve, const Resolve& resolve_weak);
  // Nothing may call the library any more.
  ~Image();
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  // Runs the library's initialisers: once, and when exceptions in them can find its tables.
  void Initialise() const;

  // The address of a symbol that the library exports; null when it does not.
  void* Find(std::string_view name) const;

  bool Contains(const void* address) const;
  const UnwindTables& unwind_tables() const { return unwind_tables_; }

 private:
  struct Part {
    std::uint64_t address, size, file_offset, file_size;
    int protection;
  };
  // Addresses are offsets from the library's own.
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
  std::uint32_t binding_[10] = {};  // offset and length: rebase, bind, weak, lazy, export
  std::uint32_t symbols_ = 0, symbol_count_ = 0, strings_ = 0;
  UnwindTables unwind_tables_;
};

}  // namespace zqv::macho
