// A value is parsed in two passes. The first counts mailboxes, groups and addresses, so that the
// memory for them can be allocated at once. The second stores them. Both passes visit the entries
// of a list and the members of each group:
//
//   Team: ada@example.org, "B, C" <b@c>; , d@e
//   |------------- entry --------------| entry      a list of two addresses
//         |--- member --|  |- member -|             the first of which is a group of two mailboxes
//
// A mailbox is split from its end to its start, as mimetic does it:
//
//   Ada (x) <@route.example:ada@example.org>
//   |label|  |--- route --| | | |- domain-|         the local part stands between route and domain
//
// Results equal mimetic's for every value. They differ from RFC 5322, section 3.2: a backslash does
// not quote a character, and a comment does not hide a comma, a colon or a '<' in it.
#include "mime/addresses.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "base/bytes16.h"
#include "mime/pieces.h"

namespace zqv::mime {
namespace {

std::string_view Between(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

template <char... kWanted>
bool IsAnyOf(char c) {
  return ((c == kWanted) || ...);
}

// The mask (base/bytes16.h) of the bytes that are one of the wanted characters.
template <char... kWanted>
base::Bytes16 AreAnyOf(base::Bytes16 bytes) {
  return ((bytes == kWanted) | ...);
}

// Iterates over the occurrences of the wanted characters in a text, from front to back. NUL cannot
// be a wanted character, because the last block is padded with NULs.
template <char... kWanted>
class CharacterFinder {
 public:
  explicit CharacterFinder(std::string_view text)
      : next_block_(text.data()), end_(text.data() + text.size()) {}

  // Returns the position of the next wanted character, or the end of the text.
  const char* Next() {
    while (bits_ == 0) {
      if (next_block_ == end_) return end_;
      ReadBlock();
    }
    const char* const found = block_ + __builtin_ctzll(bits_);
    bits_ &= bits_ - 1;
    return found;
  }

 private:
  static constexpr std::size_t kBlock = 64;

  void ReadBlock() {
    block_ = next_block_;
    const auto left = static_cast<std::size_t>(end_ - block_);
    if (left >= kBlock) {
      bits_ = base::BitsOf64(block_, AreAnyOf<kWanted...>);
      next_block_ += kBlock;
      return;
    }
    std::array<char, kBlock> rest{};
    std::memcpy(rest.data(), block_, left);
    bits_ = base::BitsOf64(rest.data(), AreAnyOf<kWanted...>);
    next_block_ = end_;
  }

  const char* block_ = nullptr;
  std::uint64_t bits_ = 0;  // the occurrences in `block_` that Next has not returned yet
  const char* next_block_;
  const char* end_;
};

// Searches substrings of a value, sixteen bytes at a time. A block of sixteen bytes may extend
// beyond the substring but never beyond the value. Near the ends of the value, bytes are compared
// one by one.
class Scanner {
 public:
  explicit Scanner(std::string_view value)
      : begin_(value.data()), end_(value.data() + value.size()) {}

  // Whether `part`, a substring of the value, contains one of the wanted characters.
  template <char... kWanted>
  bool Has(std::string_view part) const {
    const char* at = part.data();
    const char* const end = at + part.size();
    for (; at < end && end_ - at >= kBlock; at += kBlock) {
      const base::Bytes16 wanted = AreAnyOf<kWanted...>(base::LoadBytes16(at));
      if (base::AnyOf(wanted)) return at + base::FirstOf(wanted) < end;
    }
    for (; at < end; ++at) {
      if (IsAnyOf<kWanted...>(*at)) return true;
    }
    return false;
  }

  // The position of the last wanted character in [limit, at), or null. Both must be in the value.
  template <char... kWanted>
  const char* Last(const char* limit, const char* at) const {
    for (; at > limit && at - begin_ >= kBlock; at -= kBlock) {
      const base::Bytes16 wanted = AreAnyOf<kWanted...>(base::LoadBytes16(at - kBlock));
      if (base::AnyOf(wanted)) {
        const char* const last = at - kBlock + base::LastOf(wanted);
        return last >= limit ? last : nullptr;
      }
    }
    while (at > limit) {
      --at;
      if (IsAnyOf<kWanted...>(*at)) return at;
    }
    return nullptr;
  }

 private:
  static constexpr std::ptrdiff_t kBlock = base::kBytes16;

  const char* begin_;
  const char* end_;
};

// The position of the first wanted character outside double quotes, or the end of the text.
template <char... kWanted>
const char* FirstUnquoted(std::string_view text) {
  CharacterFinder<'"', kWanted...> finder(text);
  const char* const end = text.data() + text.size();
  bool in_quotes = false;
  for (;;) {
    const char* const at = finder.Next();
    if (at == end) return end;
    if (*at == '"') {
      in_quotes = !in_quotes;
    } else if (!in_quotes) {
      return at;
    }
  }
}

std::string_view TrimSpaces(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

bool IsAllSpaces(std::string_view text) {
  return text.find_first_not_of(' ') == std::string_view::npos;
}

enum class ListKind { kMailboxes, kAddresses };

// Calls visit(entry, has_colon) for each entry of a list. In a list of addresses, `has_colon` says
// whether the entry contains a colon outside quotes, as every group does. In a list of mailboxes it
// is always false.
//
// QUIRK: an entry may be empty, except that nothing, or only spaces, after the last comma is no
// entry. Equal to mimetic's result. Test: Addresses.EmptyEntries.
//
// QUIRK: in a list of addresses no comma ends an entry between a colon and the next semicolon, even
// if the colon does not begin a group. Equal to mimetic's result.
// Test: Addresses.AColonMakesLaterAddressesMembersOfItsGroup.
template <class Visit>
void ForEachEntry(std::string_view list, ListKind kind, Visit visit) {
  CharacterFinder<'"', ',', ':', ';'> finder(list);
  const char* const end = list.data() + list.size();
  const char* start = list.data();
  bool in_quotes = false;
  bool in_group = false;
  bool has_colon = false;
  for (const char* at = finder.Next(); at != end; at = finder.Next()) {
    if (*at == ',') {
      if (in_quotes || in_group) continue;
      visit(Between(start, at), has_colon);
      start = at + 1;
      has_colon = false;
    } else if (*at == '"') {
      in_quotes = !in_quotes;
    } else if (kind == ListKind::kAddresses && !in_quotes) {
      in_group = *at == ':';
      has_colon = has_colon || in_group;
    }
  }
  if (!IsAllSpaces(Between(start, end))) visit(Between(start, end), has_colon);
}

// Whether `address` has a colon outside quotes, and no '<' outside quotes before that colon.
bool IsGroup(std::string_view address) {
  const char* const first = FirstUnquoted<':', '<'>(address);
  return first != address.data() + address.size() && *first == ':';
}

// Calls visit(member) for each member of a group. `members` is everything after the group's colon;
// the members end at the first semicolon outside quotes, comments and angle brackets.
template <class Visit>
void ForEachMember(std::string_view members, Visit visit) {
  CharacterFinder<';', ',', '"', '<', '>', '(', ')'> finder(members);
  const char* const end = members.data() + members.size();
  const char* start = members.data();
  bool in_quotes = false;
  std::ptrdiff_t open = 0;  // number of open parentheses; may be negative
  std::ptrdiff_t open_angles = 0;
  for (const char* at = finder.Next(); at != end; at = finder.Next()) {
    if (*at == '"') {
      in_quotes = !in_quotes;
    } else if (*at == '(' || *at == ')') {
      open += *at == '(' ? 1 : -1;
    } else if (*at == '<' || *at == '>') {
      open_angles += *at == '<' ? 1 : -1;
    } else if (!in_quotes && open == 0 && open_angles == 0) {
      visit(TrimBlanks(Between(start, at)));
      if (*at == ';') return;
      start = at + 1;
    }
  }
  // QUIRK: the last member of a group without a semicolon loses its last character. Equal to
  // mimetic's result. Test: Addresses.AGroupWithoutSemicolonLosesItsLastCharacter.
  if (start != end) visit(Between(start, end - 1));
}

std::size_t CountMembers(std::string_view group) {
  const char* const colon = FirstUnquoted<':'>(group);
  const char* const end = group.data() + group.size();
  std::size_t count = 0;
  if (colon != end) ForEachMember(Between(colon + 1, end), [&](std::string_view) { ++count; });
  return count;
}

// The result of the first pass: how many entries of each kind a value has.
struct Counts {
  std::size_t addresses = 0;
  std::size_t groups = 0;
  std::size_t mailboxes = 0;
};

Counts CountAddress(std::string_view address) {
  return IsGroup(address) ? Counts{1, 1, CountMembers(address)} : Counts{1, 0, 1};
}

Counts CountAddresses(std::string_view list) {
  Counts counts;
  std::size_t members = 0;
  ForEachEntry(list, ListKind::kAddresses, [&](std::string_view entry, bool has_colon) {
    ++counts.addresses;
    if (has_colon && IsGroup(entry)) {
      ++counts.groups;
      members += CountMembers(entry);
    }
  });
  counts.mailboxes = counts.addresses - counts.groups + members;
  return counts;
}

// Facts about a mailbox that was split, which save work in the usual case.
struct Split {
  bool is_text_form;  // mimetic writes exactly the text that was split
  bool is_canonical;  // if true, local part, domain and source route have no comments and spaces
};

// Returns a label without the spaces at its end. QUIRK: a label that consists of spaces keeps the
// first. Equal to mimetic's result. Test: Addresses.ALabelOfOneSpaceStays.
std::string_view Label(std::string_view text) {
  while (text.size() > 1 && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// Splits the text of a mailbox that ends in '>', and sets the members of `parts`, which must be
// empty before. `text` must be a substring of the value of the scanner `value`.
Split SplitWithAngles(const Scanner& value, std::string_view text, Mailbox& parts) {
  const char* const begin = text.data();
  const char* const closing = begin + text.size() - 1;
  const char* end = closing;  // end of the piece being scanned: the '>', '@' or ':' after it
  bool is_canonical = true;
  for (const char* at = end; (at = value.Last<'<', '@', ':', ' ', '('>(begin, at)) != nullptr;) {
    const std::string_view part = Between(at + 1, end);
    if (*at == '<') {
      (*end == ':' ? parts.source_route : parts.local_part) = part;
      parts.label = Label(Between(begin, at));
      const bool is_address = *end == '@' && parts.domain.data() + parts.domain.size() == closing;
      const bool has_one_space = parts.label.data() + parts.label.size() + 1 == at;
      return {is_address && has_one_space && !parts.label.empty(), is_canonical};
    }
    if (*at == ':') {
      parts.local_part = part;
      end = at;
    } else if (*at != '@') {
      is_canonical = false;
    } else if (parts.domain.empty()) {
      parts.domain = part;
      end = at;
    }
  }
  return {false, is_canonical};
}

// Like SplitWithAngles, for a text that does not end in '>'. Such a mailbox has no label and no
// source route.
Split SplitWithoutAngles(const Scanner& value, std::string_view text, Mailbox& parts) {
  const char* const begin = text.data();
  bool in_quotes = false;
  bool in_comment = false;
  for (const char* at = begin + text.size();
       (at = value.Last<'@', '"', '(', ')'>(begin, at)) != nullptr;) {
    if (*at == '"') {
      in_quotes = !in_quotes;
    } else if (*at != '@') {
      in_comment = *at == ')';
    } else if (!in_quotes && !in_comment) {
      const std::string_view address = TrimSpaces(text);
      parts.local_part = Between(address.data(), at);
      parts.domain = Between(at + 1, address.data() + address.size());
      return {true, !value.Has<' ', '('>(address)};
    }
  }
  return {false, true};
}

// The second pass: parses entries and stores them, and their texts, in an AddressMemory.
class Reader {
 public:
  // `counts` must not be too small: addresses hold pointers to mailboxes and groups, so these
  // vectors must not grow.
  Reader(std::string_view value, const Counts& counts, AddressMemory& memory)
      : scanner_(value), value_size_(value.size()), memory_(memory) {
    // An upper bound: a mailbox's text is at most a space and an '@' longer than its entry in the
    // value, a group's a semicolon, and ", " is a space longer than the comma in the value.
    const std::size_t most = value.size() + 2 * counts.mailboxes + counts.groups +
                             std::max(counts.mailboxes, counts.addresses);
    memory.text_bytes.reset(new char[most]);
    memory.mailboxes.reserve(counts.mailboxes);
    memory.groups.reserve(counts.groups);
    memory.addresses.reserve(counts.addresses);
    text_end_ = memory.text_bytes.get();
  }

  // ReadMailbox, ReadGroup and ReadAddress each parse `text`, and append the result and its text
  // form to the memory. `text` must be a substring of the value.
  const Mailbox& ReadMailbox(std::string_view text) {
    Mailbox& mailbox = memory_.mailboxes.emplace_back();
    const Split split = !text.empty() && text.back() == '>'
                            ? SplitWithAngles(scanner_, text, mailbox)
                            : SplitWithoutAngles(scanner_, text, mailbox);
    const char* const start = text_end_;
    if (split.is_text_form) {
      Append(text);
    } else {
      AppendParts(mailbox);
    }
    mailbox.text = Between(start, text_end_);
    if (!split.is_canonical) MakeCanonical(mailbox);
    return mailbox;
  }

  const Group& ReadGroup(std::string_view text) {
    Group& group = memory_.groups.emplace_back();
    const char* const colon = FirstUnquoted<':'>(text);
    const char* const end = text.data() + text.size();
    const char* const start = text_end_;
    const std::size_t first = memory_.mailboxes.size();
    if (colon != end) {
      group.name = TrimBlanks(Between(text.data(), colon));
      Append(group.name);
      ReadMembers(Between(colon + 1, end));
    }
    // QUIRK: the text of a group has no colon after the name and no space after a comma. Equal to
    // mimetic's result. Test: Addresses.TextOfAGroup.
    Append(";");
    group.text = Between(start, text_end_);
    group.mailboxes = {memory_.mailboxes.data() + first, memory_.mailboxes.size() - first};
    return group;
  }

  void ReadAddress(std::string_view text, bool is_group) {
    if (is_group) {
      memory_.addresses.push_back({nullptr, &ReadGroup(text)});
    } else {
      memory_.addresses.push_back({&ReadMailbox(text), nullptr});
    }
  }

  void AppendSeparator() { Append(", "); }

  // Sets the text form of a list: everything that was appended to `text_bytes`.
  void Finish() { memory_.text = Between(memory_.text_bytes.get(), text_end_); }

 private:
  void ReadMembers(std::string_view members) {
    bool is_first = true;
    ForEachMember(members, [&](std::string_view member) {
      if (!is_first) Append(",");
      is_first = false;
      ReadMailbox(member);
    });
  }

  void Append(std::string_view text) {
    if (text.empty()) return;
    std::memcpy(text_end_, text.data(), text.size());
    text_end_ += text.size();
  }

  // Appends the text form of a mailbox, built from its pieces. QUIRK: a source route is written
  // instead of the label and the '<', and not at all without a label. Equal to mimetic's result.
  // Test: Addresses.ASourceRouteReplacesTheLabel.
  void AppendParts(const Mailbox& parts) {
    const bool has_label = !parts.label.empty();
    if (has_label && !parts.source_route.empty()) {
      Append(parts.source_route);
      Append(":");
    } else if (has_label) {
      Append(parts.label);
      Append(" <");
    }
    Append(parts.local_part);
    Append("@");
    Append(parts.domain);
    if (has_label) Append(">");
  }

  // Removes comments and spaces from the local part, domain and source route of a mailbox.
  void MakeCanonical(Mailbox& mailbox) {
    mailbox.local_part = Canonical(mailbox.local_part);
    mailbox.domain = Canonical(mailbox.domain);
    mailbox.source_route = Canonical(mailbox.source_route);
  }

  std::string_view Canonical(std::string_view part) {
    part = TrimSpaces(part);
    return scanner_.Has<' ', '('>(part) ? RemoveComments(part) : part;
  }

  // Returns `part` without comments and unquoted spaces. Scans `part` backwards and writes the
  // result into `memory_.part_bytes`, which all calls share and which is filled from its end.
  // QUIRK: all spaces to the left of a '>' or of an unmatched parenthesis stay. Equal to mimetic's
  // result. Test: Addresses.PartsWithoutCommentsAndBlanks.
  std::string_view RemoveComments(std::string_view part) {
    if (parts_begin_ == nullptr) {
      memory_.part_bytes.reset(new char[value_size_]);
      parts_begin_ = memory_.part_bytes.get() + value_size_;
    }
    char* const end = parts_begin_;
    char* comment_end = end;
    bool in_quotes = false;
    bool is_left_of_angle = false;
    std::ptrdiff_t comments = 0;  // number of ')' without their '(' so far; may be negative
    for (std::size_t i = part.size(); i > 0; --i) {
      const char c = part[i - 1];
      if (c == '"') {
        in_quotes = !in_quotes;
      } else if (!in_quotes) {
        if (c == '>') is_left_of_angle = true;
        if (c == ')' && ++comments == 1) comment_end = parts_begin_;
        if (c == '(' && --comments == 0) {
          parts_begin_ = comment_end;
          continue;
        }
        if (c == ' ' && comments == 0 && !is_left_of_angle) continue;
      }
      *--parts_begin_ = c;
    }
    return Between(parts_begin_, end);
  }

  const Scanner scanner_;
  const std::size_t value_size_;
  AddressMemory& memory_;
  char* text_end_;
  // Start of the used bytes of `part_bytes`, which is filled back to front; null before first use.
  char* parts_begin_ = nullptr;
};

}  // namespace

MailboxValue::MailboxValue(std::string_view value) {
  Reader reader(value, {0, 0, 1}, memory_);
  reader.ReadMailbox(value);
}

GroupValue::GroupValue(std::string_view value) {
  Reader reader(value, {0, 1, CountMailboxes(value)}, memory_);
  reader.ReadGroup(value);
}

std::size_t GroupValue::CountMailboxes(std::string_view value) { return CountMembers(value); }

AddressValue::AddressValue(std::string_view value) {
  const Counts counts = CountAddress(value);
  Reader reader(value, counts, memory_);
  reader.ReadAddress(value, counts.groups != 0);
}

std::size_t AddressValue::CountMailboxes(std::string_view value) {
  return CountAddress(value).mailboxes;
}

MailboxList::MailboxList(std::string_view value) {
  const std::size_t count = CountMailboxes(value);
  if (count == 0) return;
  Reader reader(value, {0, 0, count}, memory_);
  ForEachEntry(value, ListKind::kMailboxes, [&](std::string_view entry, bool) {
    if (!memory_.mailboxes.empty()) reader.AppendSeparator();
    reader.ReadMailbox(entry);
  });
  reader.Finish();
}

std::size_t MailboxList::CountMailboxes(std::string_view value) {
  std::size_t count = 0;
  ForEachEntry(value, ListKind::kMailboxes, [&](std::string_view, bool) { ++count; });
  return count;
}

AddressList::AddressList(std::string_view value) {
  const Counts counts = CountAddresses(value);
  if (counts.addresses == 0) return;
  Reader reader(value, counts, memory_);
  ForEachEntry(value, ListKind::kAddresses, [&](std::string_view entry, bool has_colon) {
    if (!memory_.addresses.empty()) reader.AppendSeparator();
    reader.ReadAddress(entry, has_colon && IsGroup(entry));
  });
  reader.Finish();
}

std::size_t AddressList::CountMailboxes(std::string_view value) {
  return CountAddresses(value).mailboxes;
}

}  // namespace zqv::mime
