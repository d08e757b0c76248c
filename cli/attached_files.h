// The files in a message, with names that are safe to use in a folder.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/found_files.h"
#include "cli/message_source.h"
#include "standin/handles.h"

namespace zqv::cli {

// A message as a reader understands it: its bytes, the places of its parts in them (MessageSource),
// and the files in it (FoundFiles).
class MailReading {
 public:
  // `email` is a MimeEmailZQV. Throws std::runtime_error when the message exceeds a limit.
  explicit MailReading(const standin::Object& email);
  // `bytes` must outlive this object.
  explicit MailReading(std::string_view bytes) : source_(bytes), files_(source_) {}

  const MessageSource& source() const { return source_; }
  const FoundFiles& files() const { return files_; }

 private:
  const standin::String bytes_;
  const MessageSource source_;
  const FoundFiles files_;
};

// Returns the value of a part's first field of this name, undecoded: the bytes after its colon. A
// null view when there is none.
std::string_view WrittenField(const MessageSource& source, mime::PartIndex part,
                              std::string_view name);

// The files that are to be written, each with a safe name that none of the others has.
class AttachedFiles {
 public:
  // `reading` must outlive this object. Unless `all` is set, it leaves out files that are only
  // structure of the message (FoundFile::is_structural) and files without a byte.
  AttachedFiles(const MailReading& reading, bool all);

  std::size_t count() const { return files_.size(); }
  const std::string& Name(std::size_t index) const { return files_[index].name; }
  email::DecodedBody Data(std::size_t index) const;
  // Why the bytes of a file differ from the file that was sent, with its part number and name;
  // empty when they do not.
  std::string Problem(std::size_t index) const;

  // A file without a byte that was left out: its part number and name, and why it differs from the
  // file that was sent (empty: it does not).
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
