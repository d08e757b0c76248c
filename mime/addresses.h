// Parses the address fields of a header, such as From and To (RFC 5322, section 3.4). Results equal
// those of mimetic, the MIME library (THIRD_PARTY.md), also for malformed values.
//
// Each class named ...Value or ...List parses one field value in its constructor. All results are
// views: of the value where the text stands in it unchanged, otherwise of memory that the object
// owns. So the value must outlive the object. Views stay valid when the object is moved. A value
// may contain any bytes. Constructors throw std::bad_alloc and nothing else.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace zqv::mime {

// The pieces of one mailbox, such as "Ada (x) <@route:ada@example.org>". Comments and spaces are
// removed from local part, domain and source route.
struct Mailbox {
  std::string_view text;   // as mimetic writes the mailbox; "@" when all other pieces are empty
  std::string_view label;  // the display name with its quotes and comments
  // Before the '@'. Without an '@': the text between '<' and '>', or empty when there is no '<'.
  std::string_view local_part;
  std::string_view domain;        // after the last '@'; empty without an '@'
  std::string_view source_route;  // between '<' and ':' (RFC 5322, section 4.4); usually empty
};

// An array of mailboxes. [borrowed from the object that parsed the value]
struct MailboxRange {
  const Mailbox* begin() const { return first; }
  const Mailbox* end() const { return first + count; }
  std::size_t size() const { return count; }
  bool empty() const { return count == 0; }
  const Mailbox& operator[](std::size_t index) const { return first[index]; }

  const Mailbox* first = nullptr;
  std::size_t count = 0;
};

// A named list of mailboxes, such as "Team: ada@example.org, bob@example.net;".
struct Group {
  std::string_view text;  // as mimetic writes the group; ";" without a name and mailboxes
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

// The results of parsing a value, and the memory that owns their texts.
struct AddressMemory {
  std::vector<Mailbox> mailboxes;  // all mailboxes of the value, members of groups included
  std::vector<Group> groups;
  std::vector<Address> addresses;      // set by AddressValue and AddressList only
  std::string_view text;               // the text form of the value; not set by MailboxValue
  std::unique_ptr<char[]> text_bytes;  // owns `text` and the text of each mailbox and group
  // Owns the pieces of mailboxes from which comments or spaces were removed.
  std::unique_ptr<char[]> part_bytes;
};

// In each class below, CountMailboxes(value) returns how many mailboxes parsing `value` gives,
// members of groups included. It allocates nothing.

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

// Parses a value as one group. A value without a colon outside quotes gives a group that has no
// name and no mailboxes.
class GroupValue {
 public:
  explicit GroupValue(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view value);

  const Group& operator*() const { return memory_.groups.front(); }
  const Group* operator->() const { return &**this; }

 private:
  AddressMemory memory_;
};

// Parses a value as one address. The address is a group when the value has a colon outside quotes
// and no '<' outside quotes before that colon. Otherwise it is a mailbox.
class AddressValue {
 public:
  explicit AddressValue(std::string_view value = {});
  static std::size_t CountMailboxes(std::string_view value);

  const Address& operator*() const { return memory_.addresses.front(); }
  const Address* operator->() const { return &**this; }

 private:
  AddressMemory memory_;
};

// Parses a value as mailboxes separated by commas. text() joins the mailboxes with ", ".
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

// Parses a value as addresses separated by commas. text() joins the addresses with ", ".
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
