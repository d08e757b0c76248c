#include "cli/check_parts.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include "abi/encodings.h"
#include "base/ascii.h"
#include "base/unicode.h"
#include "cli/found_files.h"
#include "cli/mail_text.h"
#include "cli/text.h"
#include "cli/written_parameters.h"
#include "email/transfer.h"

namespace zqv::cli {
namespace {

using base::EqualsIgnoringCase;
using mime::FieldName;
using standin::Object;
using standin::String;

// A part as the library's objects describe it.
struct Part {
  std::size_t index;
  bool has_parts;
  Object header;
  std::string content_type;
  std::vector<Parameter> parameters;  // of `content_type`
  String body;                        // undecoded
  String decoded;

  bool IsOfType(std::string_view type) const {
    const std::string_view own = TypeOf(content_type);
    return EqualsIgnoringCase(own.substr(0, own.find('/')), type);
  }
  std::string_view ParameterValue(std::string_view name) const {
    const Parameter* const parameter = FindParameter(parameters, name);
    return parameter == nullptr ? std::string_view() : parameter->value;
  }
};

// Whether a text labelled ASCII or UTF-8 is not well-formed in it.
bool IsWronglyLabelled(const String& text) {
  if (text.encoding() == abi::kAscii) return !base::IsAscii(text.bytes());
  return text.encoding() == abi::kUtf8 && !text.Utf8();
}

// Whether a name is a value of RFC 2231 such as utf-8'en'name. The library does not decode a value
// with a language.
bool IsExtendedValue(std::string_view name) {
  return std::count(name.begin(), name.end(), '\'') >= 2;
}

FindingKind FindingOf(Base64Fault fault) {
  switch (fault) {
    case Base64Fault::kForeign:
      return FindingKind::kForeignInBase64;
    case Base64Fault::kMore:
      return FindingKind::kMoreBase64;
    case Base64Fault::kCut:
    case Base64Fault::kNone:
      break;
  }
  return FindingKind::kCutBase64;
}

class PartChecker {
 public:
  PartChecker(const PartsToCheck& parts, Findings* findings)
      : tree_(parts.tree),
        source_(parts.source),
        findings_(*findings),
        plain_text_(TextMember(parts.email, "PlainText")),
        html_text_(TextMember(parts.email, "HTMLText")) {
    for (const Attached& one : parts.attached) {
      if (one.part) records_.emplace(*one.part, one.record);
      knows_lists_ = knows_lists_ && one.part.has_value();
    }
  }

  void Run() {
    for (std::size_t i = 0; i < tree_.parts().size(); ++i) {
      const Part part = PartAt(i);
      CheckFieldBytes(part);
      if (!IsCut(part)) CheckType(part);
      CheckTransferEncoding(part);
      if (part.IsOfType("text") || part.content_type == "/") CheckText(part);
      CheckName(part);
      CheckLists(part);
      CheckListedMultipart(part);
    }
  }

 private:
  Part PartAt(std::size_t index) const {
    const PartTree::Part& entry = tree_.parts()[index];
    Part part = {index, entry.has_parts, ObjectMember(entry.entity, "Header"), {}, {}, {}, {}};
    part.content_type = TextMember(part.header, "ContentType").bytes();
    part.parameters = ParametersOf(part.content_type);
    part.body = TextMember(ObjectMember(entry.entity, "Body"), "StringValue");
    part.decoded = TextMember(entry.entity, "BodyDecoded");
    return part;
  }

  // The part in the bytes; null when it is not known.
  const mime::Part* SourceOf(const Part& part) const {
    return source_ == nullptr ? nullptr : &source_->parts()[part.index];
  }

  // Whether the message ends within the part's header.
  bool IsCut(const Part& part) const {
    const mime::Part* const source = SourceOf(part);
    return source != nullptr && source->header_end == mime::HeaderEnd::kMessageEnd;
  }

  // The place where the part begins.
  Place At(const Part& part) const {
    const mime::Part* const source = SourceOf(part);
    return {part.index, source == nullptr ? kNoLine : source_->LineOf(*source)};
  }

  // The place of a field, or of the part if it lacks the field.
  Place At(const Part& part, FieldName name) const {
    const mime::Part* const source = SourceOf(part);
    if (source == nullptr) return At(part);
    const mime::Field* const field = source_->message().HeaderOf(*source).Find(name);
    return field == nullptr ? At(part) : Place{part.index, source_->LineOf(*field)};
  }

  void CheckFieldBytes(const Part& part) {
    const std::vector<Object> fields = FieldsOf(part.header);
    const mime::Part* const source = SourceOf(part);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const String value = TextMember(fields[i], "Value");
      if (value.IsNil() || value.encoding() != abi::kMacRoman) continue;
      Place place = {part.index, kNoLine};
      if (source != nullptr && i < source->field_count) {
        place.line = source_->LineOf(source_->message().fields()[source->first_field + i]);
      }
      findings_.Add(FindingKind::kFieldBytes, place, {SafeLine(TextMember(fields[i], "Name"))});
    }
  }

  void CheckType(const Part& part) {
    const std::string_view type = TypeOf(part.content_type);
    if (type.size() < 2 || (type.front() != '/' && type.back() != '/')) return;
    findings_.Add(FindingKind::kBadContentType, At(part, FieldName::kContentType), {Quoted(type)});
  }

  void CheckTransferEncoding(const Part& part) {
    constexpr FieldName kField = FieldName::kContentTransferEncoding;
    const String mechanism = TextMember(part.header, "ContentTransferEncoding");
    const auto is = [&](std::string_view name) {
      return EqualsIgnoringCase(mechanism.bytes(), name);
    };
    if (EqualsIgnoringCase(TypeOf(part.content_type), "message/rfc822")) {
      if (!is("base64") && !is("quoted-printable")) return;
      findings_.Add(FindingKind::kEncodedMessage, At(part, kField), {SafeLine(mechanism)});
      return;
    }
    if (part.has_parts || part.IsOfType("multipart") || IsNothing(part)) return;
    if (part.decoded.IsNil() && !email::is_known_mechanism(mechanism.bytes())) {
      findings_.Add(FindingKind::kUnknownTransferEncoding, At(part, kField),
                    {Quoted(mechanism.bytes())});
    }
    if (!is("base64")) return;
    const Base64Fault fault = FindBase64Fault(part.body.bytes());
    if (fault == Base64Fault::kNone) return;
    findings_.Add(FindingOf(fault), At(part, kField));
  }

  void CheckText(const Part& part) {
    if (part.decoded.IsNil()) return;
    const Place place = At(part, FieldName::kContentType);
    const std::string_view charset = part.ParameterValue("charset");
    if (charset.empty()) {
      if (part.decoded.encoding() == abi::kMacRoman)
        findings_.Add(FindingKind::kGuessedCharset, place);
    } else if (part.decoded.encoding() == abi::kUnknownEncoding) {
      findings_.Add(FindingKind::kUnknownCharset, place, {Quoted(charset)});
    } else if (IsWronglyLabelled(part.decoded)) {
      findings_.Add(FindingKind::kWrongCharset, place, {Quoted(charset)});
    }
    if (part.decoded.bytes().find('\0') != std::string_view::npos) {
      findings_.Add(FindingKind::kZeroByteInText, place);
    }
  }

  // Whether a leaf has no bytes that could be decoded or listed. An empty part with a file name
  // counts as a file, because the library lists it, except with an unknown transfer encoding.
  static bool IsNothing(const Part& part) {
    if (!part.body.IsNil()) return false;
    const WrittenParameters disposition(TextMember(part.header, "ContentDisposition").bytes());
    const bool is_named =
        !WrittenFileName(disposition, WrittenParameters(part.content_type)).empty();
    return !is_named ||
           email::is_known_mechanism(TextMember(part.header, "ContentTransferEncoding").bytes());
  }

  void CheckName(const Part& part) {
    const auto found = records_.find(part.index);
    if (found == records_.end()) return;
    const String disposition = TextMember(found->second, "ContentDisposition");
    const std::vector<Parameter> parameters = ParametersOf(disposition.bytes());
    const auto has = [](const std::vector<Parameter>& list, std::string_view name) {
      const Parameter* const parameter = FindParameter(list, name);
      return parameter != nullptr && !parameter->value.empty();
    };
    if (has(parameters, "filename")) return;
    if (has(part.parameters, "filename") || has(part.parameters, "name")) return;
    if (has(parameters, "filename*")) {
      const std::string name = PlainLine(TextMember(found->second, "Filename"));
      const bool stays = HasPercentEscape(name) || IsExtendedValue(name);
      if (stays)
        findings_.Add(FindingKind::kEncodedName, At(part, FieldName::kContentDisposition),
                      {Quoted(name)});
    } else if (!AddUnreadName(part, FieldName::kContentDisposition, parameters)) {
      AddUnreadName(part, FieldName::kContentType, part.parameters);
    }
  }

  // Adds a finding if the field has a file name in a form that the library ignores. Returns whether
  // it did.
  bool AddUnreadName(const Part& part, FieldName field, const std::vector<Parameter>& parameters) {
    const auto found = std::find_if(parameters.begin(), parameters.end(), [](const Parameter& p) {
      const std::size_t star = p.name.find('*');
      const std::string_view stem = p.name.substr(0, star);
      return star != std::string_view::npos &&
             (EqualsIgnoringCase(stem, "filename") || EqualsIgnoringCase(stem, "name"));
    });
    if (found == parameters.end()) return false;
    findings_.Add(FindingKind::kUnreadName, At(part, field), {SafeText(found->name, Lines::kOne)});
    return true;
  }

  // Reports a multipart that the library lists as an attachment in addition to its parts.
  void CheckListedMultipart(const Part& part) {
    if (records_.find(part.index) == records_.end()) return;
    if (!part.has_parts || !part.IsOfType("multipart")) return;
    findings_.Add(FindingKind::kListedMultipart, At(part), {Quoted(TypeOf(part.content_type))});
  }

  void CheckLists(const Part& part) {
    if (!knows_lists_ || part.has_parts || IsNothing(part)) return;
    if (records_.find(part.index) != records_.end()) return;
    const auto is = [&](const String& text) { return text.bytes() == part.decoded.bytes(); };
    if (!part.decoded.IsNil() && (is(plain_text_) || is(html_text_))) return;
    findings_.Add(FindingKind::kUnlistedPart, At(part));
  }

  const PartTree& tree_;
  const MessageSource* const source_;
  Findings& findings_;
  // Attachments and inline parts, by the index of their part.
  std::unordered_map<std::size_t, Object> records_;
  bool knows_lists_ = true;
  const String plain_text_;
  const String html_text_;
};

}  // namespace

void CheckParts(const PartsToCheck& parts, Findings* findings) {
  PartChecker(parts, findings).Run();
}

}  // namespace zqv::cli
