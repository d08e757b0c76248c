#include "cli/report_page.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/ascii.h"
#include "cli/attached_files.h"
#include "cli/check_message.h"
#include "cli/findings.h"
#include "cli/header_reading.h"
#include "cli/html_writer.h"
#include "cli/links.h"
#include "cli/message.h"
#include "cli/picture.h"
#include "cli/report_style.h"
#include "cli/safe_html.h"
#include "cli/sha256.h"
#include "cli/summary.h"
#include "cli/text.h"
#include "cli/utf8.h"

namespace zqv::cli {
namespace {

using standin::Object;
using standin::String;

// Longer texts are cut, since the page is for reading and not for storage.
constexpr std::size_t kMostText = 1U << 20U;
constexpr std::size_t kMostHtml = 4U << 20U;
constexpr std::size_t kMostPartText = 1U << 16U;
constexpr std::size_t kMostPartTexts = 4U << 20U;  // texts of all parts together
constexpr std::size_t kMostTarget = 2000;          // bytes of a link's target
constexpr std::size_t kMostLinkColumns = 200;

// Deeper parts are not indented any further.
constexpr std::size_t kDeepestIndent = 12;

// Formats a size: "665 bytes", "12.3 KB", "4.0 MB".
std::string SizeText(std::size_t bytes) {
  constexpr std::size_t kMostBytes = 9999;
  constexpr double kStep = 1000.0;
  if (bytes <= kMostBytes) return ByteCount(bytes);
  double size = static_cast<double>(bytes) / kStep;
  const bool is_mega = size >= kStep;
  if (is_mega) size /= kStep;
  char text[32];
  static_cast<void>(std::snprintf(text, sizeof text, "%.1f %s", size, is_mega ? "MB" : "KB"));
  return text;
}

std::string Line(std::string_view text) { return SafeText(text, Lines::kOne); }

// Removes the brackets of a Content-ID.
std::string_view BareId(std::string_view id) {
  id = Trim(id);
  if (!id.empty() && id.front() == '<') id.remove_prefix(1);
  if (!id.empty() && id.back() == '>') id.remove_suffix(1);
  return id;
}

class PageWriter {
 public:
  PageWriter(const std::string& name, const Object& email)
      : name_(Line(name)),
        email_(email),
        tree_(email),
        reading_(email),
        plain_text_(ReadablePlainText(email, reading_)),
        html_text_(TextMember(email, "HTMLText")) {
    for (const FoundFile& file : reading_.files().list()) {
      if (file.is_structural) continue;
      files_.push_back(&file);
      if (file.packing == Packing::kNone) by_part_.emplace(file.part, &file);
      if (!file.content_id.empty()) by_id_.emplace(BareId(file.content_id), &file);
    }
  }

  std::string Run() {
    const std::string subject = Line(WrittenText(reading_.source(), "Subject"));
    const std::string title = subject.empty() ? "(no subject)" : subject;
    page_.Markup(kPageStart);
    page_.Markup("<title>").Text(title).Markup("</title>\n</head>\n<body>\n<main>\n<header>\n");
    page_.Markup("<h1 dir=\"auto\">").Text(title).Markup("</h1>\n");
    page_.Markup("<p class=\"file\">").Text(name_).Markup("</p>\n</header>\n");
    WriteSummary();
    WriteFindings();
    WritePlainText();
    WriteHtml();
    WriteAttached();
    WriteSums();
    WriteParts();
    page_.Markup("</main>\n</body>\n</html>\n");
    return page_.Take();
  }

 private:
  void WriteSummary() {
    page_.Markup("<section id=\"summary\">\n<dl>\n");
    for (const SummaryEntry& entry : SummaryOf(email_, tree_, reading_)) {
      if (entry.label == "Subject") continue;
      // The first line of a list of files is their number. The files follow in a section of their
      // own.
      const bool is_list = entry.label == "Attachments" || entry.label == "Inline parts";
      page_.Markup("<dt>").Text(entry.label).Markup("</dt><dd>");
      for (std::size_t i = 0; i < (is_list ? 1 : entry.lines.size()); ++i) {
        if (i > 0) page_.Markup("<br>");
        page_.Text(entry.lines[i]);
      }
      page_.Markup("</dd>\n");
    }
    page_.Markup("</dl>\n</section>\n");
  }

  void WriteFindings() {
    const std::vector<Finding> findings = CheckMessage(email_, tree_, ListAttached(email_, tree_));
    if (findings.empty()) return;
    page_.Markup("<section id=\"findings\" class=\"warning\">\n<h2>Findings</h2>\n");
    page_.Markup("<ul class=\"findings\">\n");
    for (const Finding& finding : findings) {
      const std::string part = PartText(finding.place, tree_);
      const std::string line = LineText(finding.place);
      page_.Markup("<li><span class=\"place\">").Text(part);
      if (!part.empty() && !line.empty()) page_.Markup(", ");
      page_.Text(line).Markup("</span><span class=\"words\">").Text(finding.text);
      page_.Markup("</span></li>\n");
    }
    page_.Markup("</ul>\n</section>\n");
  }

  // Writes a safe text of several lines, cut to `most` bytes.
  void WriteText(std::string_view text, std::size_t most) {
    const std::string_view shown = text.substr(0, WholeSequences(text, most));
    page_.Markup("<pre dir=\"auto\">").Text(shown).Markup("</pre>\n");
    WriteCut(shown.size(), text.size());
  }

  void WriteCut(std::size_t shown, std::size_t size) {
    if (shown == size) return;
    page_.Markup("<p class=\"note\">")
        .Text(SizeText(size - shown))
        .Markup(" more are not shown.</p>\n");
  }

  void WritePlainText() {
    const std::string text = SafeText(plain_text_, Lines::kMany);
    if (text.empty()) return;
    page_.Markup("<section id=\"text\">\n<h2>Text</h2>\n");
    WriteText(text, kMostText);
    page_.Markup("</section>\n");
  }

  std::string PictureOfId(std::string_view id) {
    const auto found = by_id_.find(std::string(BareId(id)));
    if (found == by_id_.end()) return {};
    constexpr std::size_t kCopies = 2;  // in the frame and in its copy
    return pictures_.DataUri(reading_.files().Data(*found->second).bytes(), kCopies);
  }

  void WriteHtml() {
    if (html_text_.IsNil()) return;
    const std::string html = DataText(html_text_);
    const std::string_view shown =
        std::string_view(html).substr(0, WholeSequences(html, kMostHtml));
    const SanitizedHtml sanitized =
        SafeHtml(shown, [this](std::string_view id) { return PictureOfId(id); });
    page_.Markup(
        "<section id=\"html\">\n<h2>HTML<small>without links, forms, scripts and what is ");
    page_.Markup("elsewhere</small></h2>\n<div class=\"letter\">");
    page_.Markup(kCopyStart).Sanitized(sanitized).Markup(kCopyEnd);
    page_.Markup("<iframe sandbox title=\"HTML of the message\" srcdoc=\"");
    page_.Text(kFrameStart).Text(sanitized.html).Markup("\"></iframe></div>\n");
    WriteCut(shown.size(), html.size());
    page_.Markup("</section>\n");
    WriteLinks(sanitized.links);
  }

  void WriteLinks(const LinkList& links) {
    if (links.list().empty() && links.left_out() == 0) return;
    page_.Markup("<section id=\"links\">\n<h2>Links of the HTML<small>");
    page_.Text(Grouped(links.list().size() + links.left_out()));
    page_.Markup("</small></h2>\n<ul class=\"links\">\n");
    for (const Link& link : links.list()) WriteLink(link, HostOf(link.target, links.base()));
    page_.Markup("</ul>\n");
    if (links.left_out() > 0) {
      page_.Markup("<p class=\"note\">").Text(Counted(links.left_out(), "more link"));
      page_.Text(links.left_out() == 1 ? " is" : " are").Markup(" not shown.</p>\n");
    }
    page_.Markup("</section>\n");
  }

  // Writes the target as text, so that nobody can click on it.
  void WriteLink(const Link& link, const std::string& host) {
    const std::string named = HostNamedIn(link.text);
    const bool is_other = !named.empty() && !IsSameHost(named, host);
    page_.Markup("<li").Text(is_other ? " class=differs" : "").Markup("><span class=\"says\">");
    if (link.kind != LinkKind::kLink || link.text.empty()) {
      page_.Markup("<i>").Text(LinkKindName(link.kind)).Markup("</i>");
    } else {
      page_.Text(CutToWidth(Line(Trim(link.text)), kMostLinkColumns));
    }
    page_.Markup("</span><span class=\"goes\">");
    if (!host.empty()) page_.Markup("<b>").Text(Line(host)).Markup("</b> ");
    const std::string_view shown =
        std::string_view(link.target).substr(0, WholeSequences(link.target, kMostTarget));
    page_.Text(Line(shown)).Markup("</span>");
    WriteCut(shown.size(), link.target.size());
    if (is_other) {
      page_.Markup("<span class=\"mark\">The text names ").Text(Line(named));
      page_.Markup(", the link leads ").Text(host.empty() ? "to no host" : "elsewhere");
      page_.Markup("</span>");
    }
    if (IsInternational(host)) {
      page_.Markup("<span class=\"mark\">The host has letters that are not ASCII</span>");
    }
    page_.Markup("</li>\n");
  }

  void WriteAttached() {
    if (files_.empty()) return;
    page_.Markup("<section id=\"files\">\n<h2>Attachments and inline parts<small>");
    page_.Text(std::to_string(files_.size())).Markup("</small></h2>\n<ul class=\"files\">\n");
    for (const FoundFile* file : files_) WriteFile(*file);
    page_.Markup("</ul>\n</section>\n");
  }

  void WriteFile(const FoundFile& file) {
    const email::DecodedBody data = reading_.files().Data(file);
    const std::string name = Line(file.name);
    const std::string type = Line(file.mime_type);
    page_.Markup("<li>");
    const std::string uri = pictures_.DataUri(data.bytes());
    if (!uri.empty()) {
      page_.Markup("<div class=\"picture\"><img alt=\"").Text(name).Markup("\" src=\"");
      page_.Text(uri).Markup("\"></div>");
    }
    page_.Markup("<div class=\"words\"><span class=\"name\">").Text(name);
    page_.Markup("</span><span class=\"about\">").Text(type).Markup("</span>");
    page_.Markup("<span class=\"about\">").Text(SizeText(data.bytes().size())).Markup(", ");
    page_.Text(file.is_inline ? "inline" : "attachment").Markup(", part ");
    page_.Text(reading_.source().NumberOf(file.part));
    if (file.packing != Packing::kNone) {
      page_.Markup(", packed in ").Text(PackingName(file.packing));
    }
    page_.Markup("</span>");
    if (!file.problem.empty()) {
      page_.Markup("<span class=\"about\">").Text(file.problem).Markup("</span>");
    }
    page_.Markup("</div></li>\n");
  }

  void WriteSums() {
    page_.Markup("<section id=\"sums\">\n<h2>SHA-256</h2>\n<ul class=\"sums\">\n");
    const String bytes = TextMember(email_, "Source");
    WriteSum(name_, "message/rfc822", bytes.bytes());
    for (const FoundFile* file : files_) {
      const email::DecodedBody data = reading_.files().Data(*file);
      WriteSum(Line(file->name), Line(file->mime_type), data.bytes());
    }
    page_.Markup("</ul>\n</section>\n");
  }

  // Writes the hash of a file. `name` and `type` must be safe text.
  void WriteSum(std::string_view name, std::string_view type, std::string_view bytes) {
    page_.Markup("<li><span class=\"name\">").Text(name).Markup("</span><span class=\"about\">");
    page_.Text(type).Text(type.empty() ? "" : ", ").Text(Counted(bytes.size(), "byte"));
    page_.Markup("</span><code>").Text(Sha256(bytes)).Markup("</code></li>\n");
  }

  void WriteParts() {
    page_.Markup("<section id=\"parts\">\n<h2>Parts and headers</h2>\n<ul class=\"parts\">\n");
    for (std::size_t i = 0; i < tree_.parts().size(); ++i) WritePart(i);
    page_.Markup("</ul>\n</section>\n");
  }

  void WritePart(std::size_t index) {
    const PartTree::Part& part = tree_.parts()[index];
    const Object header = ObjectMember(part.entity, "Header");
    const String body = TextMember(part.entity, "BodyDecoded");
    const std::string type = MimeTypeOf(header);
    const auto file = by_part_.find(index);
    page_.Markup("<li style=\"padding-left: ");
    page_.Text(std::to_string(std::min(part.depth, kDeepestIndent))).Markup("em\">");
    page_.Markup("<details").Text(index == 0 ? " open" : "").Markup(">");
    page_.Markup("<summary><span class=\"number\">").Text(tree_.Number(index));
    page_.Markup("</span> <span class=\"type\">").Text(type.empty() ? "(no type)" : type);
    page_.Markup("</span>");
    if (file != by_part_.end()) {
      page_.Markup(" <span class=\"name\">");
      page_.Text(Line(file->second->name)).Markup("</span>");
    }
    if (!body.IsNil() || !part.has_parts) {
      page_.Markup(" <span class=\"size\">").Text(SizeText(body.bytes().size())).Markup("</span>");
    }
    page_.Markup("</summary>\n<div class=\"within\">\n");
    WriteFields(index);
    WritePartText(type, body);
    page_.Markup("</div></details></li>\n");
  }

  // Writes the fields of a part as the sender wrote them. The library's parts come first in the
  // source, so they have the same indexes.
  void WriteFields(std::size_t index) {
    page_.Markup("<dl class=\"fields\">\n");
    const std::vector<mime::Part>& parts = reading_.source().parts();
    const std::size_t count = index < parts.size() ? parts[index].field_count : 0;
    for (std::size_t i = 0; i < count; ++i) {
      const mime::Field& field = reading_.source().message().fields()[parts[index].first_field + i];
      page_.Markup("<dt>").Text(Line(field.name)).Markup("</dt><dd>");
      const std::string value = ReadHeaderText(ValueBytes(field));
      page_.Text(Line(value)).Markup("</dd>\n");
    }
    page_.Markup("</dl>\n");
  }

  // Writes a text of the message that is not shown above already.
  void WritePartText(const std::string& type, const String& body) {
    constexpr std::string_view kText = "text/";
    if (!base::EqualsIgnoringCase(std::string_view(type).substr(0, kText.size()), kText)) return;
    if (body.IsNil() || body.bytes() == plain_text_.bytes() || body.bytes() == html_text_.bytes()) {
      return;
    }
    const std::size_t most = std::min(kMostPartText, part_text_left_);
    if (most == 0) return;
    const std::string text = SafeText(body, Lines::kMany);
    WriteText(text, most);
    part_text_left_ -= std::min(most, text.size());
  }

  const std::string name_;
  const Object email_;
  const PartTree tree_;
  const MailReading reading_;
  const String plain_text_;
  const String html_text_;
  std::vector<const FoundFile*> files_;  // without structural files
  std::unordered_map<std::size_t, const FoundFile*> by_part_;
  std::unordered_map<std::string, const FoundFile*> by_id_;
  Pictures pictures_;
  std::size_t part_text_left_ = kMostPartTexts;
  HtmlWriter page_;
};

}  // namespace

std::string ReportPage(const std::string& name, const Object& email) {
  return PageWriter(name, email).Run();
}

}  // namespace zqv::cli
