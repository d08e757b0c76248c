// From a message's bytes to its tree.
#pragma once

#include "mime/limits.h"
#include "mime/message.h"
#include "mime/open_boundaries.h"
#include "mime/part_text.h"

namespace zqv::mime {

// Parses one message, iteratively: multiparts that are open are kept in a list, and nesting needs
// no stack.
class Parser {
 public:
  // Fills `message`, of which only the bytes are set.
  Parser(Message& message, OuterBoundary outer);
  // Throws std::runtime_error beyond a limit.
  void Run();

 private:
  PartIndex AddPart(PartIndex parent);
  void ReadHeader(Part& part);
  void OpenMultipart(PartIndex part);
  // Ends the part that was read last, and the parts around it that end with it. The next part, or
  // kNoPart when there is none.
  PartIndex NextPart(PartIndex last);
  void EndParts(PartIndex last, PartIndex around);
  std::string_view ReadText();
  void MeetOuterBoundary();

  Message& message_;
  const char* at_;
  const char* const end_;
  const OuterBoundary outer_;
  MessageLimits limits_;
  OpenBoundaries boundaries_;
  std::vector<PartIndex> open_multiparts_;  // innermost last, as their boundaries
  PartText text_;                           // that was read last
};

}  // namespace zqv::mime
