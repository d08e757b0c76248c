#include "tests/unit/mime/message_maker.h"

#include <algorithm>
#include <iterator>

namespace zqv::test {
namespace {

// The line ends of a message: one of these in all of it, or another one at each line.
constexpr std::string_view kLineEnds[] = {"\r\n", "\n", "\r\n", "\n", "\r", "\n\r"};
constexpr std::size_t kMixed = std::size(kLineEnds);

constexpr std::size_t kDeepest = 4;

constexpr std::string_view kBoundaries[] = {"b", "b", "bb", "c", "-", "b--", "----=_Part_1", ""};

}  // namespace

std::string MessageMaker::Make() {
  message_.clear();
  boundaries_.clear();
  line_end_ = Below(kMixed + 3);
  constexpr std::size_t kKilobyte = 1024;
  // Three of four messages fill a few buffers only, which is enough for most differences.
  const std::size_t size =
      OneIn(4) ? 4 * kKilobyte + Below(60 * kKilobyte) : 4 * kKilobyte + Below(10 * kKilobyte);
  Add("Subject: x");
  AddMultipart(0, size);
  return std::move(message_);
}

void MessageMaker::EndLine() {
  message_ += kLineEnds[line_end_ < kMixed ? line_end_ : Below(kMixed)];
}

void MessageMaker::Add(std::string_view line) {
  message_ += line;
  EndLine();
}

// Adds the rest of a part's header, or leaves the header without its end, and then the part's body.
void MessageMaker::AddPart(std::size_t depth, std::size_t size) {
  if (OneIn(3)) Add("A: b");
  if (OneIn(40)) Add("no field");
  if (depth < kDeepest && OneIn(4)) return AddMultipart(depth + 1, size);
  if (depth < kDeepest && OneIn(8)) {
    Add("Content-Type: message/rfc822");
    EndLine();
    return AddPart(depth + 1, size);
  }
  EndLine();
  AddText(size);
}

void MessageMaker::AddMultipart(std::size_t depth, std::size_t size) {
  const std::string boundary(kBoundaries[Below(std::size(kBoundaries))]);
  Add("Content-Type: multipart/mixed; boundary=\"" + boundary + "\"");
  EndLine();
  boundaries_.push_back("--" + boundary);
  if (OneIn(3)) AddText(Below(size));
  const std::size_t parts = 1 + Below(4);
  for (std::size_t i = 0; i < parts; ++i) {
    if (!OneIn(10)) EndLine();
    Add(boundaries_.back());
    AddPart(depth, OneIn(3) ? size : size / parts);
  }
  if (!OneIn(6)) {
    if (!OneIn(10)) EndLine();
    Add(boundaries_.back() + "--");
  }
  boundaries_.pop_back();
  if (OneIn(3)) AddText(Below(size));
}

// Adds lines. At most edges of mimetic's buffer it adds a run of line ends.
void MessageMaker::AddText(std::size_t size) {
  const std::size_t start = message_.size();
  while (message_.size() - start < size) {
    const std::size_t to_edge = kLibraryBuffer - (message_.size() - start) % kLibraryBuffer;
    if (to_edge < 200 && !OneIn(8)) {
      AddLineEndsAtEdge(start);
    } else if (OneIn(12)) {
      AddBoundaryLikeLine();
    } else {
      constexpr std::size_t kLengths[] = {0, 1, 20, 76, 76, 76, 76, 300, 1'000, 4'080};
      AddLine(kLengths[Below(std::size(kLengths))] + Below(20));
    }
  }
}

void MessageMaker::AddLine(std::size_t length) {
  message_.append(length, OneIn(20) ? '-' : 'x');
  EndLine();
}

// Adds "-", "--", the beginning of an open boundary, or an open boundary with other characters
// after it.
void MessageMaker::AddBoundaryLikeLine() {
  constexpr std::string_view kStarts[] = {"-", "--", "---", " --b", "x--b", "--bx"};
  if (boundaries_.empty() || !OneIn(4)) return Add(kStarts[Below(std::size(kStarts))]);
  std::string line = boundaries_[Below(boundaries_.size())];
  if (OneIn(3)) line.resize(Below(line.size()) + 1);
  constexpr std::string_view kEnds[] = {"", "", " ", "x", "-", "--"};
  Add(line.append(kEnds[Below(std::size(kEnds))]));
}

// Adds one to five line ends that begin at most seven bytes before or after the buffer's edge, and
// then a boundary or a few characters.
void MessageMaker::AddLineEndsAtEdge(std::size_t text_start) {
  constexpr std::size_t kAround = 7;
  const std::size_t in_text = message_.size() - text_start;
  const std::size_t edge = (in_text / kLibraryBuffer + 1) * kLibraryBuffer;
  const std::size_t start = edge - kAround + Below(2 * kAround + 1);
  if (start > in_text) message_.append(start - in_text, 'x');
  for (std::size_t left = 1 + Below(5); left > 0; --left) {
    message_ += kLineEnds[OneIn(2) ? Below(kMixed) : line_end_ % kMixed];
  }
  switch (Below(4)) {
    case 0:
      return AddBoundaryLikeLine();
    case 1:
      if (!boundaries_.empty() && OneIn(3)) Add(boundaries_.back());
      return;
    default:
      message_.append(Below(4), 'x');
  }
}

}  // namespace zqv::test
