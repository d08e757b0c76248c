// The definitions of the eleven classes, in the order in which they are registered.
#pragma once

#include "abi/records.h"

namespace zqv::plugin {

// Mutable: registration adjusts flags, sizes and versions for the running host, which then writes
// the offset of the class's record into each definition. Not changed after REALPluginMain.
extern abi::REALclassDefinition g_mime_body_class;
extern abi::REALclassDefinition g_mime_header_class;
extern abi::REALclassDefinition g_mime_entity_class;
extern abi::REALclassDefinition g_mime_address_class;
extern abi::REALclassDefinition g_mime_group_class;
extern abi::REALclassDefinition g_mime_address_list_class;
extern abi::REALclassDefinition g_mime_mailbox_list_class;
extern abi::REALclassDefinition g_mime_mailbox_class;
extern abi::REALclassDefinition g_mime_field_class;
extern abi::REALclassDefinition g_mime_email_class;
extern abi::REALclassDefinition g_mime_attachment_class;

}  // namespace zqv::plugin
