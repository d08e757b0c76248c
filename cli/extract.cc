// `zqv extract`: writes the data of every attachment and inline part into a folder.
//
// The data are the bytes of the library's Data string as they are; nil gives an empty file.
#include <exception>

#include "cli/file_name.h"
#include "cli/folder.h"
#include "cli/message.h"
#include "cli/verbs.h"

namespace zqv::cli {
namespace {

using standin::Object;

// A name that the host cannot convert is taken by its bytes.
std::string NameOf(const Attached& attached) {
  const standin::String name = TextMember(attached.record, "Filename");
  return CleanFileName(name.Utf8().value_or(std::string(name.bytes())));
}

// False when a part could not be written.
bool WriteAll(const Object& email, const Request& request, Output* output) {
  const Folder folder(request.folder);
  const PartTree tree(email);
  FileNames names;
  bool all_good = true;
  for (const Attached& attached : ListAttached(email, tree)) {
    const standin::String data = TextMember(attached.record, "Data");
    try {
      const std::string name = names.Take(NameOf(attached));
      output->PrintLine(folder.Write(name, data.bytes(), request.force));
    } catch (const std::exception& error) {
      Complain(error.what());
      all_good = false;
    }
    if (!output->IsGood()) break;
  }
  return all_good;
}

}  // namespace

int Extract(const Session& session, const Request& request, Output* output) {
  return ForEachFile(session, request.inputs, output, [&](const std::string&, const Object& email) {
    return WriteAll(email, request, output);
  });
}

}  // namespace zqv::cli
