// A boundary is a line that begins with two hyphens and the boundary parameter of an open multipart
// (RFC 2046, section 5.1.1). Two more hyphens after the parameter make it a closing boundary. The
// rest of the line is ignored. The line end before the boundary belongs to it, not to the text:
//
//   "text\r\n--b\r\nnext part"     the text is "text", the boundary line "--b"
//
// Mimetic reads a text through a buffer of 4,096 bytes, and the places where that buffer becomes
// full affect the results (see BlockReader). The results here are the same, but nothing is copied,
// and lines that do not begin with "-" are skipped 16 or 64 bytes at a time.
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

// Splits a text into lines as mimetic does, which reads the text through a buffer. Nothing is
// buffered here: only the positions at which mimetic's buffer begins and is full are computed.
//
// QUIRK: mimetic writes the buffer out to the text when it is full, except for its last line. When
// that line fills the whole buffer, it is written out, too, and the next byte is taken for the
// start of a line. A line end that was written out stays in the text even if a boundary follows.
// Equal to mimetic's result. Test: Parser.GivesTheReferencesTreeForEveryBodyLengthAroundItsBlocks.
class BlockReader {
 public:
  BlockReader(const char* at, const char* end)
      : at_(at), end_(end), skipped_to_(at), block_(at), line_(at) {}

  // The position after the line that was read last, including its line end.
  const char* at() const { return at_; }
  // The line that was read last, without its line end. Of a line longer than the buffer, only the
  // bytes after the ones that were written out.
  std::string_view line() const { return {line_, static_cast<std::size_t>(line_end_ - line_)}; }

  // Reads a line. May skip lines before it that do not begin with "-" and so cannot be boundaries.
  // Returns false when the text ends before a line end is found.
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

  // Where the text ends if the line that was read last is a boundary: before the line end in front
  // of this line or, if that line end was written out, at the start of this line.
  const char* TextEnd() const {
    const std::ptrdiff_t before = line_ - block_;
    if (before >= 2 && IsPair(line_[-1], line_[-2])) return line_ - 2;
    return before >= 1 && IsLineEnd(line_[-1]) ? line_ - 1 : line_;
  }

 private:
  static constexpr std::ptrdiff_t kBlock = 4093;  // bytes after which mimetic's buffer is full
  static constexpr std::ptrdiff_t kStep = 4 * kBytes16;

  // The position at which the buffer is full, or `end_` when the text ends before that.
  const char* Full() const { return end_ - block_ > kBlock ? block_ + kBlock : end_; }

  // Moves `at_`, the start of a line, to the start of the first line in the buffer that begins with
  // "-". If the search finds none, moves `at_` to the last line start that the search reached.
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

  // The mask (base/bytes16.h) of the CR and LF characters, among 16 bytes, that have a "-" after
  // them. Reads 17 bytes.
  static Bytes16 DashesAt(const char* bytes) {
    return AreLineEnds(base::LoadBytes16(bytes)) & (base::LoadBytes16(bytes + 1) == '-');
  }
  // Whether any of 64 bytes is a CR or LF that has a "-" after it. Reads 65 bytes. Checks first
  // whether there is a "-" at all, which is seldom the case.
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

  // The last start of a line from `at_`, which is the start of a line, to `limit`. Whether two CR
  // or LF characters are one line end or two depends on the CR and LF characters before them. So a
  // run of such characters is scanned from its first.
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

  // Does nothing unless the buffer is full. Then writes it out: moves its start to the start of the
  // current line or, when this line alone fills the buffer, to `at_`.
  void EmptyFullBuffer() {
    if (at_ - block_ < kBlock) return;
    if (line_ == block_) line_ = at_;
    block_ = line_;
  }

  const char* at_;
  const char* const end_;
  const char* skipped_to_;  // SkipPlainLines does nothing before this position
  const char* block_;       // the start of the buffer
  const char* line_;        // the start of the current line
  const char* line_end_ = nullptr;
};

}  // namespace

// QUIRK: the closing boundary of an outer multipart is not distinguished from its other boundaries.
// Equal to mimetic's result. Test: Parser.InnerMultipartWithoutEndLosesTheRest.
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
