#include "cli/tnef.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "cli/charset_text.h"

namespace zqv::cli {
namespace {

constexpr std::string_view kSignature = "\x78\x9F\x3E\x22";

// The low half of an attribute's identifier.
enum Attribute : std::uint16_t {
  kAttachData = 0x800F,
  kAttachTitle = 0x8010,
  kAttachBegin = 0x9002,  // the first attribute of each attachment
  kAttachProperties = 0x9005,
  kCodePage = 0x9007,
};

enum Property : std::uint16_t {
  kData = 0x3701,
  kShortName = 0x3704,
  kLongName = 0x3707,
  kMimeType = 0x370E,
  kContentId = 0x3712,
};

enum PropertyType : std::uint16_t {
  kObject = 0x000D,
  kText8 = 0x001E,
  kText16 = 0x001F,
  kClassId = 0x0048,
  kBinary = 0x0102,
};
constexpr std::uint16_t kManyValues = 0x1000;  // a flag in a property's type: several values follow
// Properties from here on have a name before the value.
constexpr std::uint16_t kFirstNamed = 0x8000;

// Reads little-endian numbers and bytes from the front of a text. After its end, all numbers are 0
// and all bytes empty.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : rest_(bytes) {}

  bool is_good() const { return is_good_; }
  bool IsAtEnd() const { return rest_.empty() || !is_good_; }

  std::string_view Bytes(std::size_t count) {
    if (count > rest_.size()) {
      is_good_ = false;
      rest_ = {};
    }
    const std::string_view bytes = rest_.substr(0, count);
    rest_.remove_prefix(bytes.size());
    return bytes;
  }

  std::uint32_t Number(std::size_t count) {
    std::uint32_t number = 0;
    const std::string_view bytes = Bytes(count);
    for (std::size_t i = bytes.size(); i > 0; --i) {
      number = number << 8U | static_cast<unsigned char>(bytes[i - 1]);
    }
    return number;
  }

  // Reads bytes and the padding to a multiple of four. The padding may be missing at the end.
  std::string_view PaddedBytes(std::size_t count) {
    const std::string_view bytes = Bytes(count);
    rest_.remove_prefix(std::min(rest_.size(), (4 - count % 4) % 4));
    return bytes;
  }

 private:
  std::string_view rest_;
  bool is_good_ = true;
};

std::string_view UpToZero(std::string_view text) { return text.substr(0, text.find('\0')); }

std::string TrimmedUtf16(std::string_view bytes) {
  const std::string text = Utf8Of(bytes, "utf-16le").value_or(std::string());
  return std::string(UpToZero(text));
}

// The size of a value of a type with fixed size.
std::size_t FixedSize(std::uint16_t type) {
  constexpr std::uint16_t kLargest[] = {0x0005, 0x0006, 0x0007, 0x0014, 0x0040};
  if (type == kClassId) return 16;
  const bool is_large =
      std::find(std::begin(kLargest), std::end(kLargest), type) != std::end(kLargest);
  return is_large ? 8 : 4;
}

class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  TnefContent Run() {
    bytes_.Bytes(kSignature.size() + 2);  // the signature is followed by a key
    while (!bytes_.IsAtEnd()) {
      bytes_.Number(1);  // level: message or attachment
      const auto attribute = static_cast<std::uint16_t>(bytes_.Number(2));
      bytes_.Number(2);  // type of the attribute
      const std::string_view data = bytes_.Bytes(bytes_.Number(4));
      bytes_.Number(2);  // checksum
      ReadAttribute(attribute, data);
    }
    content_.is_whole = bytes_.is_good();
    return std::move(content_);
  }

 private:
  void ReadAttribute(std::uint16_t attribute, std::string_view data) {
    if (attribute == kCodePage) {
      code_page_ = "cp" + std::to_string(ByteReader(data).Number(4));
    } else if (attribute == kAttachBegin) {
      content_.files.emplace_back();
      has_long_name_ = false;
    } else if (content_.files.empty()) {
      return;  // belongs to the message itself
    } else if (attribute == kAttachData) {
      content_.files.back().bytes = data;
    } else if (attribute == kAttachTitle && !has_long_name_) {
      content_.files.back().name = Text8(data);
    } else if (attribute == kAttachProperties) {
      ReadProperties(data);
    }
  }

  void ReadProperties(std::string_view data) {
    ByteReader reader(data);
    for (std::uint32_t left = reader.Number(4); left > 0 && !reader.IsAtEnd(); --left) {
      const auto type = static_cast<std::uint16_t>(reader.Number(2));
      const auto property = static_cast<std::uint16_t>(reader.Number(2));
      if (property >= kFirstNamed) SkipName(&reader);
      const std::optional<std::string_view> value = ReadValue(type, &reader);
      if (value) UseProperty(property, type, *value);
    }
  }

  static void SkipName(ByteReader* reader) {
    constexpr std::size_t kSetSize = 16;
    reader->Bytes(kSetSize);
    const bool is_number = reader->Number(4) == 0;
    if (is_number) {
      reader->Number(4);
    } else {
      reader->PaddedBytes(reader->Number(4));
    }
  }

  // Reads the first value of a property of variable size. Nothing for other types.
  static std::optional<std::string_view> ReadValue(std::uint16_t type, ByteReader* reader) {
    const bool is_many = (type & kManyValues) != 0;
    const auto one = static_cast<std::uint16_t>(type & ~kManyValues);
    const bool is_variable = one == kObject || one == kText8 || one == kText16 || one == kBinary;
    std::uint32_t count = is_many || is_variable ? reader->Number(4) : 1;
    std::optional<std::string_view> first;
    for (; count > 0 && !reader->IsAtEnd(); --count) {
      if (!is_variable) {
        reader->Bytes(FixedSize(one));
        continue;
      }
      const std::string_view value = reader->PaddedBytes(reader->Number(4));
      if (!first) first = value;
    }
    return first;
  }

  void UseProperty(std::uint16_t property, std::uint16_t type, std::string_view value) {
    TnefFile& file = content_.files.back();
    if (property == kData) {
      constexpr std::size_t kInterfaceSize = 16;  // an object begins with an interface identifier
      if (type == kObject) value.remove_prefix(std::min(value.size(), kInterfaceSize));
      if (file.bytes.empty()) file.bytes = value;
      return;
    }
    const std::string text = type == kText16 ? TrimmedUtf16(value) : Text8(value);
    if (text.empty()) return;
    if (property == kLongName) {
      file.name = text;
      has_long_name_ = true;
    } else if (property == kShortName && file.name.empty()) {
      file.name = text;
    } else if (property == kMimeType) {
      file.mime_type = text;
    } else if (property == kContentId) {
      file.content_id = text;
    }
  }

  std::string Text8(std::string_view bytes) const {
    const std::string_view text = UpToZero(bytes);
    return Utf8Of(text, code_page_).value_or(GuessedUtf8(text));
  }

  ByteReader bytes_;
  TnefContent content_;
  std::string code_page_;
  bool has_long_name_ = false;
};

}  // namespace

bool IsTnef(std::string_view bytes) { return bytes.substr(0, kSignature.size()) == kSignature; }

TnefContent ReadTnef(std::string_view bytes) { return Reader(bytes).Run(); }

}  // namespace zqv::cli
