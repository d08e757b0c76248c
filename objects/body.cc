#include "objects/body.h"

#include <utility>

#include "host/arrays.h"
#include "host/record.h"
#include "host/strings.h"
#include "objects/release.h"

namespace zqv::objects {

host::ObjectRef NewMimeBodyZQV(const mime::Part& part) {
  auto object = host::NewInstance<MimeBodyClassData>();
  if (!object) return {};
  MimeBodyClassData& record = *host::RecordOf<MimeBodyClassData>(object.get());
  record.preamble.Put(host::BuildDetectedText(part.preamble));
  record.epilogue.Put(host::BuildDetectedText(part.epilogue));
  record.StringValue.Put(host::BuildDetectedText(part.body));
  record.parts.Put(host::NewObjectArray());
  return object;
}

void Clear(MimeBodyClassData& record) {
  host::ArrayRef parts = record.parts.Take();
  ClearSlots(record);
  ReleaseParts(std::move(parts));
}

}  // namespace zqv::objects
