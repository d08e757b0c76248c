#include "cli/packed_files.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "base/ascii.h"
#include "cli/text.h"
#include "mime/line_ends.h"
#include "text/transfer_codes.h"

namespace zqv::cli {
namespace {

constexpr std::string_view kUuBegin = "begin ";
constexpr std::string_view kBase64Begin = "begin-base64 ";
constexpr std::string_view kYencBegin = "=ybegin ";

// Iterates over the lines of a text.
class LineReader {
 public:
  LineReader(std::string_view text, std::size_t at) : text_(text), at_(at) {}

  bool IsAtEnd() const { return at_ >= text_.size(); }
  std::size_t at() const { return at_; }

  // Returns the next line, without its end, and does not move on.
  std::string_view Peek() const {
    const char* const begin = text_.data() + at_;
    const char* const end = mime::FindLineEnd(begin, text_.data() + text_.size());
    return {begin, static_cast<std::size_t>(end - begin)};
  }
  std::string_view Next() {
    const std::string_view line = Peek();
    const char* const end = text_.data() + text_.size();
    const char* const line_end = line.data() + line.size();
    const char* const next = line_end == end ? end : mime::SkipLineEnd(line_end, end);
    at_ = static_cast<std::size_t>(next - text_.data());
    return line;
  }

 private:
  const std::string_view text_;
  std::size_t at_;
};

// The value of a character in uuencode. A blank and "`" are zero.
unsigned UuValue(char c) { return (static_cast<unsigned char>(c) - 32U) & 63U; }
bool IsUuCharacter(char c) { return c >= ' ' && c <= '`'; }

// Decodes a line of uuencode, whose first character is its number of bytes. Nothing when the line
// is not uuencode. Blanks at its end may have been removed, and a checksum may follow.
std::optional<std::string> DecodeUuLine(std::string_view line) {
  constexpr std::size_t kGroup = 4;
  constexpr std::size_t kMostBehind = 2;
  if (line.empty() || !std::all_of(line.begin(), line.end(), IsUuCharacter)) return std::nullopt;
  const std::size_t count = UuValue(line.front());
  line.remove_prefix(1);
  const std::size_t needed = (count + 2) / 3 * kGroup;
  if (line.size() > needed + kMostBehind) return std::nullopt;
  std::string bytes;
  for (std::size_t i = 0; bytes.size() < count; i += kGroup) {
    unsigned bits = 0;
    for (std::size_t j = i; j < i + kGroup; ++j) {
      bits = bits << 6U | (j < line.size() ? UuValue(line[j]) : 0U);
    }
    for (const unsigned shift : {16U, 8U, 0U}) {
      if (bytes.size() < count) bytes += static_cast<char>(bits >> shift & 255U);
    }
  }
  return bytes;
}

// Returns the name in "644 a b.txt": "a b.txt". Nothing when there are no permissions before it.
std::optional<std::string> NameBehindRights(std::string_view text) {
  const std::size_t digits = text.find_first_not_of("01234567");
  if (digits != 3 && digits != 4) return std::nullopt;
  if (!base::IsBlank(text[digits])) return std::nullopt;
  const std::string_view name = Trim(text.substr(digits));
  return name.empty() ? std::nullopt : std::optional<std::string>(name);
}

void ReadUuLines(LineReader* lines, PackedFile* file) {
  while (!lines->IsAtEnd()) {
    if (Trim(lines->Peek()) == "end") {
      lines->Next();
      file->is_whole = true;
      return;
    }
    const std::optional<std::string> bytes =
        lines->Peek().empty() ? std::string() : DecodeUuLine(lines->Peek());
    if (!bytes) return;  // Other text follows, so the end is missing.
    lines->Next();
    file->bytes += *bytes;
  }
}

std::optional<PackedFile> ReadUuencode(LineReader lines) {
  PackedFile file = {Packing::kUuencode, {}, {}, false, lines.at(), 0};
  std::optional<std::string> name = NameBehindRights(lines.Next().substr(kUuBegin.size()));
  const bool is_one = name && (lines.Peek() == "`" || Trim(lines.Peek()) == "end" ||
                               DecodeUuLine(lines.Peek()).has_value());
  if (!is_one) return std::nullopt;
  file.name = std::move(*name);
  ReadUuLines(&lines, &file);
  file.end = lines.at();
  return file;
}

std::optional<PackedFile> ReadBase64(LineReader lines) {
  PackedFile file = {Packing::kUuencode, {}, {}, false, lines.at(), 0};
  std::optional<std::string> name = NameBehindRights(lines.Next().substr(kBase64Begin.size()));
  if (!name) return std::nullopt;
  file.name = std::move(*name);
  std::string code;
  while (!lines.IsAtEnd() && !file.is_whole) {
    const std::string_view line = lines.Next();
    file.is_whole = Trim(line) == "====";
    if (!file.is_whole) code += line;
  }
  file.bytes = text::DecodeBase64(code).view();
  file.end = lines.at();
  return file;
}

// Returns the value of "key=" in a line of yEnc, which ends at the next blank. The name, which is
// the last key, ends with the line.
std::string_view YencValue(std::string_view line, std::string_view key) {
  const std::size_t at = line.find(std::string(" ").append(key).append("="));
  if (at == kNowhere) return {};
  const std::string_view value = line.substr(at + key.size() + 2);
  return key == "name" ? Trim(value) : value.substr(0, value.find(' '));
}

std::optional<std::size_t> YencNumber(std::string_view line, std::string_view key) {
  const std::string_view text = YencValue(line, key);
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || error != std::errc()) return std::nullopt;
  return number;
}

void DecodeYencLine(std::string_view line, std::string* bytes) {
  constexpr unsigned kShift = 42;
  constexpr unsigned kEscapeShift = 64;
  for (std::size_t i = 0; i < line.size(); ++i) {
    unsigned shift = kShift;
    if (line[i] == '=' && i + 1 < line.size()) {
      ++i;
      shift += kEscapeShift;
    }
    *bytes += static_cast<char>(static_cast<unsigned char>(line[i]) - shift);
  }
}

std::optional<PackedFile> ReadYenc(LineReader lines) {
  PackedFile file = {Packing::kYenc, {}, {}, false, lines.at(), 0};
  const std::string_view head = lines.Next();
  file.name = YencValue(head, "name");
  if (file.name.empty() || !YencNumber(head, "size")) return std::nullopt;
  while (!lines.IsAtEnd()) {
    const std::string_view line = lines.Next();
    if (line.substr(0, 6) == "=yend ") {
      file.is_whole = YencNumber(line, "size") == file.bytes.size();
      break;
    }
    if (line.substr(0, 7) != "=ypart ") DecodeYencLine(line, &file.bytes);
  }
  file.end = lines.at();
  return file;
}

// Finds the next line at or after offset `at` that begins with `start`.
std::size_t FindLine(std::string_view text, std::string_view start, std::size_t at) {
  for (; (at = text.find(start, at)) != kNowhere; ++at) {
    if (at == 0 || base::IsLineEnd(text[at - 1])) return at;
  }
  return kNowhere;
}

struct Format {
  std::string_view start;
  std::optional<PackedFile> (*read)(LineReader lines);
};
constexpr Format kFormats[] = {
    {kUuBegin, ReadUuencode}, {kBase64Begin, ReadBase64}, {kYencBegin, ReadYenc}};

}  // namespace

std::string_view PackingName(Packing packing) {
  switch (packing) {
    case Packing::kNone:
      return {};
    case Packing::kUuencode:
      return "uuencode";
    case Packing::kYenc:
      return "yenc";
    case Packing::kTnef:
      break;
  }
  return "tnef";
}

std::vector<PackedFile> FindPackedFiles(std::string_view text) {
  std::vector<PackedFile> files;
  for (const Format& format : kFormats) {
    std::size_t at = 0;
    while ((at = FindLine(text, format.start, at)) != kNowhere) {
      std::optional<PackedFile> file = format.read(LineReader(text, at));
      at = file ? std::max(file->end, at + 1) : at + 1;
      if (file) files.push_back(std::move(*file));
    }
  }
  std::sort(files.begin(), files.end(),
            [](const PackedFile& a, const PackedFile& b) { return a.begin < b.begin; });
  return files;
}

}  // namespace zqv::cli
