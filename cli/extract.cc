// `zqv extract`: writes the data of every attachment and inline part into a folder, or the bytes of
// one part to standard output.
//
// The data are the bytes of the library's strings as they are; nil gives an empty file.
#include <exception>
#include <string>

#include "cli/attached_files.h"
#include "cli/folder.h"
#include "cli/message.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;

// False when a part could not be written.
bool WriteAll(const Object& email, const Request& request, Output* output) {
  const Folder folder(request.folder);
  const AttachedFiles files(email);
  bool all_good = true;
  for (std::size_t i = 0; i < files.count() && output->IsGood(); ++i) {
    try {
      output->PrintLine(folder.Write(files.Name(i), files.Data(i).bytes(), request.force));
    } catch (const std::exception& error) {
      Complain(error.what());
      all_good = false;
    }
  }
  return all_good;
}

}  // namespace

int Extract(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string&, const Object& email) {
    if (!request.sent_part) return WriteAll(email, request, output);
    output->Print(TextMember(FindPart(email, *request.sent_part), "BodyDecoded").bytes());
    return true;
  };
  return ForOneMessage(session, request, visit);
}

}  // namespace zqv::cli
