// The instance records of the classes that mirror a parsed message: what the host's standard getter
// reads. One struct of slots a class, its fields in the order in which they are stored.
//
// Each non-nil slot holds one of the host's counts, which the class's destructor gives back.
// Records are zero-filled by the host and never constructed.
#pragma once

#include <type_traits>

#include "host/ref.h"

namespace zqv::objects {

using host::ArraySlot;
using host::ObjectSlot;
using host::StringSlot;

// MimeEntityZQV, and MimeEmailZQV, which adds nothing. A child entity uses Header, Body,
// BodyDecoded and the dates; the rest are the message's own.
struct MimeEntityClassData {
  ObjectSlot Header;       // MimeHeaderZQV
  ObjectSlot Body;         // MimeBodyZQV
  StringSlot BodyDecoded;  // without transfer encoding, in its charset
  StringSlot Source;       // the whole message as given
  StringSlot Subject;      // encoded words decoded
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
  ObjectSlot too;     // MimeAddressListZQV, as are the three below
  StringSlot subject;
  StringSlot subjectDecoded;
  ObjectSlot replyto;
  ObjectSlot cc;
  ObjectSlot bcc;
  StringSlot messageid;
  ArraySlot fields;  // of MimeFieldZQV; reached through methods only
};

struct MimeFieldClassData {
  StringSlot Value;
  StringSlot Name;
};

struct MimeMailboxClassData {
  StringSlot StringValue;
  StringSlot Mailbox;  // the local part
  StringSlot Domain;
  StringSlot Label;  // the display name, encoded words left as they are
  StringSlot LabelDecoded;
  StringSlot Sourceroute;
};

struct MimeGroupClassData {
  StringSlot StringValue;
  StringSlot Name;
  StringSlot NameDecoded;
  ArraySlot mailboxes;  // of MimeMailboxZQV
};

// Exactly one of Mailbox and Group can be non-nil, as isGroup says.
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

// QUIRK: the record stores MimeType before MimeVersion, the class lists them the other way round.
// Test: Registration.AttachmentKeepsBothOrders.
struct MimeAttachmentClassData {
  ObjectSlot Body;    // MimeBodyZQV, shared with the part's entity
  ObjectSlot Header;  // MimeHeaderZQV, shared likewise
  StringSlot Data;    // the part's decoded body, shared likewise
  StringSlot Filename;
  StringSlot MimeType;  // type/subtype
  StringSlot MimeVersion;
  StringSlot ContentType;  // this and the rest: the field's whole text
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
