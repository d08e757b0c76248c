#include "tests/macho/image.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zqv::macho {
namespace {

constexpr std::uint32_t kMagic = 0xFEEDFACF;
#if defined(__x86_64__)
constexpr std::uint32_t kProcessor = 0x01000007;
#elif defined(__aarch64__)
constexpr std::uint32_t kProcessor = 0x0100000C;
#endif

constexpr std::uint32_t kSymbolTable = 0x2;
constexpr std::uint32_t kSegment = 0x19;
constexpr std::uint32_t kBindingInformation = 0x80000022;

// The type of sections that have pointers to initialisers.
constexpr std::uint32_t kInitialisers = 0x9;

// Structures of the Mach-O format.
struct Header {
  std::uint32_t magic, processor, variant, type, commands, commands_size, flags, reserved;
};
struct SegmentCommand {
  std::uint32_t command, size;
  char name[16];
  std::uint64_t address, memory_size, file_offset, file_size;
  std::int32_t most_protection, protection;
  std::uint32_t sections, flags;
};
struct Section {
  char name[16], segment[16];
  std::uint64_t address, size;
  std::uint32_t offset, alignment, relocations, relocation_count, flags, reserved[3];
};
struct Symbol {
  std::uint32_t name;
  std::uint8_t type, section;
  std::uint16_t description;
  std::uint64_t value;
};

template <class Record>
Record Read(const unsigned char* at) {
  Record record;
  std::memcpy(&record, at, sizeof record);
  return record;
}

std::vector<unsigned char> ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot open " + path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The opcodes for rebasing and binding: each has a small immediate value, and may be followed by
// numbers of variable length.
class Operations {
 public:
  Operations(const unsigned char* at, std::size_t length) : at_(at), end_(at + length) {}

  bool IsAtEnd() const { return at_ == end_; }

  // Reads the next opcode, and stores its immediate value.
  unsigned Next() {
    const unsigned byte = *at_++;
    value_ = byte & 0x0F;
    return byte & 0xF0;
  }
  unsigned value() const { return value_; }

  std::uint64_t Number() {
    std::uint64_t number = 0;
    unsigned shift = 0;
    unsigned byte = 0x80;
    for (; (byte & 0x80) != 0; shift += 7) {
      byte = *at_++;
      number |= std::uint64_t{byte & 0x7F} << shift;
    }
    last_shift_ = shift;
    is_negative_ = (byte & 0x40) != 0;
    return number;
  }

  std::int64_t SignedNumber() {
    std::uint64_t number = Number();
    if (is_negative_ && last_shift_ < 64) number |= ~std::uint64_t{0} << last_shift_;
    return static_cast<std::int64_t>(number);
  }

  std::string Text() {
    const std::string text = reinterpret_cast<const char*>(at_);
    at_ += text.size() + 1;
    return text;
  }

 private:
  const unsigned char* at_;
  const unsigned char* end_;
  unsigned value_ = 0;
  unsigned last_shift_ = 0;
  bool is_negative_ = false;
};

constexpr std::size_t kPointer = sizeof(void*);

}  // namespace

Image::Image(const std::string& path, const Resolve& resolve, const Resolve& resolve_weak)
    : path_(path), file_(ReadFile(path)) {
  ReadCommands();
  Map();
  Rebase(binding_[0], binding_[1]);
  const Resolve own_first = [&](const std::string& name) {
    void* const own = Find(name);
    return own != nullptr ? own : resolve(name);
  };
  Bind(binding_[2], binding_[3], false, own_first);
  Bind(binding_[4], binding_[5], false, [&](const std::string& name) {
    void* const of_process = resolve_weak(name);
    return of_process != nullptr ? of_process : own_first(name);
  });
  Bind(binding_[6], binding_[7], true, own_first);
  Protect();
  unwind_tables_ = {base_, frames_.size != 0 ? base_ + frames_.address : nullptr, frames_.size,
                    compact_.size != 0 ? base_ + compact_.address : nullptr, compact_.size};
}

Image::~Image() {
  if (base_ != nullptr) munmap(base_, size_);
}

void Image::ReadCommands() {
  if (file_.size() < sizeof(Header)) throw std::runtime_error(path_ + ": too short");
  const auto header = Read<Header>(file_.data());
  if (header.magic != kMagic) throw std::runtime_error(path_ + ": no Mach-O file of one processor");
  if (header.processor != kProcessor) throw std::runtime_error(path_ + ": another processor's");
  const unsigned char* at = file_.data() + sizeof(Header);
  for (std::uint32_t left = header.commands; left > 0; --left) {
    const auto command = Read<std::uint32_t>(at);
    const auto size = Read<std::uint32_t>(at + sizeof command);
    if (command == kSegment) {
      ReadSegment(at);
    } else if (command == kBindingInformation) {
      std::memcpy(binding_, at + 2 * sizeof command, sizeof binding_);
    } else if (command == kSymbolTable) {
      symbols_ = Read<std::uint32_t>(at + 8);
      symbol_count_ = Read<std::uint32_t>(at + 12);
      strings_ = Read<std::uint32_t>(at + 16);
    }
    at += size;
  }
}

void Image::ReadSegment(const unsigned char* command) {
  const auto segment = Read<SegmentCommand>(command);
  segments_.push_back({segment.address, segment.memory_size, segment.file_offset, segment.file_size,
                       segment.protection});
  size_ = std::max<std::size_t>(size_, segment.address + segment.memory_size);
  const unsigned char* at = command + sizeof segment;
  for (std::uint32_t left = segment.sections; left > 0; --left, at += sizeof(Section)) {
    const auto section = Read<Section>(at);
    const Stretch stretch = {section.address, section.size};
    const std::string_view name(section.name, strnlen(section.name, sizeof section.name));
    if (name == "__eh_frame") frames_ = stretch;
    if (name == "__unwind_info") compact_ = stretch;
    if ((section.flags & 0xFF) == kInitialisers) initialisers_ = stretch;
  }
}

void Image::Map() {
  void* const memory =
      mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::runtime_error(path_ + ": no memory");
  base_ = static_cast<char*>(memory);
  for (const Part& segment : segments_) {
    std::memcpy(base_ + segment.address, file_.data() + segment.file_offset, segment.file_size);
  }
}

char* Image::AddressIn(std::size_t segment, std::uint64_t offset) const {
  return base_ + segments_.at(segment).address + offset;
}

// Adds the address of the loaded library to each pointer into the library itself.
void Image::Rebase(std::size_t offset, std::size_t length) const {
  Operations operations(file_.data() + offset, length);
  char* at = nullptr;
  const auto rebase = [&](std::uint64_t count, std::uint64_t step) {
    for (; count > 0; --count, at += step) {
      const auto old = Read<std::uint64_t>(reinterpret_cast<unsigned char*>(at));
      const std::uint64_t pointer = old + reinterpret_cast<std::uintptr_t>(base_);
      std::memcpy(at, &pointer, sizeof pointer);
    }
  };
  while (!operations.IsAtEnd()) {
    const unsigned operation = operations.Next();
    const unsigned value = operations.value();
    if (operation == 0x00) return;
    if (operation == 0x10) continue;  // only one type of pointer is used
    if (operation == 0x20) {
      at = AddressIn(value, operations.Number());
    } else if (operation == 0x30) {
      at += operations.Number();
    } else if (operation == 0x40) {
      at += value * kPointer;
    } else if (operation == 0x50) {
      rebase(value, kPointer);
    } else if (operation == 0x60) {
      rebase(operations.Number(), kPointer);
    } else if (operation == 0x70) {
      rebase(1, kPointer + operations.Number());
    } else if (operation == 0x80) {
      const std::uint64_t count = operations.Number();
      rebase(count, kPointer + operations.Number());
    } else {
      throw std::runtime_error(path_ + ": an unknown way to rebase");
    }
  }
}

// Writes the addresses of symbols. Opcodes of lazy symbols contain end marks, which are skipped.
void Image::Bind(std::size_t offset, std::size_t length, bool is_lazy,
                 const Resolve& resolve) const {
  Operations operations(file_.data() + offset, length);
  char* at = nullptr;
  std::int64_t addend = 0;
  std::string name;
  const auto bind = [&](std::uint64_t count, std::uint64_t step) {
    for (; count > 0; --count, at += step) {
      const std::uint64_t pointer =
          reinterpret_cast<std::uintptr_t>(resolve(name)) + static_cast<std::uint64_t>(addend);
      std::memcpy(at, &pointer, sizeof pointer);
    }
  };
  while (!operations.IsAtEnd()) {
    const unsigned operation = operations.Next();
    const unsigned value = operations.value();
    if (operation == 0x00 && !is_lazy) return;
    if (operation == 0x40) {
      name = operations.Text();
    } else if (operation == 0x20) {
      operations
          .Number();  // the number of the library, which is not needed because names are unique
    } else if (operation == 0x60) {
      addend = operations.SignedNumber();
    } else if (operation == 0x70) {
      at = AddressIn(value, operations.Number());
    } else if (operation == 0x80) {
      at += operations.Number();
    } else if (operation == 0x90) {
      bind(1, kPointer);
    } else if (operation == 0xA0) {
      bind(1, kPointer + operations.Number());
    } else if (operation == 0xB0) {
      bind(1, kPointer + value * kPointer);
    } else if (operation == 0xC0) {
      const std::uint64_t count = operations.Number();
      bind(count, kPointer + operations.Number());
    } else if (operation > 0x50) {
      throw std::runtime_error(path_ + ": an unknown way to bind");
    }
  }
}

void Image::Protect() const {
  for (const Part& segment : segments_) {
    // Linux has the same numbers: 1 read, 2 write, 4 execute.
    if (mprotect(base_ + segment.address, segment.size, segment.protection) != 0)
      throw std::runtime_error(path_ + ": a segment cannot be protected");
  }
  __builtin___clear_cache(base_, base_ + size_);
}

void Image::Initialise() const {
  using Initialiser = void (*)(int, char**, char**);
  for (std::uint64_t offset = 0; offset < initialisers_.size; offset += kPointer) {
    Initialiser initialiser = nullptr;
    std::memcpy(&initialiser, base_ + initialisers_.address + offset, sizeof initialiser);
    initialiser(0, nullptr, nullptr);
  }
}

void* Image::Find(std::string_view name) const {
  constexpr std::uint8_t kDebugging = 0xE0;
  constexpr std::uint8_t kType = 0x0E;
  constexpr std::uint8_t kExternal = 0x01;
  for (std::uint32_t i = 0; i < symbol_count_; ++i) {
    const auto symbol = Read<Symbol>(file_.data() + symbols_ + i * sizeof(Symbol));
    const bool is_exported = (symbol.type & kDebugging) == 0 && (symbol.type & kType) == kType &&
                             (symbol.type & kExternal) != 0;
    if (!is_exported) continue;
    if (name == reinterpret_cast<const char*>(file_.data()) + strings_ + symbol.name)
      return base_ + symbol.value;
  }
  return nullptr;
}

bool Image::Contains(const void* address) const {
  const char* const byte = static_cast<const char*>(address);
  return byte >= base_ && byte < base_ + size_;
}

}  // namespace zqv::macho
