// The files that a person would find in a message, from its bytes alone: what is attached, what is
// shown within, attached messages, and files that are packed in texts or in other files. One
// reading for every verb that shows, counts or writes files; `json` prints the library's own lists.
//
// Known beyond what the library does: transfer encodings in sloppy spelling and uuencode, names in
// every form of RFC 2231, the bytes of attached messages, parts behind a multipart without an end
// or behind a header without one, and those of a multipart whose boundary lacks its closing quote.
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
  mime::PartIndex part = 0;  // the part that it is, or that it is packed in
  Packing packing = Packing::kNone;
  bool is_inline = false;  // to be shown within the text
  // What the library lists and nobody calls a file: a multipart, an empty part without a name, a
  // text without a Content-Type that is the message's own, the texts of an attached message.
  bool is_frame = false;
  bool is_named = false;   // whether the name is the message's, not made up
  std::string name;        // in UTF-8, as it is written: see CleanFileName
  std::string mime_type;   // in lower case; empty when none is known
  std::string content_id;  // as it is written, in UTF-8
  // What keeps the bytes from being the file as it was sent; empty when nothing does. A line for
  // people, safe.
  std::string problem;
  std::string unpacked;  // the bytes of what is packed, or in uuencode
  bool is_unpacked = false;
  bool is_empty = false;  // no bytes are in it
};

class FoundFiles {
 public:
  // `source` must outlive this.
  explicit FoundFiles(const MessageSource& source);

  // In the order of the parts; what is packed in a part behind it.
  const std::vector<FoundFile>& list() const { return list_; }

  // The parts that are the message's own texts; kNoPart when there is none.
  mime::PartIndex plain_text() const { return plain_text_; }
  mime::PartIndex html_text() const { return html_text_; }

  // Any part as a file, whether it is listed or not.
  FoundFile Describe(mime::PartIndex part) const;

  // Its bytes; borrowed from this and the source when nothing has to be decoded.
  email::DecodedBody Data(const FoundFile& file) const;

 private:
  // What a part's header says.
  struct Header {
    WrittenParameters type;
    WrittenParameters disposition;
    std::string_view transfer;
    std::string content_id;
    bool has_type;
  };

  FoundFiles(const MessageSource& source, std::size_t depth);

  // The fields of a part, without those that its header has swallowed.
  mime::Header HeaderOf(mime::PartIndex index) const;
  Header ReadHeader(mime::PartIndex index) const;
  // What follows the part's header, without what it has swallowed.
  std::string_view BodyOf(mime::PartIndex index) const;
  FoundFile FileOf(mime::PartIndex index, const Header& header) const;
  void AddLeaf(mime::PartIndex index);
  void AddMessage(mime::PartIndex index);
  // `read_as` is what the parser made of the attached message, if anything.
  void AddMessage(FoundFile file, mime::PartIndex read_as);
  void AddNested(mime::PartIndex index, const FoundFiles& nested);
  // Parts that the library's tree does not have, each read by itself, as files of the part that
  // they lie in.
  void AddParts(mime::PartIndex index, const std::vector<std::string_view>& parts);
  // A part of a digest is a message unless it says otherwise (RFC 2046, section 5.1.5).
  bool IsInDigest(const mime::Part& part) const;
  void AddMultipart(mime::PartIndex index);
  // Whether a leaf is one of the message's texts.
  bool IsText(const Header& header, FoundFile* file);
  void AddPacked(mime::PartIndex part, std::string_view text);
  void AddTnef(mime::PartIndex part, std::string_view bytes, std::size_t depth);
  void ReadTransferOf(const Header& header, FoundFile* file) const;

  const MessageSource& source_;
  const std::vector<PartExtent> extents_;  // by part
  const std::size_t depth_;  // how many messages around this one were read by themselves
  std::vector<std::uint32_t> messages_around_;  // by part: how many attached messages it is in
  std::vector<FoundFile> list_;
  mime::PartIndex plain_text_ = mime::kNoPart;
  mime::PartIndex html_text_ = mime::kNoPart;
};

// The name that a part's Content-Disposition and Content-Type give it; empty when they give none.
std::string WrittenFileName(const WrittenParameters& disposition, const WrittenParameters& type);

}  // namespace zqv::cli
