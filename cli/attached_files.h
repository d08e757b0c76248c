// What is found in a message, as files with names that are fit for a folder.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/found_files.h"
#include "cli/message_source.h"
#include "standin/handles.h"

namespace zqv::cli {

// A message as people read it: its bytes, where its parts lie, and the files in it.
class MailReading {
 public:
  // Of a MimeEmailZQV. Throws std::runtime_error for a message beyond the limits.
  explicit MailReading(const standin::Object& email);
  // `bytes` must outlive this.
  explicit MailReading(std::string_view bytes) : source_(bytes), files_(source_) {}

  const MessageSource& source() const { return source_; }
  const FoundFiles& files() const { return files_; }

 private:
  const standin::String bytes_;
  const MessageSource source_;
  const FoundFiles files_;
};

// The value of a part's first field of that name as it is written, its bytes behind the colon;
// empty when there is none.
std::string_view WrittenField(const MessageSource& source, mime::PartIndex part,
                              std::string_view name);

// The files that are to be written, each with a clean name that no other of them has.
class AttachedFiles {
 public:
  // `reading` must outlive this. With `all` those, too, that nobody calls files, and those without
  // a byte.
  AttachedFiles(const MailReading& reading, bool all);

  std::size_t count() const { return files_.size(); }
  const std::string& Name(std::size_t index) const { return files_[index].name; }
  email::DecodedBody Data(std::size_t index) const;
  // What keeps it from being the file that was sent, with its number and name; empty when nothing
  // does.
  std::string Problem(std::size_t index) const;

  // Files without a byte, which are not among them: each with its number, its name, and what keeps
  // it from being the file that was sent, if anything does.
  struct Empty {
    std::string name;
    std::string problem;
  };
  const std::vector<Empty>& empty() const { return empty_; }

 private:
  struct File {
    std::string name;
    const FoundFile* found;
  };

  std::string NameOf(const FoundFile& file, const std::string& name) const;

  const MailReading& reading_;
  std::vector<File> files_;
  std::vector<Empty> empty_;
};

}  // namespace zqv::cli
