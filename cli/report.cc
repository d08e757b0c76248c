// `zqv report`: writes a message with all its parts as one HTML page.
#include <filesystem>
#include <string>

#include "cli/folder.h"
#include "cli/report_page.h"
#include "cli/source.h"
#include "cli/verbs.h"
#include "cli/visit.h"

namespace zqv::cli {
namespace {

using standin::Object;

void WritePage(const std::string& path, const std::string& page, bool force) {
  const std::filesystem::path target(path);
  const std::string folder = target.parent_path().string();
  Folder(folder.empty() ? "." : folder).Write(target.filename().string(), page, force);
}

}  // namespace

int Report(const Session& session, const Request& request, Output* output) {
  const auto visit = [&](const std::string& name, const Object& email) {
    const std::string page = ReportPage(name, email);
    if (request.page == kStandardInput) {
      output->Print(page);
    } else {
      WritePage(request.page, page, request.force);
      output->PrintLine(request.page);
    }
    return true;
  };
  return ForOneMessage(session, request, visit);
}

}  // namespace zqv::cli
