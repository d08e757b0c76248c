#include "objects/address_list.h"

#include "host/arrays.h"
#include "host/strings.h"
#include "objects/address.h"

namespace zqv::objects {

void Set(MimeAddressListClassData& record, const mime::AddressList& list) {
  record.StringValue.Put(host::BuildDetectedText(list.text()));
  record.addresses.Put(host::NewObjectArray());
  if (!record.addresses) return;
  host::NewListFiller filler(record.addresses.get());
  for (const mime::Address& address : list) {
    const host::ObjectRef object = NewFilled<MimeAddressClassData>(address);
    if (object) filler.Append(object.get());
  }
}

}  // namespace zqv::objects
