#include "email/email.h"

#include "email/input.h"
#include "email/parse.h"
#include "host/errors.h"
#include "host/log.h"
#include "host/string_bytes.h"
#include "text/encoded_word.h"
#include "text/html_to_text.h"

namespace zqv::email {

void MimeEmailConstructor1(abi::REALobject self, abi::REALstring content) {
  host::Guard([=] {
    ZQV_LOG("%s%s", "MimeEmailConstructor1");
    const host::rbData data(content);
    MimeEmailConstructor(self, data.bytes(), content);
  });
}

void MimeEmailConstructor2(abi::REALobject self, abi::REALobject block) {
  host::Guard([=] {
    ZQV_LOG("%s%s", "MimeEmailConstructor2");
    const BlockBytes data(block);
    MimeEmailConstructor(self, data.bytes(), nullptr);
  });
}

void MimeEmailConstructor3(abi::REALobject self, abi::REALobject file) {
  host::Guard([=] {
    ZQV_LOG("%s%s", "MimeEmailConstructor3");
    std::optional<MessageBytes> data = ReadFile(file);
    if (data.has_value()) MimeEmailConstructor(self, std::move(*data), nullptr);
  });
}

abi::REALstring HTMLToPlainText(abi::REALstring html) {
  return host::Guard([=] { return text::HTMLToPlainText(html); });
}

abi::REALstring DecodeInline(abi::REALstring text) {
  return host::Guard([=] { return text::DecodeInline(text); });
}

}  // namespace zqv::email
