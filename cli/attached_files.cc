#include "cli/attached_files.h"

namespace zqv::cli {

AttachedFiles::AttachedFiles(const standin::Object& email) {
  const PartTree tree(email);
  FileNames names;
  for (const Attached& attached : ListAttached(email, tree)) {
    // A name that the host cannot convert is taken by its bytes.
    const standin::String name = TextMember(attached.record, "Filename");
    const std::string clean = CleanFileName(name.Utf8().value_or(std::string(name.bytes())));
    files_.push_back({names.Take(clean), attached.record});
  }
}

standin::String AttachedFiles::Data(std::size_t index) const {
  return TextMember(files_[index].record, "Data");
}

}  // namespace zqv::cli
