// The classes of the address fields: address, group, the two lists, mailbox.
#include "objects/address.h"
#include "objects/address_list.h"
#include "objects/group.h"
#include "objects/mailbox.h"
#include "objects/mailbox_list.h"
#include "plugin/classes.h"
#include "plugin/table_rows.h"

namespace zqv::plugin {
namespace {

using objects::MimeAddressClassData;
using objects::MimeAddressListClassData;
using objects::MimeGroupClassData;
using objects::MimeMailboxClassData;
using objects::MimeMailboxListClassData;

// clang-format off
abi::REALproperty kAddressProperties[] = {
    STORED_OBJECT (MimeAddressClassData, "Group",   "MimeGroupZQV",   Group),
    STORED_OBJECT (MimeAddressClassData, "Mailbox", "MimeMailboxZQV", Mailbox),
    STORED_STRING (MimeAddressClassData, "StringValue",               StringValue),
    STORED_BOOLEAN(MimeAddressClassData, "isGroup",                   isGroup),
};
abi::REALmethodDefinition kAddressMethods[] = {
    METHOD("Constructor(TextToParse as String)", objects::MimeAddressConstructor),
};

abi::REALproperty kGroupProperties[] = {
    GETTER       ("MailboxesVariant", "Variant",      &objects::GroupMailboxes::Variant),
    STORED_STRING(MimeGroupClassData, "Name",         Name),
    STORED_STRING(MimeGroupClassData, "NameDecoded",  NameDecoded),
    STORED_STRING(MimeGroupClassData, "StringValue",  StringValue),
    GETTER       ("Count",            "Integer",      &objects::GroupMailboxes::Count),
};
abi::REALmethodDefinition kGroupMethods[] = {
    METHOD("Mailboxes(index as Integer) as MimeMailboxZQV", &objects::GroupMailboxes::At),
    METHOD("Mailboxes as MimeMailboxZQV()",                 &objects::GroupMailboxes::Whole),
    METHOD("Constructor(TextToParse as String)",            objects::MimeGroupConstructor),
};

abi::REALproperty kAddressListProperties[] = {
    GETTER       ("AddressesVariant",       "Variant",     &objects::ListedAddresses::Variant),
    STORED_STRING(MimeAddressListClassData, "StringValue", StringValue),
    GETTER       ("Count",                  "Integer",     &objects::ListedAddresses::Count),
};
abi::REALmethodDefinition kAddressListMethods[] = {
    METHOD("Constructor(TextToParse as String)",            objects::MimeAddressListConstructor),
    METHOD("Addresses as MimeAddressZQV()",                 &objects::ListedAddresses::Whole),
    METHOD("Addresses(index as Integer) as MimeAddressZQV", &objects::ListedAddresses::At),
};

abi::REALproperty kMailboxListProperties[] = {
    GETTER       ("MailboxesVariant",       "Variant",     &objects::ListedMailboxes::Variant),
    STORED_STRING(MimeMailboxListClassData, "StringValue", StringValue),
    GETTER       ("Count",                  "Integer",     &objects::ListedMailboxes::Count),
};
abi::REALmethodDefinition kMailboxListMethods[] = {
    METHOD("Mailboxes(index as Integer) as MimeMailboxZQV", &objects::ListedMailboxes::At),
    METHOD("Mailboxes as MimeMailboxZQV()",                 &objects::ListedMailboxes::Whole),
    METHOD("Constructor(TextToParse as String)",            objects::MimeMailboxListConstructor),
};

abi::REALproperty kMailboxProperties[] = {
    STORED_STRING(MimeMailboxClassData, "Mailbox",      Mailbox),
    STORED_STRING(MimeMailboxClassData, "Domain",       Domain),
    STORED_STRING(MimeMailboxClassData, "Label",        Label),
    STORED_STRING(MimeMailboxClassData, "LabelDecoded", LabelDecoded),
    STORED_STRING(MimeMailboxClassData, "Sourceroute",  Sourceroute),
    STORED_STRING(MimeMailboxClassData, "StringValue",  StringValue),
    GETTER       ("Email",              "String",       &objects::getEmail),
};
abi::REALmethodDefinition kMailboxMethods[] = {
    METHOD("Constructor(TextToParse as String)", objects::MimeMailboxConstructor),
};
// clang-format on

}  // namespace

abi::REALclassDefinition kMimeAddressClass =
    CLASS("MimeAddressZQV", MimeAddressClassData, objects::MimeAddressDestructor, kAddressProperties,
          kAddressMethods);
abi::REALclassDefinition kMimeGroupClass = CLASS(
    "MimeGroupZQV", MimeGroupClassData, objects::MimeGroupDestructor, kGroupProperties, kGroupMethods);
abi::REALclassDefinition kMimeAddressListClass =
    CLASS("MimeAddressListZQV", MimeAddressListClassData, objects::MimeAddressListDestructor,
          kAddressListProperties, kAddressListMethods);
abi::REALclassDefinition kMimeMailboxListClass =
    CLASS("MimeMailboxListZQV", MimeMailboxListClassData, objects::MimeMailboxListDestructor,
          kMailboxListProperties, kMailboxListMethods);
abi::REALclassDefinition kMimeMailboxClass =
    CLASS("MimeMailboxZQV", MimeMailboxClassData, objects::MimeMailboxDestructor, kMailboxProperties,
          kMailboxMethods);

}  // namespace zqv::plugin
