#include "cli/attached_files.h"

#include "base/ascii.h"
#include "cli/file_name.h"
#include "cli/message.h"

namespace zqv::cli {

MailReading::MailReading(const standin::Object& email)
    : bytes_(TextMember(email, "Source")), source_(bytes_.bytes()), files_(source_) {}

std::string_view WrittenField(const MessageSource& source, mime::PartIndex index,
                              std::string_view name) {
  const mime::Part& part = source.parts()[index];
  for (std::size_t i = 0; i < part.field_count; ++i) {
    const mime::Field& field = source.message().fields()[part.first_field + i];
    if (base::EqualsIgnoringCase(field.name, name)) return ValueBytes(field);
  }
  return {};
}

AttachedFiles::AttachedFiles(const MailReading& reading, bool all) : reading_(reading) {
  FileNames names;
  for (const FoundFile& file : reading.files().list()) {
    if (!all && file.is_structural) continue;
    const std::string name = CleanFileName(file.name);
    if (!all && file.is_empty) {
      empty_.push_back({NameOf(file, name), file.problem});
    } else {
      files_.push_back({names.Take(name), &file});
    }
  }
}

std::string AttachedFiles::NameOf(const FoundFile& file, const std::string& name) const {
  return "part " + reading_.source().NumberOf(file.part) + ", " + name;
}

email::DecodedBody AttachedFiles::Data(std::size_t index) const {
  return reading_.files().Data(*files_[index].found);
}

std::string AttachedFiles::Problem(std::size_t index) const {
  const FoundFile& file = *files_[index].found;
  if (file.problem.empty()) return {};
  return NameOf(file, files_[index].name) + ": " + file.problem;
}

}  // namespace zqv::cli
