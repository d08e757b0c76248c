// Mailboxes, groups and lists of them in a field's value (RFC 5322, section 3.4), as the MIME
// library reads them.
//
// Every text is a view: of the value where the value has it in one piece, otherwise of memory that
// the object owns. So a value must outlive the object that reads it, and the views live as long as
// both. Moving the object leaves its views where they are. A value may hold any bytes.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace zqv::mime {

struct Mailbox {
  std::string_view text;          // the library's text form; "@" for an empty mailbox
  std::string_view label;         // the display name with its quotes and comments
  std::string_view local_part;    // without comments and blanks, as are the next two
  std::string_view domain;        // behind the last '@'; without one both are empty
  std::string_view source_route;  // RFC 5322, section 4.4
};

struct MailboxRange {
  const Mailbox* begin() const { return first; }
  const Mailbox* end() const { return first + count; }
  std::size_t size() const { return count; }
  bool empty() const { return count == 0; }
  const Mailbox& operator[](std::size_t index) const { return first[index]; }

  const Mailbox* first = nullptr;
  std::size_t count = 0;
};

struct Group {
  std::string_view text;  // the library's text form; ";" for an empty group
  std::string_view name;  // with its quotes and comments
  MailboxRange mailboxes;
};

// Either a mailbox or a group; the other one is null.
struct Address {
  bool is_group() const { return group != nullptr; }
  std::string_view text() const { return is_group() ? group->text : mailbox->text; }

  const Mailbox* mailbox = nullptr;
  const Group* group = nullptr;
};

// What was read from a value, and the memory of it.
struct AddressMemory {
  std::vector<Mailbox> mailboxes;  // those of groups, too
  std::vector<Group> groups;
  std::vector<Address> addresses;      // of a value that is read as addresses
  std::string_view text;               // of the whole value; the entries' texts are parts of it
  std::unique_ptr<char[]> text_bytes;  // those of `text`
  std::unique_ptr<char[]> part_bytes;  // of parts that lost comments or blanks
};

// The readers. CountMailboxes tells how many mailboxes the reader would make of a value, without
// taking memory. None of them throws anything but std::bad_alloc.

// A value as one mailbox.
class MailboxValue {
 public:
  explicit MailboxValue(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view) { return 1; }

  const Mailbox& operator*() const { return memory_.mailboxes.front(); }
  const Mailbox* operator->() const { return &**this; }

 private:
  AddressMemory memory_;
};

// A value as one group. Without a colon it is an empty group without a name.
class GroupValue {
 public:
  explicit GroupValue(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view value);

  const Group& operator*() const { return memory_.groups.front(); }
  const Group* operator->() const { return &**this; }

 private:
  AddressMemory memory_;
};

// A value as one address: a group when a colon comes before any '<', neither of them in quotes.
class AddressValue {
 public:
  explicit AddressValue(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view value);

  const Address& operator*() const { return memory_.addresses.front(); }
  const Address* operator->() const { return &**this; }

 private:
  AddressMemory memory_;
};

// Mailboxes between commas. The text has ", " between them.
class MailboxList {
 public:
  explicit MailboxList(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view value);

  const MailboxList& operator*() const { return *this; }  // as the values above

  std::string_view text() const { return memory_.text; }
  const Mailbox* begin() const { return memory_.mailboxes.data(); }
  const Mailbox* end() const { return begin() + size(); }
  std::size_t size() const { return memory_.mailboxes.size(); }
  bool empty() const { return memory_.mailboxes.empty(); }
  const Mailbox& operator[](std::size_t index) const { return memory_.mailboxes[index]; }

 private:
  AddressMemory memory_;
};

// Addresses between commas. The text has ", " between them.
class AddressList {
 public:
  explicit AddressList(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view value);

  const AddressList& operator*() const { return *this; }  // as the values above

  std::string_view text() const { return memory_.text; }
  const Address* begin() const { return memory_.addresses.data(); }
  const Address* end() const { return begin() + size(); }
  std::size_t size() const { return memory_.addresses.size(); }
  bool empty() const { return memory_.addresses.empty(); }
  const Address& operator[](std::size_t index) const { return memory_.addresses[index]; }

 private:
  AddressMemory memory_;
};

}  // namespace zqv::mime
