// `zqv extract`: writes the files in a message to a folder, or the bytes of one part to standard
// output.
#include <exception>
#include <stdexcept>
#include <string>

#include "cli/attached_files.h"
#include "cli/folder.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;

// False when a file could not be written, or differs from the file that was sent.
bool WriteAll(const std::string& name, const MailReading& reading, const Request& request,
              Output* output) {
  const Folder folder(request.folder);
  const AttachedFiles files(reading, request.all);
  bool all_good = true;
  for (std::size_t i = 0; i < files.count() && output->IsGood(); ++i) {
    try {
      output->PrintLine(folder.Write(files.Name(i), files.Data(i).bytes(), request.force));
      const std::string problem = files.Problem(i);
      if (!problem.empty()) {
        Complain(name + ": " + problem);
        all_good = false;
      }
    } catch (const DiskFull& error) {
      Complain(ReasonOf(error));
      return false;
    } catch (const std::exception& error) {
      Complain(ReasonOf(error));
      all_good = false;
    }
  }
  for (const AttachedFiles::Empty& file : files.empty()) {
    const bool is_sent_so = file.problem.empty();
    Complain(name + ": " + file.name + ": " +
             (is_sent_so ? "has no bytes and is not written; --all writes it" : file.problem));
    all_good = all_good && is_sent_so;
  }
  return all_good;
}

// Prints the decoded bytes of a part. A multipart has none.
bool PrintPart(const std::string& name, const MailReading& reading, const std::string& number,
               Output* output) {
  const mime::PartIndex part = reading.source().FindPart(number);
  if (part == mime::kNoPart) throw std::runtime_error("there is no part " + number);
  if (reading.source().parts()[part].kind == mime::PartKind::kMultipart) return true;
  const FoundFile file = reading.files().Describe(part);
  output->Print(reading.files().Data(file).bytes());
  if (file.problem.empty()) return true;
  Complain(name + ": part " + number + ": " + file.problem);
  return false;
}

}  // namespace

int Extract(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& name, const Object& email) {
    const MailReading reading(email);
    if (!request.sent_part) return WriteAll(name, reading, request, output);
    return PrintPart(name, reading, *request.sent_part, output);
  };
  return ForOneMessage(session, request, visit,
                       "; export --form attachments writes the files of all");
}

}  // namespace zqv::cli
