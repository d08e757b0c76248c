// The records of the classes: the data that the host stores inside each instance. For most
// properties the host reads the field itself; the class tables (plugin/) tell it the field's
// offset.
//
// Each slot that is not nil owns one lock (host/ref.h), which the class's destructor gives back.
// The host fills records with zeros; no C++ constructor or destructor runs for them.
#pragma once

#include <type_traits>

#include "host/ref.h"

namespace zqv::objects {

using host::ArraySlot;
using host::ObjectSlot;
using host::StringSlot;

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

struct MimeBodyClassData {
  StringSlot preamble;
  StringSlot epilogue;
  StringSlot StringValue;
  ArraySlot parts;  // of MimeEntityZQV
};

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

struct MimeFieldClassData {
  StringSlot Value;
  StringSlot Name;
};

struct MimeMailboxClassData {
  StringSlot StringValue;
  StringSlot Mailbox;  // the local part
  StringSlot Domain;
  StringSlot Label;  // the display name, with encoded words not decoded
  StringSlot LabelDecoded;
  StringSlot Sourceroute;
};

struct MimeGroupClassData {
  StringSlot StringValue;
  StringSlot Name;
  StringSlot NameDecoded;
  ArraySlot mailboxes;  // of MimeMailboxZQV
};

// When isGroup is 1, Mailbox is nil, otherwise Group. Both may be nil.
struct MimeAddressClassData {
  StringSlot StringValue;
  abi::RBBoolean isGroup;
  ObjectSlot Mailbox;  // MimeMailboxZQV
  ObjectSlot Group;    // MimeGroupZQV
};

struct MimeMailboxListClassData {
  StringSlot StringValue;
  ArraySlot mailboxes;  // of MimeMailboxZQV
};

struct MimeAddressListClassData {
  StringSlot StringValue;
  ArraySlot addresses;  // of MimeAddressZQV
};

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

static_assert(sizeof(MimeEntityClassData) == 11 * sizeof(void*));
static_assert(sizeof(MimeBodyClassData) == 4 * sizeof(void*));
static_assert(sizeof(MimeHeaderClassData) == 17 * sizeof(void*));
static_assert(sizeof(MimeFieldClassData) == 2 * sizeof(void*));
static_assert(sizeof(MimeMailboxClassData) == 6 * sizeof(void*));
static_assert(sizeof(MimeGroupClassData) == 4 * sizeof(void*));
static_assert(sizeof(MimeAddressClassData) == 4 * sizeof(void*));
static_assert(sizeof(MimeMailboxListClassData) == 2 * sizeof(void*));
static_assert(sizeof(MimeAddressListClassData) == 2 * sizeof(void*));
static_assert(sizeof(MimeAttachmentClassData) == 11 * sizeof(void*));

}  // namespace zqv::objects
