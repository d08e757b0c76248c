// MimeEmailZQV: the class through which an application parses one message.
//
// Everything is computed by the constructor and handed out as it was stored. The class shares the
// record of MimeEntityZQV, its super class, whose destructor is the only one that runs.
#pragma once

#include "mime/list_access.h"

namespace zqv::email {

// Registered with the host. The constructors raise what email/parse.h and email/input.h say.
void MimeEmailConstructor1(abi::REALobject self, abi::REALstring content);  // a string's own bytes
void MimeEmailConstructor2(abi::REALobject self, abi::REALobject block);    // a MemoryBlock
void MimeEmailConstructor3(abi::REALobject self, abi::REALobject file);     // a FolderItem

// Getters: the stored value with one lock for the application, or nil.
inline constexpr auto getHTMLText = &mime::GetStored<&mime::MimeEntityClassData::HTMLText>;
inline constexpr auto getPlainText = &mime::GetStored<&mime::MimeEntityClassData::PlainText>;
inline constexpr auto getSubject = &mime::GetStored<&mime::MimeEntityClassData::Subject>;
inline constexpr auto getSource = &mime::GetStored<&mime::MimeEntityClassData::Source>;
inline constexpr auto getSentDate = &mime::GetStored<&mime::MimeEntityClassData::SentDate>;
inline constexpr auto getReceivedDate = &mime::GetStored<&mime::MimeEntityClassData::ReceivedDate>;

using EmailInlines = mime::ListAccess<&mime::MimeEntityClassData::Inlines>;
using EmailAttachments = mime::ListAccess<&mime::MimeEntityClassData::Attachments>;

// Shared methods. The texts [borrowed] may be nil; the results carry one lock for the application.
abi::REALstring HTMLToPlainText(abi::REALstring html);
abi::REALstring DecodeInline(abi::REALstring text);

}  // namespace zqv::email
