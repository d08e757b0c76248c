// The classes that mirror the parsed tree: body, header, entity, field.
#include "mime/body.h"
#include "mime/entity.h"
#include "mime/field.h"
#include "mime/header.h"
#include "plugin/classes.h"
#include "plugin/table_rows.h"

namespace zqv::plugin {
namespace {

using mime::MimeBodyClassData;
using mime::MimeEntityClassData;
using mime::MimeFieldClassData;
using mime::MimeHeaderClassData;

// clang-format off
abi::REALproperty kBodyProperties[] = {
    GETTER       ("PartsVariant", "Variant", &mime::BodyParts::Variant),
    STORED_STRING(MimeBodyClassData, "StringValue", StringValue),
    STORED_STRING(MimeBodyClassData, "preamble",    preamble),
    STORED_STRING(MimeBodyClassData, "epilogue",    epilogue),
};
abi::REALmethodDefinition kBodyMethods[] = {
    METHOD("Parts(index as Integer) as MimeEntityZQV", &mime::BodyParts::At),
    METHOD("Parts as MimeEntityZQV()",                 &mime::BodyParts::Whole),
    PRIVATE_CTOR(mime::MimeBodyConstructor),
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
    METHOD("Fields(index as Integer) as MimeFieldZQV",   &mime::HeaderFields::At),
    METHOD("Fields as MimeFieldZQV()",                   &mime::HeaderFields::Whole),
    PRIVATE_CTOR(mime::MimeHeaderConstructor),
    METHOD("hasField(name as string) as boolean",        &mime::hasField),
    METHOD("FieldByName(name as string) as MimeFieldZQV", &mime::FieldByName),
};

abi::REALproperty kEntityProperties[] = {
    STORED_OBJECT(MimeEntityClassData, "Header", "MimeHeaderZQV", Header),
    STORED_OBJECT(MimeEntityClassData, "Body",   "MimeBodyZQV",   Body),
    STORED_STRING(MimeEntityClassData, "BodyDecoded",             BodyDecoded),
};
abi::REALmethodDefinition kEntityMethods[] = {
    PRIVATE_CTOR(mime::MimeEntityConstructor),
};

abi::REALproperty kFieldProperties[] = {
    STORED_STRING(MimeFieldClassData, "Name",  Name),
    STORED_STRING(MimeFieldClassData, "Value", Value),
};
abi::REALmethodDefinition kFieldMethods[] = {
    METHOD("Constructor(TextToParse as String)", mime::MimeFieldConstructor),
};
// clang-format on

}  // namespace

abi::REALclassDefinition kMimeBodyClass = CLASS(
    "MimeBodyZQV", MimeBodyClassData, mime::MimeBodyDestructor, kBodyProperties, kBodyMethods);
abi::REALclassDefinition kMimeHeaderClass =
    CLASS("MimeHeaderZQV", MimeHeaderClassData, mime::MimeHeaderDestructor, kHeaderProperties,
          kHeaderMethods);
abi::REALclassDefinition kMimeEntityClass =
    CLASS("MimeEntityZQV", MimeEntityClassData, mime::MimeEntityDestructor, kEntityProperties,
          kEntityMethods);
abi::REALclassDefinition kMimeFieldClass = CLASS(
    "MimeFieldZQV", MimeFieldClassData, mime::MimeFieldDestructor, kFieldProperties, kFieldMethods);

}  // namespace zqv::plugin
