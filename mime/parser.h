// The parser that fills a Message from its bytes. Used by the constructor of Message only.
#pragma once

#include "mime/limits.h"
#include "mime/message.h"
#include "mime/open_boundaries.h"
#include "mime/part_text.h"

namespace zqv::mime {

// Parses one message without recursion: the open multiparts, which are those that the parser is
// inside of, are kept in a vector, so that deep nesting needs no call stack.
class Parser {
 public:
  // Borrows `message`. Its bytes must be set, and its vectors of parts and fields empty.
  Parser(Message& message, OuterBoundary outer);
  // Parses the message. May be called only once. Throws std::runtime_error when a limit is exceeded
  // (limits.h), and std::bad_alloc.
  void Run();

 private:
  // Appends a part that begins at `at_`, and returns its index. `parent` is kNoPart for the message
  // itself.
  PartIndex AddPart(PartIndex parent);
  // Parses the header of `part` at `at_`. Sets the members of `part` that depend on it.
  void ReadHeader(Part& part);
  // Adds a multipart to the open multiparts, and its boundary to the open boundaries.
  void OpenMultipart(PartIndex part);
  // Ends part `last` at the boundary in `text_`. While that is a closing boundary, also closes the
  // innermost open multipart and reads its epilogue, up to another boundary. Appends the part that
  // begins after the last of these boundaries and returns its index; kNoPart when the parse ends.
  PartIndex NextPart(PartIndex last);
  // Sets the end of part `last` and of its ancestors inside part `around` to the end of the text in
  // `text_`. When `around` is kNoPart, sets the end of all ancestors.
  void EndParts(PartIndex last, PartIndex around);
  // Reads the text from `at_` up to the next boundary of an open multipart, or to the end of the
  // message, into `text_`. Returns the text without the boundary, and sets `at_` after the
  // boundary.
  std::string_view ReadText();
  // Handles the boundary in `text_`, which belongs to an outer multipart, as `outer_` says: leaves
  // it to NextPart to end the parse, or closes the multiparts inside that outer multipart.
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
