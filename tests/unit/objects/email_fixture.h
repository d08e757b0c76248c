// A test fixture with a stand-in host in which the classes of a message and of its parts are
// registered.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/ref.h"
#include "objects/attachment.h"
#include "objects/records.h"
#include "standin/capabilities.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {

class EmailTest : public ObjectsTest {
 protected:
  void SetUp() override { StartEmail(); }
  void TearDown() override;

  // Starts a host, and registers MimeEmailZQV, MimeAttachmentZQV and the classes of ObjectsTest.
  standin::Host& StartEmail(const standin::Capabilities& capabilities = {});
  // Does the same with a host in which one entry point fails, or is missing.
  standin::Host& StartEmailWithFault(const char* name, standin::Fault fault = {});

  // Creates a MimeEmailZQV without calling a constructor.
  static host::ObjectRef NewEmail();
  // Creates one and parses `message` into it. A C++ exception becomes a pending exception, as in
  // the registered constructors.
  static host::ObjectRef ParseEmail(std::string_view message);

  static objects::MimeEntityClassData& RecordOf(const host::ObjectRef& email);
  static std::vector<objects::MimeAttachmentClassData*> Attachments(const host::ObjectRef& email);
  static std::vector<objects::MimeAttachmentClassData*> Inlines(const host::ObjectRef& email);
  // The records of the parts of a message, or of a part.
  static std::vector<objects::MimeEntityClassData*> Parts(
      const objects::MimeEntityClassData& entity);

  // Field Filename of each attachment, as Show gives it.
  static std::vector<std::string> Names(
      const std::vector<objects::MimeAttachmentClassData*>& attachments);
};

// Shows a Date of the host as "2019-01-01T10:00:00", and nil as "nil".
std::string DateText(const host::ObjectSlot& date);

// A multipart/mixed message with these parts, each of which begins with its header.
std::string Mixed(const std::vector<std::string>& parts);

}  // namespace zqv::test
