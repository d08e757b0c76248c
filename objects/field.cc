#include "objects/field.h"

#include <string>

#include "host/strings.h"
#include "mime/field.h"

namespace zqv::objects {

void Set(MimeFieldClassData& record, std::string_view name, std::string_view value) {
  record.Value.Put(host::BuildDetectedString(value));
  record.Name.Put(host::BuildDetectedString(name));
}

void MimeFieldConstructor(abi::REALobject self, abi::REALstring text) {
  FillFromText<MimeFieldClassData>(self, text, nullptr,
                                   [](MimeFieldClassData& record, const std::string& utf8) {
                                     const mime::Field field = mime::ParseField(utf8);
                                     Set(record, field.name, field.value);
                                   });
}

}  // namespace zqv::objects
