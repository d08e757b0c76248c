// The message itself and its attachments.
#include "email/attachment.h"
#include "email/email.h"
#include "email/strip.h"
#include "host/log.h"
#include "plugin/classes.h"
#include "plugin/table_rows.h"
#include "text/charset.h"

namespace zqv::plugin {
namespace {

using email::MimeAttachmentClassData;

abi::REALattribute kHiddenAttribute[] = {{"Hidden", ""}};

// clang-format off
abi::REALproperty kEmailProperties[] = {
    GETTER     ("InlinesVariant",     "Variant", &email::EmailInlines::Variant),
    GETTER     ("AttachmentsVariant", "Variant", &email::EmailAttachments::Variant),
    GETTER     ("HTMLText",           "String",  email::getHTMLText),
    GETTER     ("PlainText",          "String",  email::getPlainText),
    GETTER     ("Subject",            "String",  email::getSubject),
    GETTER     ("Source",             "String",  email::getSource),
    DATE_GETTER("Date",                          email::getSentDate),
    DATE_GETTER("ReceivedDate",                  email::getReceivedDate),
};
abi::REALmethodDefinition kEmailMethods[] = {
    METHOD("Inlines(index as Integer) as MimeAttachmentZQV",     &email::EmailInlines::At),
    METHOD("Attachments(index as Integer) as MimeAttachmentZQV", &email::EmailAttachments::At),
    METHOD("Inlines as MimeAttachmentZQV()",                     &email::EmailInlines::Whole),
    METHOD("Attachments as MimeAttachmentZQV()",                 &email::EmailAttachments::Whole),
    METHOD("Constructor(Content as string)",                     &email::MimeEmailConstructor1),
    METHOD("Constructor(Content as MemoryBlock)",                &email::MimeEmailConstructor2),
    METHOD("Constructor(File as FolderItem)",                    &email::MimeEmailConstructor3),
    METHOD("SourceWithoutAttachments as String",                 &email::SourceWithoutAttachments),
};
abi::REALproperty kEmailSharedProperties[] = {
    SHARED       ("RaiseUnknownFormatExceptions", "Boolean", &text::getRaiseUnknownFormatExceptions,
                                                             &text::setRaiseUnknownFormatExceptions),
    HIDDEN_SHARED("Debugging",                    "Boolean", &host::getDebugging, &host::setDebugging),
};
abi::REALmethodDefinition kEmailSharedMethods[] = {
    METHOD("HTMLToPlainText(HTMLText as String) as String", &email::HTMLToPlainText),
    METHOD("DecodeInline(Text as String) as String",        &email::DecodeInline),
};

abi::REALproperty kAttachmentProperties[] = {
    STORED_OBJECT(MimeAttachmentClassData, "Body",   "MimeBodyZQV",   Body),
    STORED_OBJECT(MimeAttachmentClassData, "Header", "MimeHeaderZQV", Header),
    STORED_STRING(MimeAttachmentClassData, "Data",                    Data),
    STORED_STRING(MimeAttachmentClassData, "Filename",                Filename),
    STORED_STRING(MimeAttachmentClassData, "MimeVersion",             MimeVersion),
    STORED_STRING(MimeAttachmentClassData, "MimeType",                MimeType),
    STORED_STRING(MimeAttachmentClassData, "ContentType",             ContentType),
    STORED_STRING(MimeAttachmentClassData, "ContentTransferEncoding", ContentTransferEncoding),
    STORED_STRING(MimeAttachmentClassData, "ContentDisposition",      ContentDisposition),
    STORED_STRING(MimeAttachmentClassData, "ContentDescription",      ContentDescription),
    STORED_STRING(MimeAttachmentClassData, "contentId",               contentId),
};
abi::REALmethodDefinition kAttachmentMethods[] = {
    PRIVATE_CTOR(email::MimeAttachmentConstructor),
};
// clang-format on

}  // namespace

// Uses the record of its super class, whose destructor the host runs; so it has neither.
abi::REALclassDefinition kMimeEmailClass = ZQV_CLASS(
    "MimeEmailZQV", "MimeEntityZQV", 0, nullptr, kEmailProperties, std::size(kEmailProperties),
    kEmailMethods, std::size(kEmailMethods), kEmailSharedProperties,
    std::size(kEmailSharedProperties), kEmailSharedMethods, std::size(kEmailSharedMethods));
abi::REALclassDefinition kMimeAttachmentClass =
    CLASS("MimeAttachmentZQV", MimeAttachmentClassData, email::Destructor, kAttachmentProperties,
          kAttachmentMethods);

}  // namespace zqv::plugin
