// The library's one exported function.
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

// One class to register, and which record type lies at its definition's offset. The e-mail class
// shares its super class's record and binds none.
struct Registration {
  abi::REALclassDefinition* definition;
  void (*bind)(const abi::REALclassDefinition*);
};

// The order of registration: a super class before its subclass.
constexpr Registration kRegistrations[] = {
    // clang-format off
    {&kMimeBodyClass,         &host::BindRecord<objects::MimeBodyClassData>},
    {&kMimeHeaderClass,       &host::BindRecord<objects::MimeHeaderClassData>},
    {&kMimeEntityClass,       &host::BindRecord<objects::MimeEntityClassData>},
    {&kMimeAddressClass,      &host::BindRecord<objects::MimeAddressClassData>},
    {&kMimeGroupClass,        &host::BindRecord<objects::MimeGroupClassData>},
    {&kMimeAddressListClass,  &host::BindRecord<objects::MimeAddressListClassData>},
    {&kMimeMailboxListClass,  &host::BindRecord<objects::MimeMailboxListClassData>},
    {&kMimeMailboxClass,      &host::BindRecord<objects::MimeMailboxClassData>},
    {&kMimeFieldClass,        &host::BindRecord<objects::MimeFieldClassData>},
    {&kMimeEmailClass,        nullptr},
    {&kMimeAttachmentClass,   &host::BindRecord<objects::MimeAttachmentClassData>},
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

// Called once by the host after loading, with its resolver, which may be null: then nothing is
// registered.
extern "C" ZQV_EXPORTED void REALPluginMain(zqv::abi::Resolver resolver) {
  zqv::plugin::PrepareForUnloading();
  zqv::host::Guard([=] { zqv::plugin::Start(resolver); });
}
