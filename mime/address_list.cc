#include "mime/address_list.h"

#include "host/arrays.h"
#include "host/strings.h"
#include "mime/address.h"

namespace zqv::mime {

void Set(MimeAddressListClassData& record, const mimetic::AddressList& list) {
  const std::vector<std::string> texts = TextsOf(list);
  record.StringValue.Put(host::CString2RB_detect_encoding(Join(texts, ", ")));
  record.addresses.Put(host::NewObjectArray());
  if (!record.addresses) return;
  for (std::size_t i = 0; i < list.size(); ++i) {
    const host::ObjectRef object = NewFilled<MimeAddressClassData>(list[i], texts[i]);
    if (object) host::AppendObject(record.addresses.get(), object.get());
  }
}

void Clear(MimeAddressListClassData& record) {
  record.StringValue.Clear();
  record.addresses.Clear();
}

}  // namespace zqv::mime
