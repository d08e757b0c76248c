#include "tests/unit/objects/email_fixture.h"

#include <variant>

#include "host/errors.h"
#include "objects/build.h"
#include "objects/switches.h"
#include "standin/native.h"

namespace zqv::test {

using objects::MimeAttachmentClassData;
using objects::MimeEntityClassData;

void EmailTest::TearDown() {
  objects::setRaiseUnknownFormatExceptions(0);
  ObjectsTest::TearDown();
}

standin::Host& EmailTest::StartEmail(const standin::Capabilities& capabilities) {
  StartObjects(capabilities);
  RegisterClass<MimeAttachmentClassData, objects::Destructor>("MimeAttachmentZQV");
  static abi::REALclassDefinition email;
  email = MadeUpClass("MimeEmailZQV", 0, nullptr, "MimeEntityZQV");
  RegisterDefinition(email);
  return host();
}

standin::Host& EmailTest::StartEmailWithFault(const char* name, standin::Fault fault) {
  standin::Capabilities capabilities;
  capabilities.faults[name] = fault;
  return StartEmail(capabilities);
}

// Creates the instance without the entry points, because a test may run without
// "PluginNewInstance".
host::ObjectRef EmailTest::NewEmail() {
  standin::Host& host = standin::Host::Get("a test");
  const standin::ClassInfo* info = host.classes().Find("MimeEmailZQV");
  return host::ObjectRef::Adopt(standin::ToHost(host.store().NewObject(*info, "a test")));
}

host::ObjectRef EmailTest::ParseEmail(std::string_view message) {
  host::ObjectRef email = NewEmail();
  host::Guard([&] { objects::MimeEmailConstructor(email.get(), message, nullptr); });
  return email;
}

MimeEntityClassData& EmailTest::RecordOf(const host::ObjectRef& email) {
  return *host::RecordOf<MimeEntityClassData>(email.get());
}

std::vector<MimeAttachmentClassData*> EmailTest::Attachments(const host::ObjectRef& email) {
  return RecordsIn<MimeAttachmentClassData>(RecordOf(email).Attachments.get());
}

std::vector<MimeAttachmentClassData*> EmailTest::Inlines(const host::ObjectRef& email) {
  return RecordsIn<MimeAttachmentClassData>(RecordOf(email).Inlines.get());
}

std::vector<MimeEntityClassData*> EmailTest::Parts(const MimeEntityClassData& entity) {
  return RecordsIn<MimeEntityClassData>(
      host::RecordOf<objects::MimeBodyClassData>(entity.Body.get())->parts.get());
}

std::vector<std::string> EmailTest::Names(
    const std::vector<MimeAttachmentClassData*>& attachments) {
  std::vector<std::string> names;
  for (const MimeAttachmentClassData* attachment : attachments)
    names.push_back(Show(attachment->Filename));
  return names;
}

std::string DateText(const host::ObjectSlot& date) {
  if (!date) return "nil";
  const auto* thing = reinterpret_cast<const standin::NativeThing*>(date.get());
  return std::get<standin::Date>(*thing->state).IsoText();
}

std::string Mixed(const std::vector<std::string>& parts) {
  std::string message = "Content-Type: multipart/mixed; boundary=b\n\n";
  for (const std::string& part : parts) message += "--b\n" + part + "\n";
  return message + "--b--\n";
}

}  // namespace zqv::test
