#include "tests/unit/plugin/expected_classes.h"

#include "email/attachment.h"
#include "email/email.h"
#include "email/strip.h"
#include "base/log.h"
#include "mime/address.h"
#include "mime/address_list.h"
#include "mime/body.h"
#include "mime/entity.h"
#include "mime/field.h"
#include "mime/group.h"
#include "mime/header.h"
#include "mime/mailbox.h"
#include "mime/mailbox_list.h"
#include "plugin/classes.h"
#include "text/charset.h"

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
  return {&plugin::kMimeBodyClass, "MimeBodyZQV", nullptr, 32, Proc(mime::MimeBodyDestructor),
      {Computed("PartsVariant", "Variant", &mime::BodyParts::Variant),
       Stored("StringValue", "String", 16),
       Stored("preamble", "String", 0),
       Stored("epilogue", "String", 8)},
      {Method("Parts(index as Integer) as MimeEntityZQV", &mime::BodyParts::At),
       Method("Parts as MimeEntityZQV()", &mime::BodyParts::Whole),
       Method("Constructor", mime::MimeBodyConstructor, kPrivate)},
      {}, {}};
}

ExpectedClass Header() {
  return {&plugin::kMimeHeaderClass, "MimeHeaderZQV", nullptr, 144,
          Proc(mime::MimeHeaderDestructor),
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
      {Method("Fields(index as Integer) as MimeFieldZQV", &mime::HeaderFields::At),
       Method("Fields as MimeFieldZQV()", &mime::HeaderFields::Whole),
       Method("Constructor", mime::MimeHeaderConstructor, kPrivate),
       Method("hasField(name as string) as boolean", &mime::hasField),
       Method("FieldByName(name as string) as MimeFieldZQV", &mime::FieldByName)},
      {}, {}};
}

ExpectedClass Entity() {
  return {&plugin::kMimeEntityClass, "MimeEntityZQV", nullptr, 96,
          Proc(mime::MimeEntityDestructor),
      {Stored("Header", "MimeHeaderZQV", 0),
       Stored("Body", "MimeBodyZQV", 8),
       Stored("BodyDecoded", "String", 16)},
      {Method("Constructor", mime::MimeEntityConstructor, kPrivate)},
      {}, {}};
}

ExpectedClass Address() {
  return {&plugin::kMimeAddressClass, "MimeAddressZQV", nullptr, 32,
          Proc(mime::MimeAddressDestructor),
      {Stored("Group", "MimeGroupZQV", 24),
       Stored("Mailbox", "MimeMailboxZQV", 16),
       Stored("StringValue", "String", 0),
       Stored("isGroup", "Boolean", 8)},
      {Method("Constructor(TextToParse as String)", mime::MimeAddressConstructor)},
      {}, {}};
}

ExpectedClass Group() {
  return {&plugin::kMimeGroupClass, "MimeGroupZQV", nullptr, 32, Proc(mime::MimeGroupDestructor),
      {Computed("MailboxesVariant", "Variant", &mime::GroupMailboxes::Variant),
       Stored("Name", "String", 8),
       Stored("NameDecoded", "String", 16),
       Stored("StringValue", "String", 0),
       Computed("Count", "Integer", &mime::GroupMailboxes::Count)},
      {Method("Mailboxes(index as Integer) as MimeMailboxZQV", &mime::GroupMailboxes::At),
       Method("Mailboxes as MimeMailboxZQV()", &mime::GroupMailboxes::Whole),
       Method("Constructor(TextToParse as String)", mime::MimeGroupConstructor)},
      {}, {}};
}

ExpectedClass AddressList() {
  return {&plugin::kMimeAddressListClass, "MimeAddressListZQV", nullptr, 16,
          Proc(mime::MimeAddressListDestructor),
      {Computed("AddressesVariant", "Variant", &mime::ListedAddresses::Variant),
       Stored("StringValue", "String", 0),
       Computed("Count", "Integer", &mime::ListedAddresses::Count)},
      {Method("Constructor(TextToParse as String)", mime::MimeAddressListConstructor),
       Method("Addresses as MimeAddressZQV()", &mime::ListedAddresses::Whole),
       Method("Addresses(index as Integer) as MimeAddressZQV", &mime::ListedAddresses::At)},
      {}, {}};
}

ExpectedClass MailboxList() {
  return {&plugin::kMimeMailboxListClass, "MimeMailboxListZQV", nullptr, 16,
          Proc(mime::MimeMailboxListDestructor),
      {Computed("MailboxesVariant", "Variant", &mime::ListedMailboxes::Variant),
       Stored("StringValue", "String", 0),
       Computed("Count", "Integer", &mime::ListedMailboxes::Count)},
      {Method("Mailboxes(index as Integer) as MimeMailboxZQV", &mime::ListedMailboxes::At),
       Method("Mailboxes as MimeMailboxZQV()", &mime::ListedMailboxes::Whole),
       Method("Constructor(TextToParse as String)", mime::MimeMailboxListConstructor)},
      {}, {}};
}

ExpectedClass Mailbox() {
  return {&plugin::kMimeMailboxClass, "MimeMailboxZQV", nullptr, 48,
          Proc(mime::MimeMailboxDestructor),
      {Stored("Mailbox", "String", 8),
       Stored("Domain", "String", 16),
       Stored("Label", "String", 24),
       Stored("LabelDecoded", "String", 32),
       Stored("Sourceroute", "String", 40),
       Stored("StringValue", "String", 0),
       Computed("Email", "String", &mime::getEmail)},
      {Method("Constructor(TextToParse as String)", mime::MimeMailboxConstructor)},
      {}, {}};
}

ExpectedClass Field() {
  return {&plugin::kMimeFieldClass, "MimeFieldZQV", nullptr, 16, Proc(mime::MimeFieldDestructor),
      {Stored("Name", "String", 8),
       Stored("Value", "String", 0)},
      {Method("Constructor(TextToParse as String)", mime::MimeFieldConstructor)},
      {}, {}};
}

ExpectedClass Email() {
  return {&plugin::kMimeEmailClass, "MimeEmailZQV", "MimeEntityZQV", 0, nullptr,
      {Computed("InlinesVariant", "Variant", &email::EmailInlines::Variant),
       Computed("AttachmentsVariant", "Variant", &email::EmailAttachments::Variant),
       Computed("HTMLText", "String", email::getHTMLText),
       Computed("PlainText", "String", email::getPlainText),
       Computed("Subject", "String", email::getSubject),
       Computed("Source", "String", email::getSource),
       Computed("Date", "Date", email::getSentDate, kDate),
       Computed("ReceivedDate", "Date", email::getReceivedDate, kDate)},
      {Method("Inlines(index as Integer) as MimeAttachmentZQV", &email::EmailInlines::At),
       Method("Attachments(index as Integer) as MimeAttachmentZQV", &email::EmailAttachments::At),
       Method("Inlines as MimeAttachmentZQV()", &email::EmailInlines::Whole),
       Method("Attachments as MimeAttachmentZQV()", &email::EmailAttachments::Whole),
       Method("Constructor(Content as string)", &email::MimeEmailConstructor1),
       Method("Constructor(Content as MemoryBlock)", &email::MimeEmailConstructor2),
       Method("Constructor(File as FolderItem)", &email::MimeEmailConstructor3),
       Method("SourceWithoutAttachments as String", &email::SourceWithoutAttachments)},
      {{"RaiseUnknownFormatExceptions", "Boolean", kOrdinary, kComputed,
        Proc(&text::getRaiseUnknownFormatExceptions), Proc(&text::setRaiseUnknownFormatExceptions),
        false},
       {"Debugging", "Boolean", kHidden, kComputed, Proc(&host::getDebugging),
        Proc(&host::setDebugging), true}},
      {Method("HTMLToPlainText(HTMLText as String) as String", &email::HTMLToPlainText),
       Method("DecodeInline(Text as String) as String", &email::DecodeInline)}};
}

ExpectedClass Attachment() {
  return {&plugin::kMimeAttachmentClass, "MimeAttachmentZQV", nullptr, 96,
          Proc(email::Destructor),
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
      {Method("Constructor", email::MimeAttachmentConstructor, kPrivate)},
      {}, {}};
}
// clang-format on

}  // namespace

std::vector<ExpectedClass> ExpectedClasses() {
  return {Body(),        Header(),  Entity(), Address(), Group(),     AddressList(),
          MailboxList(), Mailbox(), Field(),  Email(),   Attachment()};
}

}  // namespace zqv::test
