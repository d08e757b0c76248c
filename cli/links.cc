#include "cli/links.h"

#include <algorithm>
#include <iterator>

#include "base/ascii.h"
#include "cli/mail_text.h"
#include "cli/text.h"
#include "cli/utf8.h"
#include "standin/text.h"

namespace zqv::cli {
namespace {

bool IsBeyondAscii(char c) { return static_cast<unsigned char>(c) >= 0x80; }

template <std::size_t kCount>
bool IsOneOf(const std::string_view (&words)[kCount], std::string_view word) {
  return std::any_of(std::begin(words), std::end(words),
                     [&](std::string_view one) { return base::EqualsIgnoringCase(one, word); });
}

// Returns the scheme: "https" for "https://example.com". Empty for a relative target.
std::string_view SchemeOf(std::string_view target) {
  if (target.empty() || !base::IsLetter(target.front())) return {};
  const auto end = std::find_if(target.begin(), target.end(), [](char c) {
    return !base::IsAlphanumeric(c) && c != '+' && c != '-' && c != '.';
  });
  if (end == target.end() || *end != ':') return {};
  return target.substr(0, static_cast<std::size_t>(end - target.begin()));
}

// Schemes for which browsers accept backslashes instead of slashes, and fewer slashes.
bool IsWebScheme(std::string_view scheme) {
  static constexpr std::string_view kSchemes[] = {"http", "https", "ftp", "ws", "wss"};
  return IsOneOf(kSchemes, scheme);
}

// Schemes whose targets have no host, whatever their text looks like.
bool IsOpaqueScheme(std::string_view scheme) {
  static constexpr std::string_view kSchemes[] = {"data", "javascript", "vbscript"};
  return IsOneOf(kSchemes, scheme);
}

std::string CleanHost(std::string_view host) {
  std::string clean = standin::LowerName(Unescaped(host));
  if (!clean.empty() && clean.back() == '.') clean.pop_back();
  return clean;
}

// Returns the host of "user:password@host:80".
std::string HostOfAuthority(std::string_view authority) {
  const std::size_t at = authority.rfind('@');
  if (at != kNowhere) authority.remove_prefix(at + 1);
  const std::size_t bracket = authority.find(']');  // of an IPv6 address
  return CleanHost(authority.substr(0, authority.find(':', bracket == kNowhere ? 0 : bracket)));
}

std::string HostOfAddress(std::string_view address) {
  const std::size_t at = address.rfind('@');
  return at == kNowhere ? std::string() : CleanHost(address.substr(at + 1));
}

std::string_view UpTo(std::string_view ends, std::string_view text) {
  return text.substr(0, text.find_first_of(ends));
}

std::string WithoutInvisible(std::string_view text) {
  constexpr char32_t kNonJoiner = 0x200C;
  constexpr char32_t kJoiner = 0x200D;
  std::string visible;
  while (!text.empty()) {
    const CodePoint c = FirstCodePoint(text);
    const bool is_joiner = c.value == kNonJoiner || c.value == kJoiner;
    if (!c.valid || (!IsInvisible(c.value) && !is_joiner)) visible += text.substr(0, c.bytes);
    text.remove_prefix(c.bytes);
  }
  return visible;
}

// Whether a text is labels separated by dots, of which the last one has letters only.
bool LooksLikeHost(std::string_view host) {
  const auto is_label_character = [](char c) {
    return base::IsAlphanumeric(c) || IsBeyondAscii(c) || c == '-' || c == '.' || c == '_';
  };
  const std::size_t dot = host.rfind('.');
  if (dot == kNowhere || dot == 0 || host.front() == '.' || host.find("..") != kNowhere) {
    return false;
  }
  const std::string_view last = host.substr(dot + 1);
  const bool is_word = StartsWith(last, "xn--") ||
                       std::all_of(last.begin(), last.end(),
                                   [](char c) { return base::IsLetter(c) || IsBeyondAscii(c); });
  return last.size() >= 2 && is_word && std::all_of(host.begin(), host.end(), is_label_character);
}

// Whether a text ends with a common extension of files that is not a domain.
bool LooksLikeFile(std::string_view host) {
  static constexpr std::string_view kEndings[] = {
      "asp", "aspx", "csv", "doc",  "docx", "eml", "exe", "gif", "htm",  "html",
      "ics", "jpeg", "jpg", "js",   "json", "jsp", "mp3", "ods", "odt",  "pdf",
      "php", "png",  "ppt", "pptx", "rtf",  "tar", "txt", "xls", "xlsx", "xml"};
  return IsOneOf(kEndings, host.substr(host.rfind('.') + 1));
}

bool IsInOldDomain(std::string_view host) {
  static constexpr std::string_view kDomains[] = {"biz", "com", "edu", "gov", "info",
                                                  "int", "mil", "net", "org"};
  return IsOneOf(kDomains, host.substr(host.rfind('.') + 1));
}

// Removes quotes, brackets and punctuation around a word.
std::string_view BareWord(std::string_view word) {
  constexpr std::string_view kAround = "\"'()<>[]{},.;:!?";
  const std::size_t first = word.find_first_not_of(kAround);
  if (first == kNowhere) return {};
  return word.substr(first, word.find_last_not_of(kAround) - first + 1);
}

std::string HostOfWord(std::string_view word, bool is_alone) {
  word = BareWord(word);
  const std::size_t slashes = word.find("://");
  if (slashes != kNowhere) {
    std::size_t begin = slashes;
    while (begin > 0 && base::IsAlphanumeric(word[begin - 1])) --begin;
    return HostOf(word.substr(begin), {});
  }
  const std::string_view authority = UpTo("/?#\\", word);
  const std::string host = HostOfAuthority(authority);
  if (!LooksLikeHost(host)) return {};
  if (StartsWith(host, "www.") || IsInOldDomain(host)) return host;
  const bool is_address = authority.find('@') != kNowhere;
  return is_address || (is_alone && !LooksLikeFile(host)) ? host : std::string();
}

}  // namespace

std::string_view LinkKindName(LinkKind kind) {
  switch (kind) {
    case LinkKind::kArea:
      return "Image map";
    case LinkKind::kForm:
      return "Form";
    case LinkKind::kButton:
      return "Button";
    case LinkKind::kBase:
      return "Base";
    case LinkKind::kLink:
      break;
  }
  return "Link";
}

void LinkList::Add(LinkKind kind, std::string_view target) {
  is_open_ = false;
  std::string clean = TargetOf(target);
  if (kind == LinkKind::kBase && base_.empty()) base_ = clean;
  if (links_.size() == kMostLinks || clean.size() > kMostBytes - bytes_) {
    ++left_out_;
    return;
  }
  bytes_ += clean.size();
  links_.push_back({kind, {}, std::move(clean)});
  is_open_ = kind == LinkKind::kLink;
}

void LinkList::AppendText(std::string_view text) {
  if (!is_open_) return;
  std::string& all = links_.back().text;
  while (!text.empty() && all.size() < kMostText) {
    const CodePoint c = FirstCodePoint(text);
    if (c.value > ' ') {
      all += text.substr(0, c.bytes);
    } else if (!all.empty() && all.back() != ' ') {
      all += ' ';
    }
    text.remove_prefix(c.bytes);
  }
}

std::string TargetOf(std::string_view value) {
  const auto is_outer = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  while (!value.empty() && is_outer(value.front())) value.remove_prefix(1);
  while (!value.empty() && is_outer(value.back())) value.remove_suffix(1);
  std::string target;
  std::copy_if(value.begin(), value.end(), std::back_inserter(target),
               [](char c) { return c != '\t' && !base::IsLineEnd(c); });
  return target;
}

std::string HostOf(std::string_view target, std::string_view base) {
  const std::string_view scheme = SchemeOf(target);
  if (base::EqualsIgnoringCase(scheme, "mailto")) {
    const std::string address = Unescaped(UpTo("?,", target.substr(scheme.size() + 1)));
    return HostOfAddress(address);
  }
  const bool is_web = scheme.empty() || IsWebScheme(scheme);
  const std::string_view slash_like = is_web ? "/\\" : "/";
  std::string_view rest = scheme.empty() ? target : target.substr(scheme.size() + 1);
  const std::size_t slashes = std::min(rest.find_first_not_of(slash_like), rest.size());
  if (scheme.empty() && slashes < 2) return base.empty() ? std::string() : HostOf(base, {});
  if (!is_web && (slashes < 2 || IsOpaqueScheme(scheme))) return {};
  rest.remove_prefix(is_web ? slashes : 2);
  return HostOfAuthority(UpTo(is_web ? "/\\?#" : "/?#", rest));
}

std::string HostNamedIn(std::string_view text) {
  const std::string visible = WithoutInvisible(text);
  std::string_view rest = Trim(visible);
  const bool is_alone = rest.find(' ') == kNowhere;
  while (!rest.empty()) {
    const std::string_view word = rest.substr(0, rest.find(' '));
    std::string host = HostOfWord(word, is_alone);
    if (!host.empty()) return host;
    rest.remove_prefix(std::min(word.size() + 1, rest.size()));
  }
  return {};
}

bool IsSameHost(std::string_view left, std::string_view right) {
  const auto bare = [](std::string_view host) {
    return host.substr(StartsWith(host, "www.") ? 4 : 0);
  };
  return base::EqualsIgnoringCase(bare(left), bare(right));
}

bool IsInternational(std::string_view host) {
  if (std::any_of(host.begin(), host.end(), IsBeyondAscii)) return true;
  return StartsWith(host, "xn--") || host.find(".xn--") != kNowhere;
}

}  // namespace zqv::cli
