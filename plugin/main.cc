// REALPluginMain, the only function that the library exports: it registers the classes.
#include <iterator>

#include "host/entry_points.h"
#include "host/errors.h"
#include "host/record.h"
#include "objects/attachment.h"
#include "objects/records.h"
#include "plugin/classes.h"
#include "plugin/register.h"
#include "plugin/unloading.h"

namespace zqv::plugin {
namespace {

// A class to register, and the function that binds its record type to the definition
// (host/record.h). Null for MimeEmailZQV, which uses the record of its super class.
struct Registration {
  abi::REALclassDefinition* definition;
  void (*bind)(const abi::REALclassDefinition*);
};

// The order of registration: a super class before its subclass.
constexpr Registration kRegistrations[] = {
    // clang-format off
    {&g_mime_body_class,         &host::BindRecord<objects::MimeBodyClassData>},
    {&g_mime_header_class,       &host::BindRecord<objects::MimeHeaderClassData>},
    {&g_mime_entity_class,       &host::BindRecord<objects::MimeEntityClassData>},
    {&g_mime_address_class,      &host::BindRecord<objects::MimeAddressClassData>},
    {&g_mime_group_class,        &host::BindRecord<objects::MimeGroupClassData>},
    {&g_mime_address_list_class, &host::BindRecord<objects::MimeAddressListClassData>},
    {&g_mime_mailbox_list_class, &host::BindRecord<objects::MimeMailboxListClassData>},
    {&g_mime_mailbox_class,      &host::BindRecord<objects::MimeMailboxClassData>},
    {&g_mime_field_class,        &host::BindRecord<objects::MimeFieldClassData>},
    {&g_mime_email_class,        nullptr},
    {&g_mime_attachment_class,   &host::BindRecord<objects::MimeAttachmentClassData>},
    // clang-format on
};
static_assert(std::size(kRegistrations) == 11);

void Start(abi::Resolver resolver) {
  host::SetResolver(resolver);
  host::SetHostVersion(host::entry::REALGetRBVersion());
  CurrentREALControlVersion = ControlVersionFor(host::HostVersion());
  if (resolver == nullptr) return;
  host::entry::RegisterPluginVersion(CurrentREALControlVersion);
  for (const Registration& row : kRegistrations) {
    MyREALRegisterClass(row.definition);
    if (row.bind != nullptr) row.bind(row.definition);
  }
}

}  // namespace
}  // namespace zqv::plugin

#if defined(_WIN32)
#define ZQV_EXPORTED __declspec(dllexport)
#else
#define ZQV_EXPORTED __attribute__((visibility("default")))
#endif

// The host calls this once, after it has loaded the library. With a null resolver nothing is
// registered.
extern "C" ZQV_EXPORTED void REALPluginMain(zqv::abi::Resolver resolver) {
  zqv::plugin::PrepareForUnloading();
  zqv::host::Guard([=] { zqv::plugin::Start(resolver); });
}
