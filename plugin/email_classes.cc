// The tables of MimeEmailZQV and MimeAttachmentZQV.
#include "objects/attachment.h"
#include "objects/email.h"
#include "objects/switches.h"
#include "objects/words.h"
#include "plugin/classes.h"
#include "plugin/table_rows.h"

namespace zqv::plugin {
namespace {

using objects::MimeAttachmentClassData;

abi::REALattribute g_hidden_attribute[] = {{"Hidden", ""}};

// clang-format off
abi::REALproperty g_email_properties[] = {
    GETTER     ("InlinesVariant",     "Variant", &objects::EmailInlines::Variant),
    GETTER     ("AttachmentsVariant", "Variant", &objects::EmailAttachments::Variant),
    GETTER     ("HTMLText",           "String",  objects::getHTMLText),
    GETTER     ("PlainText",          "String",  objects::getPlainText),
    GETTER     ("Subject",            "String",  objects::getSubject),
    GETTER     ("Source",             "String",  objects::getSource),
    DATE_GETTER("Date",                          objects::getSentDate),
    DATE_GETTER("ReceivedDate",                  objects::getReceivedDate),
};
abi::REALmethodDefinition g_email_methods[] = {
    METHOD("Inlines(index as Integer) as MimeAttachmentZQV",     &objects::EmailInlines::At),
    METHOD("Attachments(index as Integer) as MimeAttachmentZQV", &objects::EmailAttachments::At),
    METHOD("Inlines as MimeAttachmentZQV()",                     &objects::EmailInlines::Whole),
    METHOD("Attachments as MimeAttachmentZQV()",                 &objects::EmailAttachments::Whole),
    METHOD("Constructor(Content as string)",                     &objects::MimeEmailConstructor1),
    METHOD("Constructor(Content as MemoryBlock)",                &objects::MimeEmailConstructor2),
    METHOD("Constructor(File as FolderItem)",                    &objects::MimeEmailConstructor3),
    METHOD("SourceWithoutAttachments as String",                 &objects::SourceWithoutAttachments),
};
abi::REALproperty g_email_shared_properties[] = {
    SHARED       ("RaiseUnknownFormatExceptions", "Boolean", &objects::getRaiseUnknownFormatExceptions,
                                                             &objects::setRaiseUnknownFormatExceptions),
    HIDDEN_SHARED("Debugging",                    "Boolean", &objects::getDebugging,
                                                             &objects::setDebugging),
};
abi::REALmethodDefinition g_email_shared_methods[] = {
    METHOD("HTMLToPlainText(HTMLText as String) as String", &objects::HTMLToPlainText),
    METHOD("DecodeInline(Text as String) as String",        &objects::DecodeInline),
};

abi::REALproperty g_attachment_properties[] = {
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
abi::REALmethodDefinition g_attachment_methods[] = {
    PRIVATE_CTOR(objects::MimeAttachmentConstructor),
};
// clang-format on

}  // namespace

// MimeEmailZQV has neither a record nor a destructor: it uses the record of its super class, whose
// destructor the host calls.
abi::REALclassDefinition g_mime_email_class =
    ZQV_CLASS("MimeEmailZQV", "MimeEntityZQV", 0, nullptr, g_email_properties,
              std::size(g_email_properties), g_email_methods, std::size(g_email_methods),
              g_email_shared_properties, std::size(g_email_shared_properties),
              g_email_shared_methods, std::size(g_email_shared_methods));
abi::REALclassDefinition g_mime_attachment_class =
    CLASS("MimeAttachmentZQV", MimeAttachmentClassData, objects::Destructor,
          g_attachment_properties, g_attachment_methods);

}  // namespace zqv::plugin
