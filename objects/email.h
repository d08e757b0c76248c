// MimeEmailZQV: the class through which an application parses one message.
//
// Everything is computed by the constructor and handed out as it was stored. The class shares the
// record of MimeEntityZQV, its super class, whose destructor is the only one that runs.
#pragma once

#include "objects/list_access.h"

namespace zqv::objects {

// Registered with the host. The constructors raise what objects/build.h and objects/input.h say.
void MimeEmailConstructor1(abi::REALobject self, abi::REALstring content);  // a string's own bytes
void MimeEmailConstructor2(abi::REALobject self, abi::REALobject block);    // a MemoryBlock
void MimeEmailConstructor3(abi::REALobject self, abi::REALobject file);     // a FolderItem

// Getters: the stored value with one lock for the application, or nil.
inline constexpr auto getHTMLText = &GetStored<&MimeEntityClassData::HTMLText>;
inline constexpr auto getPlainText = &GetStored<&MimeEntityClassData::PlainText>;
inline constexpr auto getSubject = &GetStored<&MimeEntityClassData::Subject>;
inline constexpr auto getSource = &GetStored<&MimeEntityClassData::Source>;
inline constexpr auto getSentDate = &GetStored<&MimeEntityClassData::SentDate>;
inline constexpr auto getReceivedDate = &GetStored<&MimeEntityClassData::ReceivedDate>;

using EmailInlines = ListAccess<&MimeEntityClassData::Inlines>;
using EmailAttachments = ListAccess<&MimeEntityClassData::Attachments>;

// The message's source without its files [new lock for the application]; nil without a source.
abi::REALstring SourceWithoutAttachments(abi::REALobject self);

}  // namespace zqv::objects
