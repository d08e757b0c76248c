// MimeEmailZQV: a parsed message; the class that applications create.
//
// The constructor parses the message and stores all results; the getters return what is stored. The
// class has no record of its own and uses that of its super class MimeEntityZQV, whose destructor
// clears it.
#pragma once

#include "objects/list_access.h"

namespace zqv::objects {

// The constructors, registered with the host: from the bytes of a string, a MemoryBlock or a file.
// They raise the exceptions that objects/build.h and objects/input.h list, and a RuntimeException
// when a limit is exceeded.
void MimeEmailConstructor1(abi::REALobject self, abi::REALstring content);  // a String
void MimeEmailConstructor2(abi::REALobject self, abi::REALobject block);    // a MemoryBlock
void MimeEmailConstructor3(abi::REALobject self, abi::REALobject file);     // a FolderItem

// Getters: the stored value, or nil. [new lock for the application]
inline constexpr auto getHTMLText = &GetStored<&MimeEntityClassData::HTMLText>;
inline constexpr auto getPlainText = &GetStored<&MimeEntityClassData::PlainText>;
inline constexpr auto getSubject = &GetStored<&MimeEntityClassData::Subject>;
inline constexpr auto getSource = &GetStored<&MimeEntityClassData::Source>;
inline constexpr auto getSentDate = &GetStored<&MimeEntityClassData::SentDate>;
inline constexpr auto getReceivedDate = &GetStored<&MimeEntityClassData::ReceivedDate>;

using EmailInlines = ListAccess<&MimeEntityClassData::Inlines>;
using EmailAttachments = ListAccess<&MimeEntityClassData::Attachments>;

// The message's source without its attachments and inline parts (email/strip.h); nil when nothing
// is left or there is no source. Raises a RuntimeException when a limit is exceeded. [new lock for
// the application]
abi::REALstring SourceWithoutAttachments(abi::REALobject self);

}  // namespace zqv::objects
