#include "mime/field.h"

#include "host/strings.h"

namespace zqv::mime {

void Set(MimeFieldClassData& record, const mimetic::Field& field) {
  record.Value.Put(host::CString2RB_detect_encoding(field.value()));
  record.Name.Put(host::CString2RB_detect_encoding(field.name()));
}

void Clear(MimeFieldClassData& record) {
  record.Name.Clear();
  record.Value.Clear();
}

}  // namespace zqv::mime
