// The parser that fills a Message from its bytes. Used by the constructor of Message only.
#pragma once

#include "mime/limits.h"
#include "mime/message.h"
#include "mime/open_boundaries.h"
#include "mime/part_text.h"

namespace zqv::mime {

// Parses one message without recursion: the multiparts that it is inside of are kept in a vector,
// so that deep nesting needs no call stack.
class Parser {
 public:
  // Borrows `message`, of which only the bytes are set yet.
  Parser(Message& message, OuterBoundary outer);
  // Parses the whole message. Throws std::runtime_error when a limit is exceeded (limits.h), and
  // std::bad_alloc. Call it once.
  void Run();

 private:
  // Appends a part that begins at the current position. `parent` is kNoPart for the message itself.
  PartIndex AddPart(PartIndex parent);
  // Parses a part's header and sets its kind and boundary.
  void ReadHeader(Part& part);
  // Adds a multipart, and its boundary, to the open ones.
  void OpenMultipart(PartIndex part);
  // Ends part `last` at the boundary that was just read, and closes the multiparts around it for as
  // long as closing boundaries follow, reading their epilogues. Returns the part that begins after
  // the last boundary, or kNoPart at the end of the message.
  PartIndex NextPart(PartIndex last);
  // Sets the end of `last` and of its ancestors below `around`, or of all when that is kNoPart.
  void EndParts(PartIndex last, PartIndex around);
  // Reads the text up to the next boundary, or to the end of the message, into `text_`.
  std::string_view ReadText();
  // Handles a boundary that belongs to an outer multipart, as `outer_` says.
  void HandleOuterBoundary();

  Message& message_;
  const char* at_;
  const char* const end_;
  const OuterBoundary outer_;
  MessageLimits limits_;
  OpenBoundaries boundaries_;
  std::vector<PartIndex> open_multiparts_;  // in the order of `boundaries_`, innermost last
  PartText text_;                           // the result of the last ReadText
};

}  // namespace zqv::mime
