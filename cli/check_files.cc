#include "cli/check_files.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/header_reading.h"
#include "cli/text.h"
#include "cli/written_parameters.h"

namespace zqv::cli {
namespace {

using mime::PartIndex;

class FileChecker {
 public:
  FileChecker(const MessageSource& source, const FoundFiles& files, bool fits, Findings* findings)
      : source_(source), files_(files), fits_(fits), findings_(*findings) {}

  void Run() {
    CheckFrom();
    CheckType();
    for (PartIndex i = 0; i < source_.parts().size(); ++i) CheckParameters(i);
    for (const FoundFile& file : files_.list()) CheckFile(file);
  }

 private:
  Place At(PartIndex part) const {
    return {fits_ && part < source_.known() ? std::optional<std::size_t>(part) : std::nullopt,
            source_.LineOf(source_.parts()[part])};
  }
  // The place of the part's first field of this name, or of the part if it has none.
  Place At(PartIndex part, std::string_view name) const {
    Place place = At(part);
    const std::string_view value = WrittenField(source_, part, name);
    if (value.data() != nullptr) place.line = source_.lines().At(value.data());
    return place;
  }

  void CheckFrom() {
    const std::string_view value = WrittenField(source_, 0, "From");
    if (value.data() == nullptr) return;
    const std::vector<std::string> entries = ReadAddresses(value);
    const bool is_good = std::any_of(entries.begin(), entries.end(), [](const std::string& entry) {
      return !MailboxOf(entry).empty();
    });
    if (!is_good) findings_.Add(FindingKind::kNoSender, At(0, "From"), {Quoted(Trim(value))});
  }

  void CheckType() {
    const bool is_there = WrittenField(source_, 0, "Content-Type").data() != nullptr;
    const mime::Part& top = source_.parts().front();
    const bool is_cut = top.header_end == mime::HeaderEnd::kMessageEnd;
    if (!is_there && !is_cut && top.field_count > 0)
      findings_.Add(FindingKind::kNoContentType, At(0));
  }

  void CheckParameters(PartIndex part) {
    for (const char* const field : {"Content-Type", "Content-Disposition"}) {
      const std::string_view value = WrittenField(source_, part, field);
      if (value.find(';') == std::string_view::npos) continue;
      const WrittenParameters parameters(value);
      for (const char* const name : {"boundary", "charset", "filename", "name"}) {
        if (!parameters.IsRepeated(name)) continue;
        findings_.Add(FindingKind::kRepeatedParameter, At(part, field), {name, field});
      }
      if (parameters.main() == "message/partial") {
        findings_.Add(FindingKind::kPiece, At(part, field));
      }
    }
  }

  void CheckFile(const FoundFile& file) {
    const std::string name = Quoted(file.name);
    if (file.packing != Packing::kNone) {
      findings_.Add(FindingKind::kPackedFile, At(file.part), {name, PackingName(file.packing)});
    } else if (file.is_named && file.is_empty) {
      findings_.Add(FindingKind::kEmptyFile, At(file.part), {name});
    } else if (file.is_named &&
               (file.part == files_.plain_text() || file.part == files_.html_text())) {
      findings_.Add(FindingKind::kNamedText, At(file.part), {name});
    }
  }

  const MessageSource& source_;
  const FoundFiles& files_;
  const bool fits_;
  Findings& findings_;
};

}  // namespace

void CheckFiles(const MessageSource& source, const FoundFiles& files, bool fits,
                Findings* findings) {
  FileChecker(source, files, fits, findings).Run();
}

}  // namespace zqv::cli
