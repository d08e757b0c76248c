#include "cli/message_source.h"

#include <algorithm>

#include "base/ascii.h"
#include "base/unicode.h"
#include "cli/message.h"
#include "mime/open_boundaries.h"

namespace zqv::cli {
namespace {

// Returns `bytes` with a line end, of the same kind as the last one before. Empty when they end
// with one already.
std::string Completed(std::string_view bytes) {
  if (bytes.empty() || base::IsLineEnd(bytes.back())) return {};
  const std::size_t last = bytes.find_last_of("\r\n");
  return std::string(bytes) + (last == std::string_view::npos ? '\n' : bytes[last]);
}

// Returns the lines of a header and the line that ended it.
std::string_view LinesOf(const mime::Part& part, const LineNumbers& lines) {
  if (part.header_end != mime::HeaderEnd::kOtherLine) return part.header;
  const char* const begin = part.header.data();
  const std::string_view last = lines.RestOfLine(begin + part.header.size());
  return {begin, part.header.size() + last.size()};
}

}  // namespace

MessageSource::MessageSource(std::string_view bytes)
    : completed_(Completed(base::WithoutByteOrderMark(bytes))),
      bytes_(completed_.empty() ? base::WithoutByteOrderMark(bytes) : completed_),
      written_(bytes_.substr(0, base::WithoutByteOrderMark(bytes).size())),
      lines_(bytes_),
      message_(bytes_, mime::OuterBoundary::kEndsInner),
      ordinals_(message_.parts().size(), 0) {
  for (const mime::Part& part : parts()) {
    mime::PartIndex ordinal = 0;
    for (mime::PartIndex child = part.first_child; child != mime::kNoPart;
         child = parts()[child].next_sibling) {
      ordinals_[child] = ++ordinal;
    }
  }
}

std::string MessageSource::NumberOf(mime::PartIndex part) const {
  std::vector<std::size_t> ordinals;
  for (; parts()[part].parent != mime::kNoPart; part = parts()[part].parent) {
    ordinals.push_back(ordinals_[part]);
  }
  return PartNumber(ordinals);
}

mime::PartIndex MessageSource::FindPart(std::string_view number) const {
  mime::PartIndex part = 0;
  if (number == "0") return part;
  while (part != mime::kNoPart && !number.empty()) {
    const std::string_view digits = number.substr(0, number.find('.'));
    number.remove_prefix(std::min(number.size(), digits.size() + 1));
    mime::PartIndex child = parts()[part].first_child;
    while (child != mime::kNoPart && std::to_string(ordinals_[child]) != digits) {
      child = parts()[child].next_sibling;
    }
    part = child;
  }
  return part;
}

std::string_view HeaderOf(std::string_view message) {
  for (std::size_t at = 0; (at = message.find_first_of("\r\n", at)) != std::string_view::npos;) {
    const std::string_view rest = message.substr(at);
    const std::size_t end = rest.substr(0, 2) == "\r\n" ? 2 : 1;
    const std::string_view next = rest.substr(end);
    if (next.empty() || !base::IsLineEnd(next.front())) {
      at += end;
      continue;
    }
    return message.substr(0, at + end + (next.substr(0, 2) == "\r\n" ? 2 : 1));
  }
  return message;
}

std::size_t MessageSource::LineAfter(const mime::Part& multipart) const {
  const char* const end = multipart.whole.data() + multipart.whole.size();
  if (end == bytes_.data() + bytes_.size()) return kNoLine;
  return lines_.At(end) + (base::IsLineEnd(*end) ? 1 : 0);
}

std::string_view ValueBytes(const mime::Field& field) {
  return field.bytes.substr(field.bytes.find(':') + 1);
}

std::vector<std::string_view> BoundariesInHeaders(const MessageSource& source) {
  std::vector<std::string_view> found(source.parts().size());
  mime::OpenBoundaries open;
  const auto enter = [&](mime::PartIndex index) {
    const mime::Part& part = source.parts()[index];
    ForEachLine(LinesOf(part, source.lines()), [&](std::string_view line, std::string_view) {
      if (found[index].data() != nullptr || line.substr(0, mime::kHyphens.size()) != mime::kHyphens)
        return;
      if (open.AnyBegins(line.substr(mime::kHyphens.size()))) found[index] = line;
    });
    if (part.kind == mime::PartKind::kMultipart) open.Push(part.boundary);
    return mime::Visit::kInside;
  };
  const auto leave = [&](mime::PartIndex index) {
    if (source.parts()[index].kind == mime::PartKind::kMultipart) open.Pop();
  };
  mime::Walk(source.parts(), 0, enter, leave);
  return found;
}

}  // namespace zqv::cli
