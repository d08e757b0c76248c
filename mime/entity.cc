#include "mime/entity.h"

namespace zqv::mime {

void Clear(MimeEntityClassData& record) {
  record.Header.Clear();
  record.Body.Clear();
  record.PlainText.Clear();
  record.HTMLText.Clear();
  record.BodyDecoded.Clear();
  record.Subject.Clear();
  record.Source.Clear();
  record.Attachments.Clear();
  record.Inlines.Clear();
  record.SentDate.Clear();
  record.ReceivedDate.Clear();
}

}  // namespace zqv::mime
