// The links of an HTML text with their real targets, so that a reader need not click on one to see
// it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

// The kind of element that has the target.
enum class LinkKind { kLink, kArea, kForm, kButton, kBase };

// The kind for a reader: "Link", "Image map", "Form", "Button" or "Base".
std::string_view LinkKindName(LinkKind kind);

struct Link {
  LinkKind kind = LinkKind::kLink;
  std::string text;    // the visible text; UTF-8, runs of blanks as single spaces
  std::string target;  // the URL as browsers understand it: see TargetOf
};

// The links of a text, in order. Above a limit on number and size, links are only counted.
class LinkList {
 public:
  // Adds a link. Character references in `target` must have been decoded.
  void Add(LinkKind kind, std::string_view target);
  // Appends to the visible text of the last link. Does nothing after EndText.
  void AppendText(std::string_view text);
  void EndText() { is_open_ = false; }
  bool takes_text() const { return is_open_; }

  const std::vector<Link>& list() const { return links_; }
  std::size_t left_out() const { return left_out_; }
  // The base URL of relative targets; empty without a base element.
  const std::string& base() const { return base_; }

 private:
  static constexpr std::size_t kMostLinks = 500;
  static constexpr std::size_t kMostBytes = 1U << 20U;  // of all targets together
  static constexpr std::size_t kMostText = 300;         // of one visible text

  std::vector<Link> links_;
  std::size_t left_out_ = 0;
  std::size_t bytes_ = 0;
  std::string base_;
  bool is_open_ = false;
};

// Returns the URL that browsers make of an attribute's value: without control characters and blanks
// at its ends, and without tabs and line ends (URL Standard, section 4.4).
std::string TargetOf(std::string_view value);

// Returns the host of a target: in lower case, percent escapes decoded, without user, port and
// final dot. A mailto: target has the host of its address, a relative target the host of `base`.
// Empty when there is none.
std::string HostOf(std::string_view target, std::string_view base);

// Returns the host that a visible text seems to name. It recognises URLs and "www.example.com"
// anywhere. A bare host or address is recognised if it is the whole text or ends in one of the
// oldest domains. File names such as "report.pdf" are not hosts. Invisible characters are ignored.
// Empty when the text names none.
std::string HostNamedIn(std::string_view text);

// Whether a reader considers two hosts the same. A leading "www." is ignored.
bool IsSameHost(std::string_view left, std::string_view right);

// Whether a host has non-ASCII characters, which may look like other characters. They may be
// encoded ("xn--", RFC 5890, section 2.3.2.1).
bool IsInternational(std::string_view host);

}  // namespace zqv::cli
