// Parses the address fields of a header, such as From and To (RFC 5322, section 3.4). Results equal
// those of mimetic, the MIME library (THIRD_PARTY.md), also for malformed values.
//
// Each class below parses one field value in its constructor. All texts are views: of the value
// where the text stands in it unchanged, otherwise of memory that the object owns. So the value
// must outlive the object. Views stay valid when the object is moved. A value may contain any
// bytes. Constructors throw std::bad_alloc and nothing else.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace zqv::mime {

// The pieces of one mailbox, such as "Ada (x) <@route:ada@example.org>". The last three are without
// comments and spaces.
struct Mailbox {
  std::string_view text;          // as mimetic writes the mailbox; "@" when it is empty
  std::string_view label;         // the display name with its quotes and comments
  std::string_view local_part;    // before the '@'; empty without an '@'
  std::string_view domain;        // after the last '@'; empty without an '@'
  std::string_view source_route;  // before the ':' (RFC 5322, section 4.4); usually empty
};

// Consecutive mailboxes. [borrowed from the object that parsed the value]
struct MailboxRange {
  const Mailbox* begin() const { return first; }
  const Mailbox* end() const { return first + count; }
  std::size_t size() const { return count; }
  bool empty() const { return count == 0; }
  const Mailbox& operator[](std::size_t index) const { return first[index]; }

  const Mailbox* first = nullptr;
  std::size_t count = 0;
};

// "Team: ada@example.org, bob@example.net;"
struct Group {
  std::string_view text;  // as mimetic writes the group; ";" when it is empty
  std::string_view name;  // the text before the colon, with its quotes and comments
  MailboxRange mailboxes;
};

// Either a mailbox or a group; the pointer to the other is null. [borrowed like MailboxRange]
struct Address {
  bool is_group() const { return group != nullptr; }
  std::string_view text() const { return is_group() ? group->text : mailbox->text; }

  const Mailbox* mailbox = nullptr;
  const Group* group = nullptr;
};

// The results of parsing a value, and the memory of their texts.
struct AddressMemory {
  std::vector<Mailbox> mailboxes;  // all of them, also the members of groups
  std::vector<Group> groups;
  std::vector<Address> addresses;      // empty when the value is parsed as mailboxes only
  std::string_view text;               // all entries as mimetic writes them; lies in `text_bytes`
  std::unique_ptr<char[]> text_bytes;  // owns the bytes of `text` and of each entry's text
  std::unique_ptr<char[]> part_bytes;  // owns parts of which comments or spaces were removed
};

// In each class, CountMailboxes(value) returns how many mailboxes parsing `value` gives, members of
// groups included. It allocates nothing.

// Parses a value as one mailbox.
class MailboxValue {
 public:
  explicit MailboxValue(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view) { return 1; }

  const Mailbox& operator*() const { return memory_.mailboxes.front(); }
  const Mailbox* operator->() const { return &**this; }

 private:
  AddressMemory memory_;
};

// Parses a value as one group. A value without a colon gives an empty group without a name.
class GroupValue {
 public:
  explicit GroupValue(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view value);

  const Group& operator*() const { return memory_.groups.front(); }
  const Group* operator->() const { return &**this; }

 private:
  AddressMemory memory_;
};

// Parses a value as one address. It is a group when it has a colon outside quotes and no '<'
// outside quotes before that colon, and otherwise a mailbox.
class AddressValue {
 public:
  explicit AddressValue(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view value);

  const Address& operator*() const { return memory_.addresses.front(); }
  const Address* operator->() const { return &**this; }

 private:
  AddressMemory memory_;
};

// Parses a value as mailboxes separated by commas. In the text, ", " separates them.
class MailboxList {
 public:
  explicit MailboxList(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view value);

  const MailboxList& operator*() const { return *this; }  // for templates that serve all classes

  std::string_view text() const { return memory_.text; }
  const Mailbox* begin() const { return memory_.mailboxes.data(); }
  const Mailbox* end() const { return begin() + size(); }
  std::size_t size() const { return memory_.mailboxes.size(); }
  bool empty() const { return memory_.mailboxes.empty(); }
  const Mailbox& operator[](std::size_t index) const { return memory_.mailboxes[index]; }

 private:
  AddressMemory memory_;
};

// Parses a value as addresses separated by commas. In the text, ", " separates them.
class AddressList {
 public:
  explicit AddressList(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view value);

  const AddressList& operator*() const { return *this; }  // for templates that serve all classes

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
