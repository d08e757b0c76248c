// The classes that mirror the parsed tree: body, header, entity, field.
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
abi::REALproperty kBodyProperties[] = {
    GETTER       ("PartsVariant", "Variant", &objects::BodyParts::Variant),
    STORED_STRING(MimeBodyClassData, "StringValue", StringValue),
    STORED_STRING(MimeBodyClassData, "preamble",    preamble),
    STORED_STRING(MimeBodyClassData, "epilogue",    epilogue),
};
abi::REALmethodDefinition kBodyMethods[] = {
    METHOD("Parts(index as Integer) as MimeEntityZQV", &objects::BodyParts::At),
    METHOD("Parts as MimeEntityZQV()",                 &objects::BodyParts::Whole),
    PRIVATE_CTOR(objects::MimeBodyConstructor),
};

abi::REALproperty kHeaderProperties[] = {
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
abi::REALmethodDefinition kHeaderMethods[] = {
    METHOD("Fields(index as Integer) as MimeFieldZQV",   &objects::HeaderFields::At),
    METHOD("Fields as MimeFieldZQV()",                   &objects::HeaderFields::Whole),
    PRIVATE_CTOR(objects::MimeHeaderConstructor),
    METHOD("hasField(name as string) as boolean",        &objects::hasField),
    METHOD("FieldByName(name as string) as MimeFieldZQV", &objects::FieldByName),
};

abi::REALproperty kEntityProperties[] = {
    STORED_OBJECT(MimeEntityClassData, "Header", "MimeHeaderZQV", Header),
    STORED_OBJECT(MimeEntityClassData, "Body",   "MimeBodyZQV",   Body),
    STORED_STRING(MimeEntityClassData, "BodyDecoded",             BodyDecoded),
};
abi::REALmethodDefinition kEntityMethods[] = {
    PRIVATE_CTOR(objects::MimeEntityConstructor),
};

abi::REALproperty kFieldProperties[] = {
    STORED_STRING(MimeFieldClassData, "Name",  Name),
    STORED_STRING(MimeFieldClassData, "Value", Value),
};
abi::REALmethodDefinition kFieldMethods[] = {
    METHOD("Constructor(TextToParse as String)", objects::MimeFieldConstructor),
};
// clang-format on

}  // namespace

abi::REALclassDefinition kMimeBodyClass = CLASS(
    "MimeBodyZQV", MimeBodyClassData, objects::MimeBodyDestructor, kBodyProperties, kBodyMethods);
abi::REALclassDefinition kMimeHeaderClass =
    CLASS("MimeHeaderZQV", MimeHeaderClassData, objects::MimeHeaderDestructor, kHeaderProperties,
          kHeaderMethods);
abi::REALclassDefinition kMimeEntityClass =
    CLASS("MimeEntityZQV", MimeEntityClassData, objects::MimeEntityDestructor, kEntityProperties,
          kEntityMethods);
abi::REALclassDefinition kMimeFieldClass = CLASS(
    "MimeFieldZQV", MimeFieldClassData, objects::MimeFieldDestructor, kFieldProperties, kFieldMethods);

}  // namespace zqv::plugin
