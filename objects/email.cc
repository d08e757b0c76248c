#include "objects/email.h"

#include <optional>
#include <string>
#include <utility>

#include "base/log.h"
#include "email/strip.h"
#include "host/errors.h"
#include "host/record.h"
#include "host/string_bytes.h"
#include "host/strings.h"
#include "host/text_reader.h"
#include "objects/build.h"
#include "objects/input.h"

namespace zqv::objects {

void MimeEmailConstructor1(abi::REALobject self, abi::REALstring content) {
  host::Guard([=] {
    ZQV_LOG("MimeEmailConstructor1");
    const host::rbData data(content);
    MimeEmailConstructor(self, data.bytes(), content);
  });
}

void MimeEmailConstructor2(abi::REALobject self, abi::REALobject block) {
  host::Guard([=] {
    ZQV_LOG("MimeEmailConstructor2");
    const BlockBytes data(block);
    MimeEmailConstructor(self, data.bytes(), nullptr);
  });
}

void MimeEmailConstructor3(abi::REALobject self, abi::REALobject file) {
  host::Guard([=] {
    ZQV_LOG("MimeEmailConstructor3");
    std::optional<MessageBytes> data = ReadFile(file);
    if (data.has_value()) MimeEmailConstructor(self, std::move(*data), nullptr);
  });
}

abi::REALstring SourceWithoutAttachments(abi::REALobject self) {
  return host::Guard([self] {
    const auto* record = host::RecordOf<MimeEntityClassData>(self);
    if (record == nullptr || !record->Source) return host::StringRef();
    const std::string text = email::WriteWithoutFiles(host::ReadUtf8(record->Source.get()));
    return host::BuildDetectedString(text);
  });
}

}  // namespace zqv::objects
