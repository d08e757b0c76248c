// The tables of the classes for address fields: MimeAddressZQV, MimeGroupZQV, MimeAddressListZQV,
// MimeMailboxListZQV and MimeMailboxZQV.
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
abi::REALproperty g_address_properties[] = {
    STORED_OBJECT (MimeAddressClassData, "Group",   "MimeGroupZQV",   Group),
    STORED_OBJECT (MimeAddressClassData, "Mailbox", "MimeMailboxZQV", Mailbox),
    STORED_STRING (MimeAddressClassData, "StringValue",               StringValue),
    STORED_BOOLEAN(MimeAddressClassData, "isGroup",                   isGroup),
};
abi::REALmethodDefinition g_address_methods[] = {
    METHOD("Constructor(TextToParse as String)", objects::MimeAddressConstructor),
};

abi::REALproperty g_group_properties[] = {
    GETTER       ("MailboxesVariant", "Variant",      &objects::GroupMailboxes::Variant),
    STORED_STRING(MimeGroupClassData, "Name",         Name),
    STORED_STRING(MimeGroupClassData, "NameDecoded",  NameDecoded),
    STORED_STRING(MimeGroupClassData, "StringValue",  StringValue),
    GETTER       ("Count",            "Integer",      &objects::GroupMailboxes::Count),
};
abi::REALmethodDefinition g_group_methods[] = {
    METHOD("Mailboxes(index as Integer) as MimeMailboxZQV", &objects::GroupMailboxes::At),
    METHOD("Mailboxes as MimeMailboxZQV()",                 &objects::GroupMailboxes::Whole),
    METHOD("Constructor(TextToParse as String)",            objects::MimeGroupConstructor),
};

abi::REALproperty g_address_list_properties[] = {
    GETTER       ("AddressesVariant",       "Variant",     &objects::ListedAddresses::Variant),
    STORED_STRING(MimeAddressListClassData, "StringValue", StringValue),
    GETTER       ("Count",                  "Integer",     &objects::ListedAddresses::Count),
};
abi::REALmethodDefinition g_address_list_methods[] = {
    METHOD("Constructor(TextToParse as String)",            objects::MimeAddressListConstructor),
    METHOD("Addresses as MimeAddressZQV()",                 &objects::ListedAddresses::Whole),
    METHOD("Addresses(index as Integer) as MimeAddressZQV", &objects::ListedAddresses::At),
};

abi::REALproperty g_mailbox_list_properties[] = {
    GETTER       ("MailboxesVariant",       "Variant",     &objects::ListedMailboxes::Variant),
    STORED_STRING(MimeMailboxListClassData, "StringValue", StringValue),
    GETTER       ("Count",                  "Integer",     &objects::ListedMailboxes::Count),
};
abi::REALmethodDefinition g_mailbox_list_methods[] = {
    METHOD("Mailboxes(index as Integer) as MimeMailboxZQV", &objects::ListedMailboxes::At),
    METHOD("Mailboxes as MimeMailboxZQV()",                 &objects::ListedMailboxes::Whole),
    METHOD("Constructor(TextToParse as String)",            objects::MimeMailboxListConstructor),
};

abi::REALproperty g_mailbox_properties[] = {
    STORED_STRING(MimeMailboxClassData, "Mailbox",      Mailbox),
    STORED_STRING(MimeMailboxClassData, "Domain",       Domain),
    STORED_STRING(MimeMailboxClassData, "Label",        Label),
    STORED_STRING(MimeMailboxClassData, "LabelDecoded", LabelDecoded),
    STORED_STRING(MimeMailboxClassData, "Sourceroute",  Sourceroute),
    STORED_STRING(MimeMailboxClassData, "StringValue",  StringValue),
    GETTER       ("Email",              "String",       &objects::getEmail),
};
abi::REALmethodDefinition g_mailbox_methods[] = {
    METHOD("Constructor(TextToParse as String)", objects::MimeMailboxConstructor),
};
// clang-format on

}  // namespace

abi::REALclassDefinition g_mime_address_class =
    CLASS("MimeAddressZQV", MimeAddressClassData, objects::MimeAddressDestructor,
          g_address_properties, g_address_methods);
abi::REALclassDefinition g_mime_group_class =
    CLASS("MimeGroupZQV", MimeGroupClassData, objects::MimeGroupDestructor, g_group_properties,
          g_group_methods);
abi::REALclassDefinition g_mime_address_list_class =
    CLASS("MimeAddressListZQV", MimeAddressListClassData, objects::MimeAddressListDestructor,
          g_address_list_properties, g_address_list_methods);
abi::REALclassDefinition g_mime_mailbox_list_class =
    CLASS("MimeMailboxListZQV", MimeMailboxListClassData, objects::MimeMailboxListDestructor,
          g_mailbox_list_properties, g_mailbox_list_methods);
abi::REALclassDefinition g_mime_mailbox_class =
    CLASS("MimeMailboxZQV", MimeMailboxClassData, objects::MimeMailboxDestructor,
          g_mailbox_properties, g_mailbox_methods);

}  // namespace zqv::plugin
