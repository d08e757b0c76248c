#include "cli/safe_html.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "base/ascii.h"
#include "cli/mail_text.h"

namespace zqv::cli {
namespace {

using base::EqualsIgnoringCase;
using base::LowerAscii;

constexpr std::size_t kNowhere = std::string_view::npos;
constexpr std::string_view kBlanks = " \t\n\r\f";

using Names = std::unordered_set<std::string_view>;

const Names& Elements() {
  static const Names kNames = {
      "a",     "abbr",     "address",    "article", "aside",   "b",      "bdi",  "bdo",
      "big",   "body",     "blockquote", "br",      "caption", "center", "cite", "code",
      "col",   "colgroup", "dd",         "del",     "dfn",     "dir",    "div",  "dl",
      "dt",    "em",       "figcaption", "figure",  "font",    "footer", "h1",   "h2",
      "h3",    "h4",       "h5",         "h6",      "header",  "hr",     "i",    "img",
      "ins",   "kbd",      "li",         "main",    "mark",    "menu",   "nav",  "nobr",
      "ol",    "p",        "pre",        "q",       "rp",      "rt",     "ruby", "s",
      "samp",  "section",  "small",      "span",    "strike",  "strong", "sub",  "sup",
      "table", "tbody",    "td",         "tfoot",   "th",      "thead",  "tr",   "tt",
      "u",     "ul",       "var",        "wbr"};
  return kNames;
}

const Names& Attributes() {
  static const Names kNames = {
      "align",   "alt",      "bgcolor", "border", "cellpadding", "cellspacing", "class", "color",
      "colspan", "compact",  "dir",     "face",   "height",      "hspace",      "id",    "lang",
      "nowrap",  "reversed", "rowspan", "size",   "span",        "start",       "style", "text",
      "title",   "type",     "valign",  "value",  "vspace",      "width"};
  return kNames;
}

// Elements whose content is no markup to a browser; all but that of a style sheet is left out.
const Names& RawElements() {
  static const Names kNames = {"iframe", "noembed",  "noframes", "plaintext", "script",
                               "style",  "textarea", "title",    "xmp"};
  return kNames;
}

// What ends with its start tag, or is closed for good by its end tag too early.
bool HasNoEndTag(std::string_view element) {
  return element == "br" || element == "col" || element == "hr" || element == "img" ||
         element == "wbr" || element == "body";
}

bool Holds(const Names& names, std::string_view name) { return names.find(name) != names.end(); }

bool StartsWith(std::string_view text, std::string_view start) {
  return EqualsIgnoringCase(text.substr(0, start.size()), start);
}

// A picture that is in the text itself.
bool IsPictureUri(std::string_view uri) {
  return StartsWith(uri, "data:image/") && !StartsWith(uri, "data:image/svg") &&
         uri.find_first_of("&<>\"'") == kNowhere;
}

// Reads the text once, from its front.
class Cleaner {
 public:
  Cleaner(std::string_view html, const PictureOf& picture) : rest_(html), picture_(picture) {}

  std::string Run() {
    while (!rest_.empty()) {
      AppendText(Take(rest_.find('<')));
      if (!rest_.empty()) ReadMarkup();
    }
    return std::move(safe_);
  }

 private:
  // The next bytes, at most all.
  std::string_view Take(std::size_t size) {
    const std::string_view taken = rest_.substr(0, size);
    rest_.remove_prefix(taken.size());
    return taken;
  }

  // Up to `end`, and that too.
  void SkipPast(std::string_view end) {
    const std::size_t at = rest_.find(end);
    Take(at == kNowhere ? at : at + end.size());
  }

  void SkipBlanks() { Take(rest_.find_first_not_of(kBlanks)); }

  // Content or an attribute's value: references stay, what could end it does not.
  void AppendText(std::string_view text) {
    for (const char c : text) {
      if (c == '<') {
        safe_ += "&lt;";
      } else if (c == '>') {
        safe_ += "&gt;";
      } else if (c == '"') {
        safe_ += "&quot;";
      } else {
        safe_ += c;
      }
    }
  }

  // At "<".
  void ReadMarkup() {
    const char next = rest_.size() > 1 ? rest_[1] : '\0';
    if (StartsWith(rest_, "<!--")) {
      Take(2);  // "<!-->" is all of a comment
      SkipPast("-->");
    } else if (next == '!' || next == '?') {
      SkipPast(">");
    } else if (base::IsLetter(next)) {
      Take(1);
      ReadTag(false);
    } else if (next == '/' && rest_.size() > 2 && base::IsLetter(rest_[2])) {
      Take(2);
      ReadTag(true);
    } else {
      AppendText(Take(1));
    }
  }

  std::string ReadName(std::string_view ends) {
    std::string name(Take(rest_.find_first_of(ends)));
    std::transform(name.begin(), name.end(), name.begin(), LowerAscii);
    return name;
  }

  // Behind "<" or "</".
  void ReadTag(bool is_end) {
    const std::string element = ReadName(" \t\n\r\f/>");
    const bool is_known = Holds(Elements(), element);
    const std::size_t before = safe_.size();
    if (is_known && (!is_end || !HasNoEndTag(element))) {
      safe_ += is_end ? "</" : "<";
      safe_ += element;
    }
    const bool is_written = safe_.size() > before;
    const bool is_whole = ReadAttributes(is_written && !is_end ? element : std::string());
    if (!is_whole) {
      safe_.resize(before);
    } else if (is_written) {
      safe_ += '>';
    }
    if (!is_end && Holds(RawElements(), element)) ReadRawContent(element);
  }

  // Up to ">", and that too; false when the text ends first. Writes those that `element` may have;
  // none for an empty name.
  bool ReadAttributes(const std::string& element) {
    while (true) {
      Take(rest_.find_first_not_of(" \t\n\r\f/"));
      if (rest_.empty()) return false;
      if (rest_.front() == '>') break;
      // A "=" in front belongs to the name.
      std::string name(Take(1));
      name += ReadName(" \t\n\r\f/>=");
      name.front() = LowerAscii(name.front());
      SkipBlanks();
      std::string_view value;
      if (!rest_.empty() && rest_.front() == '=') {
        Take(1);
        SkipBlanks();
        value = ReadValue();
      }
      if (!element.empty()) AppendAttribute(element, name, value);
    }
    Take(1);
    return true;
  }

  std::string_view ReadValue() {
    if (rest_.empty()) return {};
    const char quote = rest_.front();
    if (quote != '"' && quote != '\'') return Take(rest_.find_first_of(" \t\n\r\f>"));
    Take(1);
    const std::string_view value = Take(rest_.find(quote));
    Take(1);
    return value;
  }

  void AppendAttribute(std::string_view element, std::string_view name, std::string_view value) {
    if (element == "a" && name == "title") return;
    if (element == "a" && name == "href") name = "title";
    std::string uri;
    if (element == "img" && name == "src") {
      uri = PictureFor(value);
      if (uri.empty()) return;
      value = uri;
    } else if (!Holds(Attributes(), name)) {
      return;
    }
    safe_ += ' ';
    safe_ += name;
    safe_ += "=\"";
    AppendText(value);
    safe_ += '"';
  }

  std::string PictureFor(std::string_view source) const {
    constexpr std::string_view kContentId = "cid:";
    source.remove_prefix(std::min(source.find_first_not_of(kBlanks), source.size()));
    if (IsPictureUri(source)) return std::string(source);
    if (!StartsWith(source, kContentId)) return {};
    return picture_(Unescaped(source.substr(kContentId.size())));
  }

  // Behind the start tag, up to the end tag. Without one, everything.
  void ReadRawContent(const std::string& element) {
    const std::string end = "</" + element;
    std::size_t at = rest_.find(end[0]);
    while (at != kNowhere && !StartsWith(rest_.substr(at), end)) at = rest_.find('<', at + 1);
    const std::string_view content = Take(at);
    if (element != "style" || at == kNowhere) return;
    safe_ += "<style>";
    safe_ += content;
    safe_ += "</style>";
  }

  std::string_view rest_;
  std::string safe_;
  const PictureOf& picture_;
};

}  // namespace

std::string SafeHtml(std::string_view html, const PictureOf& picture) {
  // Before anything is read: what only looks like another name must not become that name later.
  std::string visible;
  std::copy_if(html.begin(), html.end(), std::back_inserter(visible), [](char c) {
    return static_cast<unsigned char>(c) >= ' ' || kBlanks.find(c) != kNowhere;
  });
  return Cleaner(visible, picture).Run();
}

}  // namespace zqv::cli
