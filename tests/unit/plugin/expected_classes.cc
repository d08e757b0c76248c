#include "tests/unit/plugin/expected_classes.h"

#include "objects/address.h"
#include "objects/address_list.h"
#include "objects/attachment.h"
#include "objects/body.h"
#include "objects/email.h"
#include "objects/entity.h"
#include "objects/field.h"
#include "objects/group.h"
#include "objects/header.h"
#include "objects/mailbox.h"
#include "objects/mailbox_list.h"
#include "objects/switches.h"
#include "objects/words.h"
#include "plugin/classes.h"

namespace zqv::test {
namespace {

constexpr std::uint32_t kOrdinary = 0x6;
constexpr std::uint32_t kDate = 0x30a;
constexpr std::uint32_t kHidden = 0x26;
constexpr std::uint32_t kMethod = 0x4;
constexpr std::uint32_t kPrivate = 0x84;

template <class Function>
abi::REALproc Proc(Function function) {
  return reinterpret_cast<abi::REALproc>(function);
}

ExpectedProperty Stored(const char* name, const char* type, std::int32_t offset) {
  return {name, type, kOrdinary, offset, nullptr, nullptr, false};
}

template <class Function>
ExpectedProperty Computed(const char* name, const char* type, Function getter,
                          std::uint32_t flags = kOrdinary) {
  return {name, type, flags, kComputed, Proc(getter), nullptr, false};
}

template <class Function>
ExpectedMethod Method(const char* declaration, Function function, std::uint32_t flags = kMethod) {
  return {declaration, flags, Proc(function)};
}

// clang-format off
ExpectedClass Body() {
  return {&plugin::g_mime_body_class, "MimeBodyZQV", nullptr, 32, Proc(objects::MimeBodyDestructor),
      {Computed("PartsVariant", "Variant", &objects::BodyParts::Variant),
       Stored("StringValue", "String", 16),
       Stored("preamble", "String", 0),
       Stored("epilogue", "String", 8)},
      {Method("Parts(index as Integer) as MimeEntityZQV", &objects::BodyParts::At),
       Method("Parts as MimeEntityZQV()", &objects::BodyParts::Whole),
       Method("Constructor", objects::MimeBodyConstructor, kPrivate)},
      {}, {}};
}

ExpectedClass Header() {
  return {&plugin::g_mime_header_class, "MimeHeaderZQV", nullptr, 144,
          Proc(objects::MimeHeaderDestructor),
      {Stored("MimeVersion", "String", 0),
       Stored("ContentType", "String", 8),
       Stored("ContentTransferEncoding", "String", 16),
       Stored("ContentTransferEncodingMechanism", "String", 24),
       Stored("ContentDisposition", "String", 32),
       Stored("ContentDescription", "String", 40),
       Stored("contentId", "String", 48),
       Stored("subject", "String", 80),
       Stored("subjectDecoded", "String", 88),
       Stored("messageid", "String", 120),
       Stored("sender", "MimeMailboxZQV", 56),
       Stored("from", "MimeMailboxListZQV", 64),
       Stored("too", "MimeAddressListZQV", 72),
       Stored("replyto", "MimeAddressListZQV", 96),
       Stored("cc", "MimeAddressListZQV", 104),
       Stored("bcc", "MimeAddressListZQV", 112)},
      {Method("Fields(index as Integer) as MimeFieldZQV", &objects::HeaderFields::At),
       Method("Fields as MimeFieldZQV()", &objects::HeaderFields::Whole),
       Method("Constructor", objects::MimeHeaderConstructor, kPrivate),
       Method("hasField(name as string) as boolean", &objects::hasField),
       Method("FieldByName(name as string) as MimeFieldZQV", &objects::FieldByName)},
      {}, {}};
}

ExpectedClass Entity() {
  return {&plugin::g_mime_entity_class, "MimeEntityZQV", nullptr, 96,
          Proc(objects::MimeEntityDestructor),
      {Stored("Header", "MimeHeaderZQV", 0),
       Stored("Body", "MimeBodyZQV", 8),
       Stored("BodyDecoded", "String", 16)},
      {Method("Constructor", objects::MimeEntityConstructor, kPrivate)},
      {}, {}};
}

ExpectedClass Address() {
  return {&plugin::g_mime_address_class, "MimeAddressZQV", nullptr, 32,
          Proc(objects::MimeAddressDestructor),
      {Stored("Group", "MimeGroupZQV", 24),
       Stored("Mailbox", "MimeMailboxZQV", 16),
       Stored("StringValue", "String", 0),
       Stored("isGroup", "Boolean", 8)},
      {Method("Constructor(TextToParse as String)", objects::MimeAddressConstructor)},
      {}, {}};
}

ExpectedClass Group() {
  return {&plugin::g_mime_group_class, "MimeGroupZQV", nullptr, 32,
          Proc(objects::MimeGroupDestructor),
      {Computed("MailboxesVariant", "Variant", &objects::GroupMailboxes::Variant),
       Stored("Name", "String", 8),
       Stored("NameDecoded", "String", 16),
       Stored("StringValue", "String", 0),
       Computed("Count", "Integer", &objects::GroupMailboxes::Count)},
      {Method("Mailboxes(index as Integer) as MimeMailboxZQV", &objects::GroupMailboxes::At),
       Method("Mailboxes as MimeMailboxZQV()", &objects::GroupMailboxes::Whole),
       Method("Constructor(TextToParse as String)", objects::MimeGroupConstructor)},
      {}, {}};
}

ExpectedClass AddressList() {
  return {&plugin::g_mime_address_list_class, "MimeAddressListZQV", nullptr, 16,
          Proc(objects::MimeAddressListDestructor),
      {Computed("AddressesVariant", "Variant", &objects::ListedAddresses::Variant),
       Stored("StringValue", "String", 0),
       Computed("Count", "Integer", &objects::ListedAddresses::Count)},
      {Method("Constructor(TextToParse as String)", objects::MimeAddressListConstructor),
       Method("Addresses as MimeAddressZQV()", &objects::ListedAddresses::Whole),
       Method("Addresses(index as Integer) as MimeAddressZQV", &objects::ListedAddresses::At)},
      {}, {}};
}

ExpectedClass MailboxList() {
  return {&plugin::g_mime_mailbox_list_class, "MimeMailboxListZQV", nullptr, 16,
          Proc(objects::MimeMailboxListDestructor),
      {Computed("MailboxesVariant", "Variant", &objects::ListedMailboxes::Variant),
       Stored("StringValue", "String", 0),
       Computed("Count", "Integer", &objects::ListedMailboxes::Count)},
      {Method("Mailboxes(index as Integer) as MimeMailboxZQV", &objects::ListedMailboxes::At),
       Method("Mailboxes as MimeMailboxZQV()", &objects::ListedMailboxes::Whole),
       Method("Constructor(TextToParse as String)", objects::MimeMailboxListConstructor)},
      {}, {}};
}

ExpectedClass Mailbox() {
  return {&plugin::g_mime_mailbox_class, "MimeMailboxZQV", nullptr, 48,
          Proc(objects::MimeMailboxDestructor),
      {Stored("Mailbox", "String", 8),
       Stored("Domain", "String", 16),
       Stored("Label", "String", 24),
       Stored("LabelDecoded", "String", 32),
       Stored("Sourceroute", "String", 40),
       Stored("StringValue", "String", 0),
       Computed("Email", "String", &objects::getEmail)},
      {Method("Constructor(TextToParse as String)", objects::MimeMailboxConstructor)},
      {}, {}};
}

ExpectedClass Field() {
  return {&plugin::g_mime_field_class, "MimeFieldZQV", nullptr, 16,
          Proc(objects::MimeFieldDestructor),
      {Stored("Name", "String", 8),
       Stored("Value", "String", 0)},
      {Method("Constructor(TextToParse as String)", objects::MimeFieldConstructor)},
      {}, {}};
}

ExpectedClass Email() {
  return {&plugin::g_mime_email_class, "MimeEmailZQV", "MimeEntityZQV", 0, nullptr,
      {Computed("InlinesVariant", "Variant", &objects::EmailInlines::Variant),
       Computed("AttachmentsVariant", "Variant", &objects::EmailAttachments::Variant),
       Computed("HTMLText", "String", objects::getHTMLText),
       Computed("PlainText", "String", objects::getPlainText),
       Computed("Subject", "String", objects::getSubject),
       Computed("Source", "String", objects::getSource),
       Computed("Date", "Date", objects::getSentDate, kDate),
       Computed("ReceivedDate", "Date", objects::getReceivedDate, kDate)},
      {Method("Inlines(index as Integer) as MimeAttachmentZQV", &objects::EmailInlines::At),
       Method("Attachments(index as Integer) as MimeAttachmentZQV", &objects::EmailAttachments::At),
       Method("Inlines as MimeAttachmentZQV()", &objects::EmailInlines::Whole),
       Method("Attachments as MimeAttachmentZQV()", &objects::EmailAttachments::Whole),
       Method("Constructor(Content as string)", &objects::MimeEmailConstructor1),
       Method("Constructor(Content as MemoryBlock)", &objects::MimeEmailConstructor2),
       Method("Constructor(File as FolderItem)", &objects::MimeEmailConstructor3),
       Method("SourceWithoutAttachments as String", &objects::SourceWithoutAttachments)},
      {{"RaiseUnknownFormatExceptions", "Boolean", kOrdinary, kComputed,
        Proc(&objects::getRaiseUnknownFormatExceptions), Proc(&objects::setRaiseUnknownFormatExceptions),
        false},
       {"Debugging", "Boolean", kHidden, kComputed, Proc(&objects::getDebugging),
        Proc(&objects::setDebugging), true}},
      {Method("HTMLToPlainText(HTMLText as String) as String", &objects::HTMLToPlainText),
       Method("DecodeInline(Text as String) as String", &objects::DecodeInline)}};
}

ExpectedClass Attachment() {
  return {&plugin::g_mime_attachment_class, "MimeAttachmentZQV", nullptr, 96,
          Proc(objects::Destructor),
      {Stored("Body", "MimeBodyZQV", 0),
       Stored("Header", "MimeHeaderZQV", 8),
       Stored("Data", "String", 16),
       Stored("Filename", "String", 24),
       Stored("MimeVersion", "String", 40),
       Stored("MimeType", "String", 32),
       Stored("ContentType", "String", 48),
       Stored("ContentTransferEncoding", "String", 56),
       Stored("ContentDisposition", "String", 64),
       Stored("ContentDescription", "String", 72),
       Stored("contentId", "String", 80)},
      {Method("Constructor", objects::MimeAttachmentConstructor, kPrivate)},
      {}, {}};
}
// clang-format on

}  // namespace

std::vector<ExpectedClass> ExpectedClasses() {
  return {Body(),        Header(),  Entity(), Address(), Group(),     AddressList(),
          MailboxList(), Mailbox(), Field(),  Email(),   Attachment()};
}

}  // namespace zqv::test
