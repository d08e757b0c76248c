#include "cli/safe_html.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <map>
#include <unordered_set>
#include <utility>

#include "base/ascii.h"
#include "cli/html_references.h"
#include "cli/mail_text.h"
#include "cli/safe_css.h"
#include "cli/text.h"
#include "standin/text.h"

namespace zqv::cli {
namespace {

using base::LowerAscii;

constexpr std::string_view kBlanks = " \t\n\r\f";

using Names = std::unordered_set<std::string_view>;

const Names& Elements() {
  static const Names kNames = {
      "a",        "abbr",       "address", "article", "aside",  "b",    "bdi",  "bdo",
      "big",      "blockquote", "br",      "caption", "center", "cite", "code", "col",
      "colgroup", "dd",         "del",     "dfn",     "dir",    "div",  "dl",   "dt",
      "em",       "figcaption", "figure",  "font",    "footer", "h1",   "h2",   "h3",
      "h4",       "h5",         "h6",      "header",  "hr",     "i",    "img",  "ins",
      "kbd",      "li",         "main",    "mark",    "menu",   "nav",  "nobr", "ol",
      "p",        "pre",        "q",       "rp",      "rt",     "ruby", "s",    "samp",
      "section",  "small",      "span",    "strike",  "strong", "sub",  "sup",  "table",
      "tbody",    "td",         "tfoot",   "th",      "thead",  "tr",   "tt",   "u",
      "ul",       "var",        "wbr"};
  return kNames;
}

const Names& Attributes() {
  static const Names kNames = {
      "align", "alt",     "bgcolor", "border",   "cellpadding", "cellspacing", "class",
      "color", "colspan", "compact", "dir",      "face",        "height",      "hspace",
      "id",    "lang",    "nowrap",  "reversed", "rowspan",     "size",        "span",
      "start", "title",   "type",    "valign",   "value",       "vspace",      "width"};
  return kNames;
}

// Elements whose content browsers do not parse as markup. All of it is removed, except that of a
// style element.
const Names& RawElements() {
  static const Names kNames = {"iframe", "noembed",  "noframes", "plaintext", "script",
                               "style",  "textarea", "title",    "xmp"};
  return kNames;
}

// Elements that separate words.
const Names& PartingElements() {
  static const Names kNames = {"br", "div", "li", "p", "table", "td", "th", "tr"};
  return kNames;
}

// Elements without an end tag.
bool HasNoEndTag(std::string_view element) {
  return element == "br" || element == "col" || element == "hr" || element == "img" ||
         element == "wbr";
}

bool Holds(const Names& names, std::string_view name) { return names.find(name) != names.end(); }

// Whether a URI contains the picture itself.
bool IsPictureUri(std::string_view uri) {
  return StartsWith(uri, "data:image/") && !StartsWith(uri, "data:image/svg") &&
         uri.find_first_of("&<>\"'") == kNowhere;
}

// Converts a color of HTML ("#fff", "fff000", "red") to one of CSS. Empty for anything else.
std::string ColorOf(std::string_view value) {
  constexpr std::size_t kDigits = 6;
  std::string_view digits = value;
  if (StartsWith(digits, "#")) digits.remove_prefix(1);
  const bool is_number = std::all_of(digits.begin(), digits.end(),
                                     [](char c) { return base::HexadecimalValue(c) >= 0; });
  if (is_number && (digits.size() == kDigits || digits.size() == kDigits / 2)) {
    return '#' + std::string(digits);
  }
  const bool is_word = std::all_of(value.begin(), value.end(), base::IsLetter);
  return is_word ? std::string(value) : std::string();
}

// Sanitizes HTML in one pass.
class Cleaner {
 public:
  Cleaner(std::string_view html, const PictureOf& picture) : rest_(html), picture_(picture) {}

  SanitizedHtml Run() {
    while (!rest_.empty()) {
      ReadText(Take(rest_.find('<')));
      if (!rest_.empty()) ReadMarkup();
    }
    SanitizedHtml sanitized;
    using std::literals::string_view_literals::operator""sv;
    for (const std::string_view text : {"<"sv, kMessageRoot, "><"sv, kMessageBody}) {
      sanitized.html += text;
    }
    sanitized.html += BodyAttributes() + '>' + safe_;
    for (const std::string_view text : {"</"sv, kMessageBody, "></"sv, kMessageRoot, ">"sv}) {
      sanitized.html += text;
    }
    sanitized.links = std::move(links_);
    return sanitized;
  }

 private:
  // Takes the next `size` bytes, or all that are left.
  std::string_view Take(std::size_t size) {
    const std::string_view taken = rest_.substr(0, size);
    rest_.remove_prefix(taken.size());
    return taken;
  }

  // Skips the text up to and including `end`.
  void SkipPast(std::string_view end) {
    const std::size_t at = rest_.find(end);
    Take(at == kNowhere ? at : at + end.size());
  }

  void SkipBlanks() { Take(rest_.find_first_not_of(kBlanks)); }

  void AppendText(std::string_view text) { AppendSafe(text, &safe_); }

  // Writes content or an attribute's value. Character references stay; characters that could end it
  // are escaped.
  static void AppendSafe(std::string_view text, std::string* to) {
    for (const char c : text) {
      if (c == '<') {
        *to += "&lt;";
      } else if (c == '>') {
        *to += "&gt;";
      } else if (c == '"') {
        *to += "&quot;";
      } else {
        *to += c;
      }
    }
  }

  // Reads a tag or comment. Must be called at "<", which may also be text.
  void ReadMarkup() {
    const char next = rest_.size() > 1 ? rest_[1] : '\0';
    if (StartsWith(rest_, "<!--")) {
      Take(2);  // "<!-->" is a complete comment
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
      ReadText(Take(1));
    }
  }

  void ReadText(std::string_view text) {
    AppendText(text);
    if (!links_.takes_text()) return;
    // Decodes only the beginning of a long text, since a list of links shows no more.
    constexpr std::size_t kMostLinkText = 4096;
    links_.AppendText(WithoutReferences(text.substr(0, kMostLinkText), HtmlPlace::kContent));
  }

  std::string ReadName(std::string_view ends) {
    return standin::LowerName(Take(rest_.find_first_of(ends)));
  }

  // Reads a tag. Must be called after "<" or "</".
  void ReadTag(bool is_end) {
    const std::string element = ReadName(" \t\n\r\f/>");
    const bool is_known = Holds(Elements(), element);
    const std::size_t before = safe_.size();
    if (is_known && (!is_end || !HasNoEndTag(element))) {
      safe_ += is_end ? "</" : "<";
      safe_ += element;
    }
    const bool is_written = safe_.size() > before;
    if (element == "a") links_.EndText();
    if (Holds(PartingElements(), element)) links_.AppendText(" ");
    const bool is_whole = ReadAttributes(is_end ? std::string() : element, is_written);
    if (!is_whole) {
      safe_.resize(before);
    } else if (is_written) {
      safe_ += '>';
    }
    if (!is_end && Holds(RawElements(), element)) ReadRawContent(element);
  }

  // Reads the attributes up to and including ">". False when the text ends before. `element` is the
  // name of a start tag and empty for an end tag. Writes the allowed attributes if the element is
  // written (`is_written`).
  bool ReadAttributes(const std::string& element, bool is_written) {
    bool has_target = false;
    while (true) {
      Take(rest_.find_first_not_of(" \t\n\r\f/"));
      if (rest_.empty()) return false;
      if (rest_.front() == '>') break;
      // A name may begin with "=".
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
      if (element.empty()) continue;
      // Of several targets the first counts.
      has_target = has_target || NoteTarget(element, name, value);
      if (is_written) AppendAttribute(element, name, value);
      // Of several attributes with one name the first counts.
      if (element == "body") body_.emplace(name, value);
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
    if (element == "img" && name == "alt") {
      links_.AppendText(WithoutReferences(value, HtmlPlace::kAttribute));
    }
    if (element == "a" && name == "href") name = "title";
    std::string made;
    if (element == "img" && name == "src") {
      made = PictureFor(value);
      if (made.empty()) return;
      value = made;
    } else if (name == "style") {
      return AppendStyle(WithoutReferences(value, HtmlPlace::kAttribute), &safe_);
    } else if (!Holds(Attributes(), name)) {
      return;
    }
    AppendQuoted(name, value, &safe_);
  }

  static void AppendQuoted(std::string_view name, std::string_view value, std::string* to) {
    to->append(1, ' ').append(name).append("=\"");
    AppendSafe(value, to);
    *to += '"';
  }

  // Appends a sanitized style attribute. Character references in `css` must have been decoded.
  void AppendStyle(std::string_view css, std::string* to) const {
    const std::string safe = SafeDeclarations(css, PictureReader());
    std::string escaped;
    for (const char c : safe) escaped += c == '&' ? std::string("&amp;") : std::string(1, c);
    AppendQuoted("style", escaped, to);
  }

  // Attributes of a body element for colors have no effect on another element, so they become
  // styles.
  std::string BodyAttributes() const {
    std::string attributes;
    std::string style;
    const auto value_of = [this](std::string_view name) {
      const auto found = body_.find(name);
      const std::string_view value = found == body_.end() ? std::string_view() : found->second;
      return WithoutReferences(value, HtmlPlace::kAttribute);
    };
    for (const auto& [name, property] :
         {std::pair("bgcolor", "background-color"), std::pair("text", "color")}) {
      const std::string color = ColorOf(value_of(name));
      if (!color.empty()) style.append(property).append(": ").append(color).append("; ");
    }
    style += value_of("style");
    if (!style.empty()) AppendStyle(style, &attributes);
    for (const auto& [name, value] : body_) {
      if (name != "bgcolor" && Holds(Attributes(), name)) AppendQuoted(name, value, &attributes);
    }
    return attributes;
  }

  // Records the target of a link, form or button. False for any other attribute.
  bool NoteTarget(std::string_view element, std::string_view name, std::string_view value) {
    struct Place {
      std::string_view element;
      std::string_view attribute;
      LinkKind kind;
    };
    static constexpr Place kPlaces[] = {{"a", "href", LinkKind::kLink},
                                        {"a", "xlink:href", LinkKind::kLink},
                                        {"area", "href", LinkKind::kArea},
                                        {"form", "action", LinkKind::kForm},
                                        {"button", "formaction", LinkKind::kButton},
                                        {"input", "formaction", LinkKind::kButton},
                                        {"base", "href", LinkKind::kBase}};
    for (const Place& place : kPlaces) {
      if (element != place.element || name != place.attribute) continue;
      links_.Add(place.kind, WithoutReferences(value, HtmlPlace::kAttribute));
      return true;
    }
    return false;
  }

  // Returns a data URI of the picture `source`. Empty when the message does not contain it.
  std::string PictureFor(std::string_view source) const {
    constexpr std::string_view kContentId = "cid:";
    source.remove_prefix(std::min(source.find_first_not_of(kBlanks), source.size()));
    if (IsPictureUri(source)) return std::string(source);
    if (!StartsWith(source, kContentId)) return {};
    return picture_(Unescaped(source.substr(kContentId.size())));
  }

  PictureAt PictureReader() const {
    return [this](std::string_view url) { return PictureFor(url); };
  }

  // Reads the content of an element up to its end tag, or all the rest when there is none.
  void ReadRawContent(const std::string& element) {
    const std::string end = "</" + element;
    std::size_t at = rest_.find(end[0]);
    while (at != kNowhere && !StartsWith(rest_.substr(at), end)) at = rest_.find('<', at + 1);
    const std::string_view content = Take(at);
    if (element != "style" || at == kNowhere) return;
    safe_ += "<style>";
    safe_ += SafeStyleSheet(content, PictureReader());
    safe_ += "</style>";
  }

  std::string_view rest_;
  std::string safe_;
  LinkList links_;
  std::map<std::string, std::string_view, std::less<>> body_;  // attributes of body elements
  const PictureOf& picture_;
};

}  // namespace

SanitizedHtml SafeHtml(std::string_view html, const PictureOf& picture) {
  // Control characters are removed first. Otherwise a name with one inside could pass the checks
  // and then become another name.
  std::string visible;
  std::copy_if(html.begin(), html.end(), std::back_inserter(visible), [](char c) {
    return static_cast<unsigned char>(c) >= ' ' || kBlanks.find(c) != kNowhere;
  });
  return Cleaner(visible, picture).Run();
}

}  // namespace zqv::cli
