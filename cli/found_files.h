// The files that a person would find in a message: attachments, inline files, attached messages,
// and files that are packed into texts (uuencode, yEnc) or into other files (TNEF). All verbs that
// show, count or write files use it; only `json` prints the library's own lists.
//
// It works on the bytes of the message and understands more than the library does: misspelt
// transfer encodings and uuencode, every form of names in RFC 2231, and the contents of attached
// messages. It also finds parts that the library loses: after an unterminated multipart, after a
// header without an empty line, and in a multipart whose boundary parameter lacks its closing
// quote.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cli/message_source.h"
#include "cli/packed_files.h"
#include "cli/swallowed_parts.h"
#include "cli/written_parameters.h"
#include "email/transfer.h"
#include "mime/message.h"

namespace zqv::cli {

struct FoundFile {
  mime::PartIndex part = 0;  // the part that is the file, or in which the file is packed
  Packing packing = Packing::kNone;
  bool is_inline = false;  // displayed within the text
  // The library lists the part, but for a reader it is structure of the message and not a file: a
  // multipart, an empty part without a name, a text without a Content-Type that is the message's
  // own, or a text of an attached message.
  bool is_structural = false;
  bool is_named = false;   // `name` is from the message, not made up
  std::string name;        // UTF-8, not made safe; see CleanFileName
  std::string mime_type;   // in lower case; empty: not known
  std::string content_id;  // UTF-8, usually in angle brackets
  // Why the bytes differ from the file that was sent; empty when they do not. A sentence for a
  // reader, escaped for a terminal.
  std::string problem;
  std::string unpacked;  // the decoded bytes of a packed or uuencoded file
  bool is_unpacked = false;
  bool is_empty = false;  // the file has no bytes
};

class FoundFiles {
 public:
  // `source` must outlive this object.
  explicit FoundFiles(const MessageSource& source);

  // All files, in the order of their parts. A packed file follows its part.
  const std::vector<FoundFile>& list() const { return list_; }

  // The parts that are the message's own text; kNoPart when there is none.
  mime::PartIndex plain_text() const { return plain_text_; }
  mime::PartIndex html_text() const { return html_text_; }

  // Describes any part as a file, also one that is not listed.
  FoundFile Describe(mime::PartIndex part) const;

  // Returns the decoded bytes of a file. [borrowed from this object and the source when there is
  // nothing to decode]
  email::DecodedBody Data(const FoundFile& file) const;

 private:
  // The fields of a part's header that describe it.
  struct Header {
    WrittenParameters type;
    WrittenParameters disposition;
    std::string_view transfer;
    std::string content_id;
    bool has_type;
  };

  FoundFiles(const MessageSource& source, std::size_t depth);

  // The fields of a part, without those of the parts that it swallowed (cli/swallowed_parts.h).
  mime::Header HeaderOf(mime::PartIndex index) const;
  Header ReadHeader(mime::PartIndex index) const;
  // The bytes after the part's header, without the parts that it swallowed.
  std::string_view BodyOf(mime::PartIndex index) const;
  FoundFile FileOf(mime::PartIndex index, const Header& header) const;
  void AddLeaf(mime::PartIndex index);
  void AddMessage(mime::PartIndex index);
  // Adds an attached message. `parsed_as` is the part that the parser made of it, or kNoPart.
  void AddMessage(FoundFile file, mime::PartIndex parsed_as);
  void AddNested(mime::PartIndex index, const FoundFiles& nested);
  // Adds the files of parts that are not in the library's tree. Each of them is parsed by itself.
  // Its files belong to part `index`.
  void AddParts(mime::PartIndex index, const std::vector<std::string_view>& parts);
  // Whether the part is in a multipart/digest, where a part without a type is a message (RFC 2046,
  // section 5.1.5).
  bool IsInDigest(const mime::Part& part) const;
  void AddMultipart(mime::PartIndex index);
  // Decides whether a leaf is one of the message's texts, and sets members of `file` accordingly.
  bool IsText(const Header& header, FoundFile* file);
  void AddPacked(mime::PartIndex part, std::string_view text);
  void AddTnef(mime::PartIndex part, std::string_view bytes, std::size_t depth);
  void ReadTransferOf(const Header& header, FoundFile* file) const;

  const MessageSource& source_;
  const std::vector<PartExtent> extents_;  // by part
  const std::size_t depth_;  // number of enclosing messages that were parsed by themselves, not as
                             // parts of a tree
  // By part: number of attached messages that contain it.
  std::vector<std::uint32_t> messages_around_;
  std::vector<FoundFile> list_;
  mime::PartIndex plain_text_ = mime::kNoPart;
  mime::PartIndex html_text_ = mime::kNoPart;
};

// The file name in a part's Content-Disposition or Content-Type; empty when neither has one.
std::string WrittenFileName(const WrittenParameters& disposition, const WrittenParameters& type);

}  // namespace zqv::cli
