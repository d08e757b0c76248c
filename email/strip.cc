// The message is parsed, the parts to remove are marked, and the others are written to one buffer.
// The output equals what mimetic writes for its own tree: header lines end in CR LF and are folded
// at 76 characters, the parts of a multipart stand between its boundaries, bodies are not changed.
// Last, each line break is replaced by a CR.
//
//   Content-Type: multipart/mixed; boundary="b"
//
//   --b
//   Content-Type: text/plain
//
//   text
//   --b--
#include "email/strip.h"

#include <algorithm>
#include <vector>

#include "base/ascii.h"
#include "base/log.h"
#include "mime/message.h"

namespace zqv::email {
namespace {

using mime::Message;
using mime::Part;
using mime::PartIndex;
using mime::PartKind;

constexpr std::string_view kLineEnd = "\r\n";

// Whether a part with this header is to be removed.
bool IsFile(const mime::Header& header) {
  const std::string_view disposition = header.content_disposition().type();
  ZQV_LOG("IsAttachment %s", std::string(disposition).c_str());
  return base::EqualsIgnoringCase(disposition, "inline") ||
         base::EqualsIgnoringCase(disposition, "attachment");
}

// Decides for each part of a message whether it is kept. The parts inside a removed part are
// removed without being examined. The message itself is always kept.
class StayingParts {
 public:
  explicit StayingParts(const Message& message) : message_(message) {
    const std::vector<Part>& parts = message.parts();
    stays_.assign(parts.size(), true);
    for (PartIndex i = 0; i < parts.size(); ++i) {
      if (i > 0 && !stays_[parts[i].parent]) stays_[i] = false;
      if (stays_[i]) Scan(parts[i].first_child);
    }
  }

  bool operator[](PartIndex part) const { return stays_[part]; }

  // Whether a part that is kept is directly inside `part`.
  bool HasChildren(const Part& part) const {
    for (PartIndex i = part.first_child; i != mime::kNoPart; i = message_.parts()[i].next_sibling) {
      if (stays_[i]) return true;
    }
    return false;
  }

 private:
  // Marks those of `first` and its later siblings as removed for which IsFile() is true. Does not
  // visit the parts inside them.
  void Scan(PartIndex first) {
    for (PartIndex at = first; at != mime::kNoPart;) {
      const Part& part = message_.parts()[at];
      if (!stays_[at] || !IsFile(message_.HeaderOf(part))) {
        at = part.next_sibling;
        continue;
      }
      ZQV_LOG("Removed an attachment.");
      stays_[at] = false;
      // While the debug log is on, the scan restarts at `first` after a part was marked as removed.
      // This only repeats lines of the log.
      at = base::IsLogging() ? first : part.next_sibling;
    }
  }

  const Message& message_;
  std::vector<char> stays_;
};

constexpr std::size_t kFold = 76;  // the most characters of a header line, if it can be folded

// The index of the blank at which a header line of more than 76 characters is folded: the last
// blank outside quotes with at most 76 characters before it or, if there is none, the first one
// after these. 0 when the line has no such blank. The first `skipped` characters are not searched.
std::size_t FindFold(std::string_view line, std::size_t skipped) {
  std::size_t blank = 0;
  bool in_quotes = false;
  for (std::size_t i = skipped; i < line.size(); ++i) {
    if (line[i] == '"' && (i == skipped || line[i - 1] != '\\')) in_quotes = !in_quotes;
    if (!in_quotes && base::IsBlank(line[i])) blank = i;
    if (i >= kFold && blank != 0) return blank;
  }
  return 0;
}

// Writes the message without its removed parts.
class Writer {
 public:
  Writer(const Message& message, const StayingParts& stays) : message_(message), stays_(stays) {
    out_.reserve(message.bytes().size() + message.bytes().size() / 16);
  }

  std::string Write() {
    mime::Walk(
        message_.parts(), 0, [this](PartIndex part) { return Enter(part); },
        [this](PartIndex part) { Leave(message_.parts()[part]); });
    return std::move(out_);
  }

 private:
  mime::Visit Enter(PartIndex index) {
    if (!stays_[index]) return mime::Visit::kSkip;
    const Part& part = message_.parts()[index];
    if (part.parent != mime::kNoPart) BeginChild(message_.parts()[part.parent]);
    WriteHeader(part);
    if (part.kind == PartKind::kLeaf) out_.append(kLineEnd).append(part.body);
    if (part.kind == PartKind::kMultipart) {
      if (!part.preamble.empty()) out_.append(kLineEnd).append(part.preamble);
      // QUIRK: a multipart without kept parts still gets one opening boundary line. Equal to
      // mimetic's result. Test: Strip.MultipartWithoutPartsKeepsItsBoundary.
      if (!stays_.HasChildren(part)) WriteBoundary(part, "");
    }
    return mime::Visit::kInside;
  }

  void Leave(const Part& part) {
    if (part.kind != PartKind::kMultipart) return;
    WriteBoundary(part, "--");
    out_.append(part.epilogue);
  }

  // Writes what precedes a part directly inside `parent`: a boundary when `parent` is a multipart,
  // an empty line when it is a message/rfc822 part.
  void BeginChild(const Part& parent) {
    if (parent.kind == PartKind::kMultipart) {
      WriteBoundary(parent, "");
    } else {
      out_.append(kLineEnd);
    }
  }

  // Writes a line break and a boundary line, "--" + boundary + `end`.
  void WriteBoundary(const Part& multipart, std::string_view end) {
    out_.append(kLineEnd).append("--").append(multipart.boundary);
    out_.append(end).append(kLineEnd);
  }

  // QUIRK: the first Content-Type field is written from its parsed form, and so is the first
  // Content-Disposition field, except that of the message itself. The values of all other fields
  // are written unparsed. Equal to mimetic's result. Test: Strip.WritesTheParsedContentFields.
  void WriteHeader(const Part& part) {
    const mime::Header header = message_.HeaderOf(part);
    for (std::size_t i = 0; i < header.size(); ++i) {
      const mime::Field& field = header[i];
      const bool is_parsed =
          field.known == mime::FieldName::kContentType ||
          (field.known == mime::FieldName::kContentDisposition && part.parent != mime::kNoPart);
      WriteField(field.name, is_parsed ? header.Value(i) : field.value);
    }
  }

  // Writes a field on one or more lines. A fold replaces a blank by CR LF and a tab. If only blanks
  // follow that blank, it is removed instead, and neither CR LF nor a tab is written.
  void WriteField(std::string_view name, std::string_view value) {
    line_.assign(name).append(": ").append(value);
    const std::size_t end = line_.find_last_not_of(" \t") + 1;  // where the blanks at the end begin
    std::string_view rest = line_;
    std::size_t skipped = name.size() + 2;  // no fold before the value
    while (rest.size() > kFold) {
      const std::size_t blank = FindFold(rest, skipped);
      if (blank == 0) break;
      out_.append(rest.substr(0, blank));
      rest.remove_prefix(blank + 1);
      if (line_.size() - rest.size() < end) out_.append(kLineEnd).append("\t");
      skipped = 0;
    }
    out_.append(rest).append(kLineEnd);
  }

  const Message& message_;
  const StayingParts& stays_;
  std::string out_;
  std::string line_;  // the current field on one line; a member, to reuse its memory
};

}  // namespace

std::string WriteWithoutFiles(std::string_view source) {
  const Message message(source);
  const StayingParts stays(message);
  std::string text = Writer(message, stays).Write();
  ZQV_LOG("FixLineEndings");
  const std::size_t removed = RewriteLineBreaks(text);
  ZQV_LOG("removed characters %zu", removed);
  text.resize(std::min(text.find('\0'), text.size()));
  return text;
}

std::size_t RewriteLineBreaks(std::string& text) {
  std::size_t written = 0;
  std::size_t last_cr = 0;
  std::size_t last_break_from_lf = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (!base::IsLineEnd(c)) {
      text[written++] = c;
      continue;
    }
    // Skips the second half of a pair; the first half was written as a CR. Both variables are
    // initially 0, so a CR or LF at index 1 looks like a second half, too (see the QUIRK in
    // strip.h).
    if (i == (c == '\r' ? last_break_from_lf : last_cr) + 1) continue;
    (c == '\r' ? last_cr : last_break_from_lf) = i;
    text[written++] = '\r';
  }
  const std::size_t removed = text.size() - written;
  text.resize(written);
  return removed;
}

}  // namespace zqv::email
