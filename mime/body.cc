#include "mime/body.h"

#include "host/record.h"
#include "host/strings.h"
#include "mime/header.h"

namespace zqv::mime {
namespace {

// One child of a body: its subtree first, then its header, then the sink, so that entities are
// told of in post-order.
void AppendChild(const mimetic::MimeEntity& child, abi::REALarray parts, EntitySink& sink) {
  const auto object = host::NewInstance<MimeEntityClassData>();
  if (!object) return;
  MimeEntityClassData& record = *host::RecordOf<MimeEntityClassData>(object.get());
  record.Body.Put(NewMimeBodyZQV(child.body(), sink));
  record.Header.Put(NewMimeHeaderZQV(sink.ViewOf(child.header())));
  sink.OnEntity(child, record, record.Body.get(), record.Header.get());
  if (parts != nullptr) host::AppendObject(parts, object.get());
}

}  // namespace

host::ObjectRef NewMimeBodyZQV(const mimetic::Body& body, EntitySink& sink) {
  auto object = host::NewInstance<MimeBodyClassData>();
  if (!object) return {};
  MimeBodyClassData& record = *host::RecordOf<MimeBodyClassData>(object.get());
  record.preamble.Put(host::CString2RB_detect_encoding(body.preamble()));
  record.epilogue.Put(host::CString2RB_detect_encoding(body.epilogue()));
  const std::string_view text = sink.TextOf(body);
  record.StringValue.Put(host::BuildDetectedString(text.substr(0, text.find('\0'))));
  record.parts.Put(host::NewObjectArray());
  for (const mimetic::MimeEntity* child : body.parts()) {
    if (child != nullptr) AppendChild(*child, record.parts.get(), sink);
  }
  return object;
}

void Clear(MimeBodyClassData& record) {
  record.preamble.Clear();
  record.epilogue.Clear();
  record.StringValue.Clear();
  record.parts.Clear();
}

}  // namespace zqv::mime
