// Where the links of an HTML text really lead, for readers who must not have to click to find out.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zqv::cli {

enum class LinkKind { kLink, kArea, kForm, kButton, kBase };

// "Link", "Image map", "Form", "Button" or "Base".
std::string_view LinkKindName(LinkKind kind);

struct Link {
  LinkKind kind = LinkKind::kLink;
  std::string text;    // what a reader sees; UTF-8, blanks as single spaces
  std::string target;  // as browsers read it: see TargetOf
};

// The links of a text in their order, up to a number and a size; the others are counted.
class LinkList {
 public:
  // `target` without character references.
  void Add(LinkKind kind, std::string_view target);
  // Text of the link that was added last, while it lasts; nothing happens without one.
  void AppendText(std::string_view text);
  void EndText() { is_open_ = false; }
  bool takes_text() const { return is_open_; }

  const std::vector<Link>& list() const { return links_; }
  std::size_t left_out() const { return left_out_; }
  // What relative targets are relative to; empty without a base element.
  const std::string& base() const { return base_; }

 private:
  static constexpr std::size_t kMostLinks = 500;
  static constexpr std::size_t kMostBytes = 1U << 20U;  // of all targets
  static constexpr std::size_t kMostText = 300;         // bytes of one text

  std::vector<Link> links_;
  std::size_t left_out_ = 0;
  std::size_t bytes_ = 0;
  std::string base_;
  bool is_open_ = false;
};

// An attribute's value as browsers read it as a URL: without control characters and blanks at both
// ends, and without tabs and line ends anywhere (URL Standard, section 4.4).
std::string TargetOf(std::string_view value);

// The host that a target leads to, in lower case, its percent escapes decoded, without user, port
// and a dot at the end; that of the address of a mailto:. A relative target has the host of `base`.
// Empty when there is none.
std::string HostOf(std::string_view target, std::string_view base);

// The host that a text names, as above: a URL, "www.example.com", or a host or an address that is
// all of the text or ends in one of the oldest domains. Empty when it names none. Characters that
// show nothing do not count. A file's name such as "report.pdf" is no host.
std::string HostNamedIn(std::string_view text);

// Whether two hosts are the same to a reader: "www." in front does not count.
bool IsSameHost(std::string_view left, std::string_view right);

// Whether a host holds characters beyond ASCII, which may look like others, as they are or encoded
// ("xn--", RFC 5890, section 2.3.2.1).
bool IsInternational(std::string_view host);

}  // namespace zqv::cli
