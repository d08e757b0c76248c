#include "cli/found_files.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/ascii.h"
#include "cli/charset_text.h"
#include "cli/findings.h"
#include "cli/header_reading.h"
#include "cli/mail_text.h"
#include "cli/text.h"
#include "cli/tnef.h"
#include "cli/transfer_reading.h"
#include "email/file_name.h"
#include "email/route.h"
#include "mime/limits.h"

namespace zqv::cli {
namespace {

using mime::FieldName;
using mime::PartIndex;
using mime::PartKind;

// The deepest nesting of messages that are parsed by themselves. Attached messages that the parser
// finds do not count.
constexpr std::size_t kMostDepth = 8;

std::string_view FieldBytes(const mime::Header& header, FieldName name) {
  const mime::Field* const field = header.Find(name);
  return field == nullptr ? std::string_view() : ValueBytes(*field);
}

bool IsBlank(std::string_view text) {
  return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// The two parts of a MIME type. A part without a type is text/plain (RFC 2045, section 5.2).
struct Type {
  std::string_view type;
  std::string_view subtype;
};
Type SplitType(std::string_view main) {
  const std::size_t slash = main.find('/');
  if (main.empty() || main == "text") return {"text", "plain"};
  if (slash == std::string_view::npos) return {main, {}};
  return {Trim(main.substr(0, slash)), Trim(main.substr(slash + 1))};
}

// Removes an mbox separator, such as "From ada@example.com Tue May 10 11:28:07 2005", from the
// front of an attached message.
std::string_view WithoutEnvelope(std::string_view message) {
  const std::string_view start = message.substr(0, 6);
  if (start.substr(0, 5) != "From " && start != ">From ") return message;
  return message.substr(std::min(message.find('\n'), message.size() - 1) + 1);
}

bool IsTnefType(std::string_view type) {
  return type == "application/ms-tnef" || type == "application/vnd.ms-tnef";
}

// Whether a body begins with the signature of TNEF, as bytes or in base64.
bool MayBeTnef(std::string_view body) { return body.substr(0, 5) == "eJ8+I" || IsTnef(body); }

}  // namespace

std::string WrittenFileName(const WrittenParameters& disposition, const WrittenParameters& type) {
  for (const auto& [parameters, name] :
       {std::pair(&disposition, "filename"), std::pair(&type, "name"), std::pair(&type, "filename"),
        std::pair(&disposition, "name")}) {
    const std::optional<std::string> text = parameters->Text(name);
    if (text && !Trim(*text).empty()) return std::string(Trim(*text));
  }
  return {};
}

FoundFiles::FoundFiles(const MessageSource& source) : FoundFiles(source, 0) {}

FoundFiles::FoundFiles(const MessageSource& source, std::size_t depth)
    : source_(source),
      extents_(ExtentsOf(source)),
      depth_(depth),
      messages_around_(source.parts().size(), 0) {
  for (PartIndex i = 1; i < source.parts().size(); ++i) {
    const PartIndex parent = source.parts()[i].parent;
    const bool is_message = source.parts()[parent].kind == PartKind::kMessage;
    messages_around_[i] = messages_around_[parent] + (is_message ? 1 : 0);
  }
  for (PartIndex i = 0; i < source.parts().size(); ++i) {
    if (extents_[i].is_swallowed) continue;
    switch (source.parts()[i].kind) {
      case PartKind::kLeaf:
        AddLeaf(i);
        break;
      case PartKind::kMessage:
        AddMessage(i);
        break;
      case PartKind::kMultipart:
        AddMultipart(i);
        break;
    }
    AddParts(i, extents_[i].swallowed);
  }
}

std::string_view FoundFiles::BodyOf(PartIndex index) const {
  const std::string_view own = extents_[index].own;
  return own.substr(std::min(own.size(), source_.parts()[index].header.size()));
}

email::DecodedBody FoundFiles::Data(const FoundFile& file) const {
  if (file.is_unpacked) return email::DecodedBody(std::string_view(file.unpacked));
  const mime::Part& part = source_.parts()[file.part];
  const mime::Header header = HeaderOf(file.part);
  const Transfer transfer = ReadTransfer(FieldBytes(header, FieldName::kContentTransferEncoding));
  if (part.kind == PartKind::kMultipart) return email::DecodedBody(BodyOf(file.part));
  return DecodeBody(transfer, BodyOf(file.part));
}

mime::Header FoundFiles::HeaderOf(PartIndex index) const {
  const mime::Part& part = source_.parts()[index];
  const mime::Field* const first = source_.message().fields().data() + part.first_field;
  const std::string_view own = extents_[index].own;
  const auto is_own = [&](const mime::Field& field) {
    return field.bytes.data() < own.data() + own.size();
  };
  return {first, static_cast<std::size_t>(
                     std::find_if_not(first, first + part.field_count, is_own) - first)};
}

FoundFiles::Header FoundFiles::ReadHeader(PartIndex index) const {
  const mime::Header header = HeaderOf(index);
  return {WrittenParameters(FieldBytes(header, FieldName::kContentType)),
          WrittenParameters(FieldBytes(header, FieldName::kContentDisposition)),
          FieldBytes(header, FieldName::kContentTransferEncoding),
          ReadHeaderText(FieldBytes(header, FieldName::kContentId)),
          header.Has(FieldName::kContentType)};
}

FoundFile FoundFiles::FileOf(PartIndex index, const Header& header) const {
  FoundFile file;
  file.part = index;
  file.packing = Packing::kNone;
  file.name = WrittenFileName(header.disposition, header.type);
  file.is_named = !file.name.empty();
  file.mime_type = GuessedUtf8(header.type.main());
  file.content_id = header.content_id;
  const bool is_attached = header.disposition.main() == "attachment";
  file.is_inline =
      header.disposition.main() == "inline" || (!is_attached && !header.content_id.empty());
  return file;
}

bool FoundFiles::IsText(const Header& header, FoundFile* file) {
  const Type type = SplitType(header.type.main());
  const email::Destination destination =
      email::Route({type.type, type.subtype, header.disposition.main(), !header.content_id.empty()},
                   plain_text_ != mime::kNoPart, html_text_ != mime::kNoPart);
  const bool is_plain = destination == email::Destination::kPlainText;
  const bool is_html = destination == email::Destination::kHtmlText;
  if (is_plain) plain_text_ = file->part;
  if (is_html) html_text_ = file->part;
  // Further text parts, such as footers of mailing lists, are displayed with the message's text.
  const bool is_more_text = !file->is_named && header.disposition.main() != "attachment" &&
                            type.type == "text" &&
                            (type.subtype == "plain" || type.subtype == "html");
  file->is_inline = file->is_inline || is_plain || is_html || is_more_text;
  file->is_structural = is_more_text && messages_around_[file->part] > 0;
  return is_plain || is_html;
}

void FoundFiles::ReadTransferOf(const Header& header, FoundFile* file) const {
  const mime::Part& part = source_.parts()[file->part];
  if (part.kind == PartKind::kMultipart || IsBlank(BodyOf(file->part))) return;
  const Transfer transfer = ReadTransfer(header.transfer);
  const std::string quoted = Quoted(Unfolded(header.transfer));
  if (transfer == Transfer::kUnknown) {
    file->problem = "unknown transfer encoding " + quoted + ": the bytes are as they stand";
  } else if (transfer == Transfer::kUuencode) {
    std::vector<PackedFile> packed = FindPackedFiles(BodyOf(file->part));
    if (packed.empty()) {
      file->problem = "nothing in it is in " + quoted + ": the bytes are as they stand";
      return;
    }
    if (!file->is_named) file->name = ReadHeaderText(packed.front().name);
    file->is_named = true;
    if (!packed.front().is_whole) file->problem = "the end of the uuencoded file is missing";
    file->unpacked = std::move(packed.front().bytes);
    file->is_unpacked = true;
  }
}

FoundFile FoundFiles::Describe(PartIndex index) const {
  const Header header = ReadHeader(index);
  FoundFile file = FileOf(index, header);
  ReadTransferOf(header, &file);
  return file;
}

void FoundFiles::AddLeaf(PartIndex index) {
  const mime::Part& part = source_.parts()[index];
  const Header header = ReadHeader(index);
  FoundFile file = FileOf(index, header);
  ReadTransferOf(header, &file);
  if (!header.has_type && IsInDigest(part) && !IsBlank(BodyOf(index))) {
    file.mime_type = "message/rfc822";
    AddMessage(std::move(file), mime::kNoPart);
    return;
  }
  const bool is_text = IsText(header, &file);
  const bool is_blank = IsBlank(BodyOf(index));
  file.is_structural =
      file.is_structural || (!file.is_named && (is_blank || (is_text && file.problem.empty())));
  const email::DecodedBody data = Data(file);
  file.is_empty = data.bytes().empty();
  if (file.is_unpacked) {
    list_.push_back(std::move(file));
    return;
  }
  if (!file.is_named) file.name = email::MakeUpFileName(file.content_id, data.bytes());
  const bool may_be_tnef = IsTnefType(file.mime_type) || MayBeTnef(BodyOf(index));
  // Like the library, lists the message's own text only if it has no Content-Type. A name or a
  // problem is a reason to list it, too.
  if (!is_text || file.is_named || !header.has_type || !file.problem.empty()) {
    list_.push_back(std::move(file));
  }
  if (SplitType(header.type.main()).type == "text") {
    AddPacked(index, data.bytes());
  } else if (may_be_tnef) {
    AddTnef(index, data.bytes(), 0);
  }
}

// Lists an attached message, named after its subject if it has no name. Lists the files in it, too,
// if the parser has not found them: the parser does not decode an attached message, does not skip
// an mbox separator before it, and takes parts of a digest for texts.
void FoundFiles::AddMessage(FoundFile file, PartIndex parsed_as) {
  const email::DecodedBody data = Data(file);
  const std::string_view bytes = WithoutEnvelope(data.bytes());
  std::optional<MessageSource> own;
  if (depth_ < kMostDepth && (parsed_as == mime::kNoPart || bytes.size() != data.bytes().size())) {
    own.emplace(bytes);
    parsed_as = 0;
  }
  if (!file.is_named) {
    const MessageSource& source = own ? *own : source_;
    if (parsed_as != mime::kNoPart) {
      const mime::Header header = source.message().HeaderOf(source.parts()[parsed_as]);
      file.name = ReadHeaderText(FieldBytes(header, FieldName::kSubject));
    }
    file.name = (Trim(file.name).empty() ? "message" : file.name) + ".eml";
  }
  const PartIndex index = file.part;
  file.is_empty = data.bytes().empty();
  list_.push_back(std::move(file));
  if (own) AddNested(index, FoundFiles(*own, depth_ + 1));
}

void FoundFiles::AddNested(PartIndex index, const FoundFiles& nested) {
  for (FoundFile file : nested.list()) {
    if (file.is_structural) continue;
    if (!file.is_unpacked) file.unpacked = nested.Data(file).bytes();
    file.is_unpacked = true;
    file.part = index;
    list_.push_back(std::move(file));
  }
}

void FoundFiles::AddMessage(PartIndex index) {
  const mime::Part& part = source_.parts()[index];
  const Header header = ReadHeader(index);
  FoundFile file = FileOf(index, header);
  // A message contains the bytes of all messages nested in it, so listing deeply nested ones would
  // make the output quadratic.
  file.is_structural = IsBlank(BodyOf(index)) || messages_around_[index] > kMostDepth;
  ReadTransferOf(header, &file);
  const Transfer transfer = ReadTransfer(header.transfer);
  const bool is_encoded = transfer == Transfer::kBase64 || transfer == Transfer::kQuotedPrintable;
  AddMessage(std::move(file), is_encoded ? mime::kNoPart : part.first_child);
}

void FoundFiles::AddParts(PartIndex index, const std::vector<std::string_view>& parts) {
  if (depth_ >= kMostDepth) return;
  for (const std::string_view part : parts) {
    const MessageSource own(part);
    AddNested(index, FoundFiles(own, depth_ + 1));
  }
}

bool FoundFiles::IsInDigest(const mime::Part& part) const {
  if (part.parent == mime::kNoPart) return false;
  const mime::Header header = source_.message().HeaderOf(source_.parts()[part.parent]);
  return WrittenParameters(FieldBytes(header, FieldName::kContentType)).main() ==
         "multipart/digest";
}

void FoundFiles::AddMultipart(PartIndex index) {
  const mime::Part& part = source_.parts()[index];
  const Header header = ReadHeader(index);
  const Type type = SplitType(header.type.main());
  FoundFile file = FileOf(index, header);
  const bool is_undivided = part.first_child == mime::kNoPart && !IsBlank(BodyOf(index));
  // The library takes an unclosed quote for a part of the boundary.
  const std::optional<std::string> boundary = header.type.Text("boundary");
  if (is_undivided && boundary && !boundary->empty() && depth_ < kMostDepth) {
    const std::vector<std::string_view> parts = PartsBetween(BodyOf(index), *boundary);
    if (!parts.empty() && parts.size() <= mime::kMostParts) return AddParts(index, parts);
  }
  // A multipart without parts, such as a returned message that was cut short.
  const bool is_lost = is_undivided && messages_around_[index] == 0;
  if (email::IsContainer(type.type, type.subtype) && !is_lost) return;
  file.is_structural = !is_lost;
  if (is_lost) file.problem = "no boundary divides the multipart: the bytes are as they stand";
  if (!file.is_named) file.name = "attachment";
  list_.push_back(std::move(file));
}

void FoundFiles::AddPacked(PartIndex part, std::string_view text) {
  for (PackedFile& packed : FindPackedFiles(text)) {
    FoundFile file;
    file.part = part;
    file.packing = packed.packing;
    file.name = ReadHeaderText(packed.name);
    file.is_named = true;
    file.unpacked = std::move(packed.bytes);
    file.is_unpacked = true;
    file.is_empty = file.unpacked.empty();
    if (!packed.is_whole) {
      file.problem = "the file in " + std::string(PackingName(packed.packing)) + " is not whole";
    }
    list_.push_back(std::move(file));
  }
}

void FoundFiles::AddTnef(PartIndex part, std::string_view bytes, std::size_t depth) {
  if (!IsTnef(bytes)) return;
  const TnefContent content = ReadTnef(bytes);
  for (const TnefFile& packed : content.files) {
    if (IsTnef(packed.bytes) && depth < kMostDepth) {  // a message attached to the message
      AddTnef(part, packed.bytes, depth + 1);
      continue;
    }
    FoundFile file;
    file.part = part;
    file.packing = Packing::kTnef;
    file.is_named = !packed.name.empty();
    file.content_id = packed.content_id;
    file.name =
        file.is_named ? packed.name : email::MakeUpFileName(packed.content_id, packed.bytes);
    file.mime_type = packed.mime_type;
    file.unpacked = packed.bytes;
    file.is_unpacked = true;
    file.is_empty = file.unpacked.empty();
    if (!content.is_whole) file.problem = "the TNEF that holds it is cut off";
    list_.push_back(std::move(file));
  }
}

}  // namespace zqv::cli
