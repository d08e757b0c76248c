#include "mime/field.h"

#include "host/strings.h"

namespace zqv::mime {

void Set(MimeFieldClassData& record, const mimetic::Field& field) {
  const std::string value = field.value();
  Set(record, std::string_view(field.name().c_str()), std::string_view(value.c_str()));
}

void Set(MimeFieldClassData& record, std::string_view name, std::string_view value) {
  record.Value.Put(host::BuildDetectedString(value));
  record.Name.Put(host::BuildDetectedString(name));
}

void Clear(MimeFieldClassData& record) {
  record.Name.Clear();
  record.Value.Clear();
}

}  // namespace zqv::mime
