// The records of the classes: the data that the host stores inside each instance. For most
// properties the host reads the field itself; the class tables (plugin/) tell it the field's
// offset.
//
// Each slot that is not nil owns one lock (host/ref.h), which the class's destructor gives back.
// The host fills records with zeros; no C++ constructor or destructor runs for them.
#pragma once

#include <cstddef>
#include <tuple>
#include <type_traits>

#include "host/ref.h"

namespace zqv::objects {

using host::ArraySlot;
using host::ObjectSlot;
using host::StringSlot;

// All slots of a record, as pointers to members, in the order in which the destructor gives them
// back (ClearSlots in objects/lifecycle.h).
template <class Record>
inline constexpr std::tuple<> kSlots;

// Whether kSlots is as long as the record. `others`: the fields of the record that are no slots,
// each of which takes the place of one.
template <class Record>
constexpr bool HasAllSlots(std::size_t others = 0) {
  constexpr std::size_t kCount = std::tuple_size_v<std::decay_t<decltype(kSlots<Record>)>>;
  return sizeof(Record) == (kCount + others) * sizeof(void*);
}

// MimeEntityZQV and MimeEmailZQV. An entity inside a message uses Header, Body, BodyDecoded and the
// dates; all other fields are used by MimeEmailZQV only.
struct MimeEntityClassData {
  ObjectSlot Header;       // MimeHeaderZQV
  ObjectSlot Body;         // MimeBodyZQV
  StringSlot BodyDecoded;  // without transfer encoding, labelled with its encoding
  StringSlot Source;       // the whole message as it was passed to the constructor
  StringSlot Subject;      // with encoded words decoded
  StringSlot PlainText;
  StringSlot HTMLText;
  ArraySlot Attachments;    // of MimeAttachmentZQV
  ArraySlot Inlines;        // of MimeAttachmentZQV
  ObjectSlot SentDate;      // the host's Date
  ObjectSlot ReceivedDate;  // the host's Date
};
template <>
inline constexpr auto kSlots<MimeEntityClassData> = std::tuple(
    &MimeEntityClassData::Header, &MimeEntityClassData::Body, &MimeEntityClassData::PlainText,
    &MimeEntityClassData::HTMLText, &MimeEntityClassData::BodyDecoded,
    &MimeEntityClassData::Subject, &MimeEntityClassData::Source, &MimeEntityClassData::Attachments,
    &MimeEntityClassData::Inlines, &MimeEntityClassData::SentDate,
    &MimeEntityClassData::ReceivedDate);
static_assert(HasAllSlots<MimeEntityClassData>());

struct MimeBodyClassData {
  StringSlot preamble;
  StringSlot epilogue;
  StringSlot StringValue;
  ArraySlot parts;  // of MimeEntityZQV
};
template <>
inline constexpr auto kSlots<MimeBodyClassData> = std::tuple(&MimeBodyClassData::preamble,
                                                             &MimeBodyClassData::epilogue,
                                                             &MimeBodyClassData::StringValue,
                                                             &MimeBodyClassData::parts);
static_assert(HasAllSlots<MimeBodyClassData>());

struct MimeHeaderClassData {
  StringSlot MimeVersion;
  StringSlot ContentType;
  StringSlot ContentTransferEncoding;
  StringSlot ContentTransferEncodingMechanism;
  StringSlot ContentDisposition;
  StringSlot ContentDescription;
  StringSlot contentId;
  ObjectSlot sender;  // MimeMailboxZQV
  ObjectSlot from;    // MimeMailboxListZQV
  ObjectSlot too;     // the To field; MimeAddressListZQV, as are replyto, cc and bcc
  StringSlot subject;
  StringSlot subjectDecoded;
  ObjectSlot replyto;
  ObjectSlot cc;
  ObjectSlot bcc;
  StringSlot messageid;
  ArraySlot fields;  // of MimeFieldZQV; not a property, read by methods
};
template <>
inline constexpr auto kSlots<MimeHeaderClassData> = std::tuple(
    &MimeHeaderClassData::MimeVersion, &MimeHeaderClassData::ContentType,
    &MimeHeaderClassData::ContentTransferEncoding,
    &MimeHeaderClassData::ContentTransferEncodingMechanism,
    &MimeHeaderClassData::ContentDisposition, &MimeHeaderClassData::ContentDescription,
    &MimeHeaderClassData::contentId, &MimeHeaderClassData::sender, &MimeHeaderClassData::from,
    &MimeHeaderClassData::too, &MimeHeaderClassData::subject, &MimeHeaderClassData::subjectDecoded,
    &MimeHeaderClassData::replyto, &MimeHeaderClassData::cc, &MimeHeaderClassData::bcc,
    &MimeHeaderClassData::messageid, &MimeHeaderClassData::fields);
static_assert(HasAllSlots<MimeHeaderClassData>());

struct MimeFieldClassData {
  StringSlot Value;
  StringSlot Name;
};
template <>
inline constexpr auto kSlots<MimeFieldClassData> = std::tuple(&MimeFieldClassData::Name,
                                                              &MimeFieldClassData::Value);
static_assert(HasAllSlots<MimeFieldClassData>());

struct MimeMailboxClassData {
  StringSlot StringValue;
  StringSlot Mailbox;  // the local part
  StringSlot Domain;
  StringSlot Label;  // the display name, with encoded words not decoded
  StringSlot LabelDecoded;
  StringSlot Sourceroute;
};
template <>
inline constexpr auto kSlots<MimeMailboxClassData> = std::tuple(&MimeMailboxClassData::StringValue,
                                                                &MimeMailboxClassData::Mailbox,
                                                                &MimeMailboxClassData::Domain,
                                                                &MimeMailboxClassData::Label,
                                                                &MimeMailboxClassData::LabelDecoded,
                                                                &MimeMailboxClassData::Sourceroute);
static_assert(HasAllSlots<MimeMailboxClassData>());

struct MimeGroupClassData {
  StringSlot StringValue;
  StringSlot Name;
  StringSlot NameDecoded;
  ArraySlot mailboxes;  // of MimeMailboxZQV
};
template <>
inline constexpr auto kSlots<MimeGroupClassData> = std::tuple(&MimeGroupClassData::StringValue,
                                                              &MimeGroupClassData::Name,
                                                              &MimeGroupClassData::NameDecoded,
                                                              &MimeGroupClassData::mailboxes);
static_assert(HasAllSlots<MimeGroupClassData>());

// When isGroup is 1, Mailbox is nil, otherwise Group. Both may be nil.
struct MimeAddressClassData {
  StringSlot StringValue;
  abi::RBBoolean isGroup;
  ObjectSlot Mailbox;  // MimeMailboxZQV
  ObjectSlot Group;    // MimeGroupZQV
};
template <>
inline constexpr auto kSlots<MimeAddressClassData> = std::tuple(&MimeAddressClassData::Group,
                                                                &MimeAddressClassData::Mailbox,
                                                                &MimeAddressClassData::StringValue);
static_assert(HasAllSlots<MimeAddressClassData>(1));

struct MimeMailboxListClassData {
  StringSlot StringValue;
  ArraySlot mailboxes;  // of MimeMailboxZQV
};
template <>
inline constexpr auto kSlots<MimeMailboxListClassData> =
    std::tuple(&MimeMailboxListClassData::StringValue, &MimeMailboxListClassData::mailboxes);
static_assert(HasAllSlots<MimeMailboxListClassData>());

struct MimeAddressListClassData {
  StringSlot StringValue;
  ArraySlot addresses;  // of MimeAddressZQV
};
template <>
inline constexpr auto kSlots<MimeAddressListClassData> =
    std::tuple(&MimeAddressListClassData::StringValue, &MimeAddressListClassData::addresses);
static_assert(HasAllSlots<MimeAddressListClassData>());

// QUIRK: MimeType stands before MimeVersion here, while the class table lists them the other way
// round. Part of the interface's contract; changing it is a major version.
// Test: Registration.AttachmentKeepsBothOrders.
struct MimeAttachmentClassData {
  ObjectSlot Body;    // MimeBodyZQV, the same object as in the part's entity
  ObjectSlot Header;  // MimeHeaderZQV, the same object as in the part's entity
  StringSlot Data;    // the same string as BodyDecoded of the part's entity
  StringSlot Filename;
  StringSlot MimeType;  // type/subtype
  StringSlot MimeVersion;
  StringSlot ContentType;  // this and those below: the field's whole value
  StringSlot ContentTransferEncoding;
  StringSlot ContentDisposition;
  StringSlot ContentDescription;
  StringSlot contentId;
};
template <>
inline constexpr auto kSlots<MimeAttachmentClassData> = std::tuple(
    &MimeAttachmentClassData::Body, &MimeAttachmentClassData::Header,
    &MimeAttachmentClassData::Data, &MimeAttachmentClassData::Filename,
    &MimeAttachmentClassData::MimeType, &MimeAttachmentClassData::MimeVersion,
    &MimeAttachmentClassData::ContentType, &MimeAttachmentClassData::ContentTransferEncoding,
    &MimeAttachmentClassData::ContentDisposition, &MimeAttachmentClassData::ContentDescription,
    &MimeAttachmentClassData::contentId);
static_assert(HasAllSlots<MimeAttachmentClassData>());

}  // namespace zqv::objects
