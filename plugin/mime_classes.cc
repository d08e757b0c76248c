// The tables of the classes for the parts of a message: MimeBodyZQV, MimeHeaderZQV, MimeEntityZQV
// and MimeFieldZQV.
#include "objects/body.h"
#include "objects/entity.h"
#include "objects/field.h"
#include "objects/header.h"
#include "plugin/classes.h"
#include "plugin/table_rows.h"

namespace zqv::plugin {
namespace {

using objects::MimeBodyClassData;
using objects::MimeEntityClassData;
using objects::MimeFieldClassData;
using objects::MimeHeaderClassData;

// clang-format off
abi::REALproperty g_body_properties[] = {
    GETTER       ("PartsVariant", "Variant", &objects::BodyParts::Variant),
    STORED_STRING(MimeBodyClassData, "StringValue", StringValue),
    STORED_STRING(MimeBodyClassData, "preamble",    preamble),
    STORED_STRING(MimeBodyClassData, "epilogue",    epilogue),
};
abi::REALmethodDefinition g_body_methods[] = {
    METHOD("Parts(index as Integer) as MimeEntityZQV", &objects::BodyParts::At),
    METHOD("Parts as MimeEntityZQV()",                 &objects::BodyParts::Whole),
    PRIVATE_CTOR(objects::MimeBodyConstructor),
};

abi::REALproperty g_header_properties[] = {
    STORED_STRING(MimeHeaderClassData, "MimeVersion",                      MimeVersion),
    STORED_STRING(MimeHeaderClassData, "ContentType",                      ContentType),
    STORED_STRING(MimeHeaderClassData, "ContentTransferEncoding",          ContentTransferEncoding),
    STORED_STRING(MimeHeaderClassData, "ContentTransferEncodingMechanism", ContentTransferEncodingMechanism),
    STORED_STRING(MimeHeaderClassData, "ContentDisposition",               ContentDisposition),
    STORED_STRING(MimeHeaderClassData, "ContentDescription",               ContentDescription),
    STORED_STRING(MimeHeaderClassData, "contentId",                        contentId),
    STORED_STRING(MimeHeaderClassData, "subject",                          subject),
    STORED_STRING(MimeHeaderClassData, "subjectDecoded",                   subjectDecoded),
    STORED_STRING(MimeHeaderClassData, "messageid",                        messageid),
    STORED_OBJECT(MimeHeaderClassData, "sender",  "MimeMailboxZQV",        sender),
    STORED_OBJECT(MimeHeaderClassData, "from",    "MimeMailboxListZQV",    from),
    STORED_OBJECT(MimeHeaderClassData, "too",     "MimeAddressListZQV",    too),
    STORED_OBJECT(MimeHeaderClassData, "replyto", "MimeAddressListZQV",    replyto),
    STORED_OBJECT(MimeHeaderClassData, "cc",      "MimeAddressListZQV",    cc),
    STORED_OBJECT(MimeHeaderClassData, "bcc",     "MimeAddressListZQV",    bcc),
};
abi::REALmethodDefinition g_header_methods[] = {
    METHOD("Fields(index as Integer) as MimeFieldZQV",   &objects::HeaderFields::At),
    METHOD("Fields as MimeFieldZQV()",                   &objects::HeaderFields::Whole),
    PRIVATE_CTOR(objects::MimeHeaderConstructor),
    METHOD("hasField(name as string) as boolean",        &objects::hasField),
    METHOD("FieldByName(name as string) as MimeFieldZQV", &objects::FieldByName),
};

abi::REALproperty g_entity_properties[] = {
    STORED_OBJECT(MimeEntityClassData, "Header", "MimeHeaderZQV", Header),
    STORED_OBJECT(MimeEntityClassData, "Body",   "MimeBodyZQV",   Body),
    STORED_STRING(MimeEntityClassData, "BodyDecoded",             BodyDecoded),
};
abi::REALmethodDefinition g_entity_methods[] = {
    PRIVATE_CTOR(objects::MimeEntityConstructor),
};

abi::REALproperty g_field_properties[] = {
    STORED_STRING(MimeFieldClassData, "Name",  Name),
    STORED_STRING(MimeFieldClassData, "Value", Value),
};
abi::REALmethodDefinition g_field_methods[] = {
    METHOD("Constructor(TextToParse as String)", objects::MimeFieldConstructor),
};
// clang-format on

}  // namespace

abi::REALclassDefinition g_mime_body_class =
    CLASS("MimeBodyZQV", MimeBodyClassData, objects::MimeBodyDestructor, g_body_properties,
          g_body_methods);
abi::REALclassDefinition g_mime_header_class =
    CLASS("MimeHeaderZQV", MimeHeaderClassData, objects::MimeHeaderDestructor, g_header_properties,
          g_header_methods);
abi::REALclassDefinition g_mime_entity_class =
    CLASS("MimeEntityZQV", MimeEntityClassData, objects::MimeEntityDestructor, g_entity_properties,
          g_entity_methods);
abi::REALclassDefinition g_mime_field_class =
    CLASS("MimeFieldZQV", MimeFieldClassData, objects::MimeFieldDestructor, g_field_properties,
          g_field_methods);

}  // namespace zqv::plugin
