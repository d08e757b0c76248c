// A boundary is a line that begins with two hyphens and the boundary parameter of an open multipart
// (RFC 2046, section 5.1.1); what follows on the line does not matter. The line end before it
// belongs to the boundary, not to the text.
//
//   text \r\n --b \r\n next part     the text is "text"
//
// The MIME library reads a text through a buffer of 4,096 bytes, and its results depend on where
// that is full (see BlockReader). Ours equal them, but the text is read where it lies: lines that
// cannot be boundaries are skipped sixteen bytes at a time, by looking for "-" after a line end.
#include "mime/part_text.h"

#include <cstddef>

#include "base/ascii.h"
#include "base/bytes16.h"
#include "mime/line_ends.h"

namespace zqv::mime {
namespace {

using base::Bytes16;
using base::IsLineEnd;
using base::kBytes16;

// The lines of a text as the MIME library's buffer holds them.
//
// QUIRK: when the buffer is full, all but its last line is written out; of a line that fills the
// buffer alone, all is, and what follows counts as the start of a line. So the line end before a
// boundary stays in the text when it was written out just before. Equal to the MIME library's
// result. Test: Parser.GivesTheReferencesTreeForEveryBodyLengthAroundItsBlocks.
class BlockReader {
 public:
  BlockReader(const char* at, const char* end)
      : at_(at), end_(end), skipped_to_(at), block_(at), line_(at) {}

  const char* at() const { return at_; }
  // The line that was read; it begins no earlier than the buffer.
  std::string_view line() const { return {line_, static_cast<std::size_t>(line_end_ - line_)}; }

  // Reads a line and its end; false when the text ends first. Lines that cannot be boundaries are
  // skipped.
  bool ReadLine() {
    SkipPlainLines();
    line_ = at_;
    while (true) {
      EmptyFullBuffer();
      line_end_ = FindLineEnd(at_, Full());
      at_ = line_end_;
      if (at_ == end_) return false;
      if (at_ == Full()) continue;
      at_ = SkipLineEnd(at_, end_);
      return true;
    }
  }

  // Where the text ends when the line that was read is a boundary: before the line end in front of
  // it, if that is in the buffer.
  const char* TextEnd() const {
    const std::ptrdiff_t before = line_ - block_;
    if (before >= 2 && IsPair(line_[-1], line_[-2])) return line_ - 2;
    return before >= 1 && IsLineEnd(line_[-1]) ? line_ - 1 : line_;
  }

 private:
  static constexpr std::ptrdiff_t kBlock = 4093;  // bytes that fill the buffer
  static constexpr std::ptrdiff_t kStep = 4 * kBytes16;

  // Where the buffer is full, or the text ends.
  const char* Full() const { return end_ - block_ > kBlock ? block_ + kBlock : end_; }

  // From the start of a line to that of another, with all between in the buffer: the last one, or
  // the first that begins with "-".
  void SkipPlainLines() {
    if (at_ < skipped_to_ || (at_ != end_ && *at_ == '-')) return;
    const char* const full = Full();
    const char* block = at_;
    while (full - block > kStep && !HasDash(block)) block += kStep;
    for (; full - block > static_cast<std::ptrdiff_t>(kBytes16); block += kBytes16) {
      const Bytes16 dashes = DashesAt(block);
      if (base::AnyOf(dashes)) {
        at_ = block + base::FirstOf(dashes) + 1;
        return;
      }
    }
    at_ = LastLineStart(block);
    skipped_to_ = full;
  }

  // After which of sixteen bytes a line begins with "-".
  static Bytes16 DashesAt(const char* bytes) {
    return AreLineEnds(base::LoadBytes16(bytes)) & (base::LoadBytes16(bytes + 1) == '-');
  }
  // Whether a line begins with "-" after one of 64 bytes. Most have no "-" at all.
  static bool HasDash(const char* bytes) {
    const auto hyphens = [bytes](std::ptrdiff_t at) {
      return base::LoadBytes16(bytes + at) == '-';
    };
    constexpr std::ptrdiff_t kSize = kBytes16;
    const Bytes16 any =
        hyphens(1) | hyphens(1 + kSize) | hyphens(1 + 2 * kSize) | hyphens(1 + 3 * kSize);
    return base::AnyOf(any) &&
           base::AnyOf(DashesAt(bytes) | DashesAt(bytes + kSize) | DashesAt(bytes + 2 * kSize) |
                       DashesAt(bytes + 3 * kSize));
  }

  // The last line start between here, which is one, and `limit`. Two line-end characters may be one
  // line end or two, which only those before them tell: a run of them is read from its beginning.
  const char* LastLineStart(const char* limit) const {
    const char* run = limit;
    while (run != at_ && !IsLineEnd(run[-1])) --run;
    while (run != at_ && IsLineEnd(run[-1])) --run;
    const char* start = run;
    while (start != limit && IsLineEnd(*start)) {
      const char* const next = SkipLineEnd(start, end_);
      if (next > limit) break;
      start = next;
    }
    return start;
  }

  void EmptyFullBuffer() {
    if (at_ - block_ < kBlock) return;
    if (line_ == block_) line_ = at_;
    block_ = line_;
  }

  const char* at_;
  const char* const end_;
  const char* skipped_to_;  // lines that begin before it are read one by one
  const char* block_;       // the first byte that is in the buffer
  const char* line_;
  const char* line_end_ = nullptr;
};

}  // namespace

// QUIRK: only the innermost multipart's boundary can close: the closing boundary of an outer one is
// like any other of its boundaries. Equal to the MIME library's result. Test:
// Parser.InnerMultipartWithoutEndLosesTheRest.
Boundary BoundaryOf(std::string_view line, OpenBoundaries& open) {
  if (line.substr(0, kHyphens.size()) != kHyphens || open.IsEmpty()) return Boundary::kNone;
  line.remove_prefix(kHyphens.size());
  const std::string_view innermost = open.Innermost();
  if (line.substr(0, innermost.size()) == innermost) {
    return line.substr(innermost.size(), kHyphens.size()) == kHyphens ? Boundary::kClosing
                                                                      : Boundary::kNext;
  }
  return open.AnyBegins(line) ? Boundary::kOuter : Boundary::kNone;
}

PartText ReadPartText(const char* at, const char* end, OpenBoundaries& open) {
  const auto text_to = [at](const char* to) {
    return std::string_view(at, static_cast<std::size_t>(to - at));
  };
  if (open.IsEmpty()) return {text_to(end), Boundary::kNone, end, {}};
  BlockReader reader(at, end);
  while (reader.ReadLine()) {
    const Boundary boundary = BoundaryOf(reader.line(), open);
    if (boundary == Boundary::kNone) continue;
    return {text_to(reader.TextEnd()), boundary, reader.at(), reader.line()};
  }
  return {text_to(end), Boundary::kNone, end, {}};
}

}  // namespace zqv::mime
