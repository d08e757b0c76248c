// The classes of the address fields: address, group, the two lists, mailbox.
#include "mime/address.h"
#include "mime/address_list.h"
#include "mime/group.h"
#include "mime/mailbox.h"
#include "mime/mailbox_list.h"
#include "plugin/classes.h"
#include "plugin/table_rows.h"

namespace zqv::plugin {
namespace {

using mime::MimeAddressClassData;
using mime::MimeAddressListClassData;
using mime::MimeGroupClassData;
using mime::MimeMailboxClassData;
using mime::MimeMailboxListClassData;

// clang-format off
abi::REALproperty kAddressProperties[] = {
    STORED_OBJECT (MimeAddressClassData, "Group",   "MimeGroupZQV",   Group),
    STORED_OBJECT (MimeAddressClassData, "Mailbox", "MimeMailboxZQV", Mailbox),
    STORED_STRING (MimeAddressClassData, "StringValue",               StringValue),
    STORED_BOOLEAN(MimeAddressClassData, "isGroup",                   isGroup),
};
abi::REALmethodDefinition kAddressMethods[] = {
    METHOD("Constructor(TextToParse as String)", mime::MimeAddressConstructor),
};

abi::REALproperty kGroupProperties[] = {
    GETTER       ("MailboxesVariant", "Variant",      &mime::GroupMailboxes::Variant),
    STORED_STRING(MimeGroupClassData, "Name",         Name),
    STORED_STRING(MimeGroupClassData, "NameDecoded",  NameDecoded),
    STORED_STRING(MimeGroupClassData, "StringValue",  StringValue),
    GETTER       ("Count",            "Integer",      &mime::GroupMailboxes::Count),
};
abi::REALmethodDefinition kGroupMethods[] = {
    METHOD("Mailboxes(index as Integer) as MimeMailboxZQV", &mime::GroupMailboxes::At),
    METHOD("Mailboxes as MimeMailboxZQV()",                 &mime::GroupMailboxes::Whole),
    METHOD("Constructor(TextToParse as String)",            mime::MimeGroupConstructor),
};

abi::REALproperty kAddressListProperties[] = {
    GETTER       ("AddressesVariant",       "Variant",     &mime::ListedAddresses::Variant),
    STORED_STRING(MimeAddressListClassData, "StringValue", StringValue),
    GETTER       ("Count",                  "Integer",     &mime::ListedAddresses::Count),
};
abi::REALmethodDefinition kAddressListMethods[] = {
    METHOD("Constructor(TextToParse as String)",            mime::MimeAddressListConstructor),
    METHOD("Addresses as MimeAddressZQV()",                 &mime::ListedAddresses::Whole),
    METHOD("Addresses(index as Integer) as MimeAddressZQV", &mime::ListedAddresses::At),
};

abi::REALproperty kMailboxListProperties[] = {
    GETTER       ("MailboxesVariant",       "Variant",     &mime::ListedMailboxes::Variant),
    STORED_STRING(MimeMailboxListClassData, "StringValue", StringValue),
    GETTER       ("Count",                  "Integer",     &mime::ListedMailboxes::Count),
};
abi::REALmethodDefinition kMailboxListMethods[] = {
    METHOD("Mailboxes(index as Integer) as MimeMailboxZQV", &mime::ListedMailboxes::At),
    METHOD("Mailboxes as MimeMailboxZQV()",                 &mime::ListedMailboxes::Whole),
    METHOD("Constructor(TextToParse as String)",            mime::MimeMailboxListConstructor),
};

abi::REALproperty kMailboxProperties[] = {
    STORED_STRING(MimeMailboxClassData, "Mailbox",      Mailbox),
    STORED_STRING(MimeMailboxClassData, "Domain",       Domain),
    STORED_STRING(MimeMailboxClassData, "Label",        Label),
    STORED_STRING(MimeMailboxClassData, "LabelDecoded", LabelDecoded),
    STORED_STRING(MimeMailboxClassData, "Sourceroute",  Sourceroute),
    STORED_STRING(MimeMailboxClassData, "StringValue",  StringValue),
    GETTER       ("Email",              "String",       &mime::getEmail),
};
abi::REALmethodDefinition kMailboxMethods[] = {
    METHOD("Constructor(TextToParse as String)", mime::MimeMailboxConstructor),
};
// clang-format on

}  // namespace

abi::REALclassDefinition kMimeAddressClass =
    CLASS("MimeAddressZQV", MimeAddressClassData, mime::MimeAddressDestructor, kAddressProperties,
          kAddressMethods);
abi::REALclassDefinition kMimeGroupClass = CLASS(
    "MimeGroupZQV", MimeGroupClassData, mime::MimeGroupDestructor, kGroupProperties, kGroupMethods);
abi::REALclassDefinition kMimeAddressListClass =
    CLASS("MimeAddressListZQV", MimeAddressListClassData, mime::MimeAddressListDestructor,
          kAddressListProperties, kAddressListMethods);
abi::REALclassDefinition kMimeMailboxListClass =
    CLASS("MimeMailboxListZQV", MimeMailboxListClassData, mime::MimeMailboxListDestructor,
          kMailboxListProperties, kMailboxListMethods);
abi::REALclassDefinition kMimeMailboxClass =
    CLASS("MimeMailboxZQV", MimeMailboxClassData, mime::MimeMailboxDestructor, kMailboxProperties,
          kMailboxMethods);

}  // namespace zqv::plugin
