#include "mime/body.h"

#include "host/record.h"
#include "host/strings.h"
#include "mime/header.h"

namespace zqv::mime {
namespace {

// Not inlined: what it keeps on the stack, the recursion above it must not.
[[gnu::noinline]] void TellOf(const mimetic::MimeEntity& entity, MimeEntityClassData& record,
                              EntitySink& sink) {
  const HeaderView fields = sink.texts().HeaderOf(entity);
  record.Header.Put(NewMimeHeaderZQV(fields));
  sink.OnEntity(entity, fields, record, record.Body.get(), record.Header.get());
}

// One child of a body: its subtree first, then its header, then the sink, so that entities are
// told of in post-order.
void AppendChild(const mimetic::MimeEntity& child, abi::REALarray parts, EntitySink& sink) {
  const auto object = host::NewInstance<MimeEntityClassData>();
  if (!object) return;
  MimeEntityClassData& record = *host::RecordOf<MimeEntityClassData>(object.get());
  record.Body.Put(NewMimeBodyZQV(child, sink));
  TellOf(child, record, sink);
  if (parts != nullptr) host::AppendObject(parts, object.get());
}

}  // namespace

host::ObjectRef NewMimeBodyZQV(const mimetic::MimeEntity& entity, EntitySink& sink) {
  auto object = host::NewInstance<MimeBodyClassData>();
  if (!object) return {};
  MimeBodyClassData& record = *host::RecordOf<MimeBodyClassData>(object.get());
  const mimetic::Body& body = entity.body();
  record.preamble.Put(host::CString2RB_detect_encoding(body.preamble()));
  record.epilogue.Put(host::CString2RB_detect_encoding(body.epilogue()));
  record.StringValue.Put(host::BuildDetectedText(sink.texts().BodyOf(entity)));
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
