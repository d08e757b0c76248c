#include "objects/address_list.h"

#include "host/arrays.h"
#include "host/strings.h"
#include "objects/address.h"

namespace zqv::objects {

void Set(MimeAddressListClassData& record, const mimetic::AddressList& list) {
  Set(record, list, mime::ListText(list, mime::kListSeparator));
}

void Set(MimeAddressListClassData& record, const mimetic::AddressList& list,
         const mime::ListText& text) {
  record.StringValue.Put(host::BuildDetectedText(text.whole()));
  record.addresses.Put(host::NewObjectArray());
  if (!record.addresses) return;
  for (std::size_t i = 0; i < list.size(); ++i) {
    const host::ObjectRef object = NewFilled<MimeAddressClassData>(list[i], text[i]);
    if (object) host::AppendObject(record.addresses.get(), object.get());
  }
}

void Clear(MimeAddressListClassData& record) {
  record.StringValue.Clear();
  record.addresses.Clear();
}

}  // namespace zqv::objects
