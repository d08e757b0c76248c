#include "mime/address_list.h"

#include "host/arrays.h"
#include "host/strings.h"
#include "mime/address.h"

namespace zqv::mime {

void Set(MimeAddressListClassData& record, const mimetic::AddressList& list) {
  record.StringValue.Put(host::CString2RB_detect_encoding(list.str()));
  record.addresses.Put(host::NewObjectArray());
  if (!record.addresses) return;
  for (const mimetic::Address& address : list) {
    const host::ObjectRef object = NewFilled<MimeAddressClassData>(address);
    if (object) host::AppendObject(record.addresses.get(), object.get());
  }
}

void Clear(MimeAddressListClassData& record) {
  record.StringValue.Clear();
  record.addresses.Clear();
}

}  // namespace zqv::mime
