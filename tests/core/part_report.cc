#include "tests/core/part_report.h"

#include <string_view>
#include <utility>

#include "email/file_name.h"
#include "email/route.h"
#include "text/encoded_word.h"

namespace zqv::test {
namespace {

using mime::FieldName;
using mime::PartIndex;

const char* KindName(mime::PartKind kind) {
  switch (kind) {
    case mime::PartKind::kLeaf:
      return "leaf";
    case mime::PartKind::kMultipart:
      return "multipart";
    case mime::PartKind::kMessage:
      return "message";
  }
  return "";
}

const char* DestinationName(email::Destination destination) {
  switch (destination) {
    case email::Destination::kPlainText:
      return "plain text";
    case email::Destination::kHtmlText:
      return "HTML";
    case email::Destination::kAttachments:
      return "attachment";
    case email::Destination::kInlines:
      return "inline";
  }
  return "";
}

LabelledText Labelled(const text::HeaderText& text) {
  return {std::string(text.bytes()), text.encoding()};
}

LabelledText FileName(const mime::Header& header, std::string_view decoded) {
  email::FileNames names(header, decoded);
  while (const std::optional<text::HeaderText> name = names.Next()) {
    if (!name->bytes().empty()) return Labelled(*name);
  }
  return {};
}

class Reporter {
 public:
  explicit Reporter(const mime::Message& message)
      : message_(message), reports_(message.parts().size()) {}

  std::vector<PartReport> Run() {
    mime::Walk(
        message_.parts(), 0,
        [this](PartIndex part) {
          reports_[part].number = NumberOf(part);
          return mime::Visit::kInside;
        },
        [this](PartIndex part) { Leave(message_.parts()[part], reports_[part]); });
    return std::move(reports_);
  }

 private:
  std::string NumberOf(PartIndex index) const {
    const PartIndex parent = message_.parts()[index].parent;
    if (parent == mime::kNoPart) return "0";
    std::size_t place = 1;
    for (PartIndex at = message_.parts()[parent].first_child; at != index;
         at = message_.parts()[at].next_sibling) {
      ++place;
    }
    return (parent == 0 ? "" : reports_[parent].number + ".") + std::to_string(place);
  }

  void Leave(const mime::Part& part, PartReport& report) {
    const mime::Header header = message_.HeaderOf(part);
    report.kind = KindName(part.kind);
    report.type = email::MimeTypeText(header.content_type());
    report.place = place_++;
    if (const mime::Field* const subject = header.Find(FieldName::kSubject)) {
      report.subject = Labelled(text::DecodeEncodedWords(subject->value, false));
    }
    ReadDates(header, report);
    Route(header, part.body, report);
  }

  // When a field occurs several times, the last one is used.
  static void ReadDates(const mime::Header& header, PartReport& report) {
    for (std::size_t i = 0; i < header.size(); ++i) {
      const mime::Field& field = header[i];
      if (field.known == FieldName::kDate) report.sent = email::ReadDateText(field.value);
      if (field.known != FieldName::kReceived) continue;
      if (const auto date = email::ReceivedDateText(field.value)) {
        report.received = email::ReadDateText(*date);
      }
    }
  }

  void Route(const mime::Header& header, std::string_view body, PartReport& report) {
    const std::optional<email::DecodedBody> decoded = email::DecodePart(header, body);
    if (!decoded.has_value()) {
      const mime::ContentType& type = header.content_type();
      const bool is_container = email::IsContainer(type.type(), type.subtype());
      report.destination = is_container ? "container" : "unknown encoding";
      return;
    }
    const email::BodyText text = email::LabelBody(header, decoded->bytes());
    report.decoded = {std::string(text.bytes), text.encoding};
    const email::Destination destination =
        email::Route(email::TraitsOf(header), has_plain_text_, has_html_text_);
    report.destination = DestinationName(destination);
    // After an empty text, the next one takes its place.
    if (destination == email::Destination::kPlainText) {
      has_plain_text_ = !text.bytes.empty();
    } else if (destination == email::Destination::kHtmlText) {
      has_html_text_ = !text.bytes.empty();
    } else {
      report.file_name = FileName(header, decoded->bytes());
    }
  }

  const mime::Message& message_;
  std::vector<PartReport> reports_;
  std::size_t place_ = 0;
  bool has_plain_text_ = false;
  bool has_html_text_ = false;
};

}  // namespace

std::vector<PartReport> ReportParts(const mime::Message& message) {
  return Reporter(message).Run();
}

}  // namespace zqv::test
