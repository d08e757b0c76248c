// A test with a stand-in host that knows the classes of a message and its parts.
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

  // Starts a host and registers the classes of the layer below, MimeEmailZQV and MimeAttachmentZQV.
  standin::Host& StartEmail(const standin::Capabilities& capabilities = {});
  // The same for a host in which one entry point misbehaves, or is missing.
  standin::Host& StartEmailWithFault(const char* name, standin::Fault fault = {});

  // A MimeEmailZQV on which no constructor has run.
  static host::ObjectRef NewEmail();
  // One filled from a message; what is thrown becomes a pending exception, as in the real class.
  static host::ObjectRef ParseEmail(std::string_view message);

  static objects::MimeEntityClassData& RecordOf(const host::ObjectRef& email);
  static std::vector<objects::MimeAttachmentClassData*> Attachments(const host::ObjectRef& email);
  static std::vector<objects::MimeAttachmentClassData*> Inlines(const host::ObjectRef& email);
  // The records of the parts of a message or part.
  static std::vector<objects::MimeEntityClassData*> Parts(
      const objects::MimeEntityClassData& entity);

  // What an attachment's field Filename shows, of each.
  static std::vector<std::string> Names(
      const std::vector<objects::MimeAttachmentClassData*>& attachments);
};

// "2019-01-01T10:00:00" for a Date of the host, "nil" for nil.
std::string DateText(const host::ObjectSlot& date);

// A multipart/mixed of these parts, each beginning with its header.
std::string Mixed(const std::vector<std::string>& parts);

}  // namespace zqv::test
