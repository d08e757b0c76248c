// Finds and reads the messages that a verb works on: in files, mailboxes, archives, Maildirs,
// folders, and on standard input.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zqv::cli {

inline constexpr const char* kStandardInput = "-";

// The format of a file. kAuto recognises it by its first bytes: a separator line begins a mailbox
// (cli/mbox.h), archives and compressed files are unpacked (cli/containers.h), the message in an
// .emlx file is extracted, and files that are not messages are rejected (cli/file_kind.h).
enum class InputForm { kAuto, kMessage, kMbox };

// A message that has not been parsed yet.
struct Item {
  // For a reader: the file's path, or "path#2" for the second message of a mailbox.
  std::string name;
  // Relative path that is unique among the messages below one input: "letter.eml",
  // "mail/2024/letter.eml", "archive.mbox/000002", "mail.zip/2024/letter.eml".
  std::string relative_path;
  std::string path;  // the file that contains the message
  // Set when the bytes were read already: from pipes, mailboxes and archives.
  std::optional<std::string> bytes;
};

struct SourceOptions {
  std::vector<std::string> inputs;  // paths; "-" is standard input
  bool recursive = false;
  InputForm form = InputForm::kAuto;
  std::vector<std::string> include;  // patterns such as "*.eml"; a file in a folder or archive must
                                     // match one of them; empty: all files are read
};

// Receives each message. Returns false to stop the iteration.
using VisitItem = std::function<bool(Item&& item)>;

// Calls `visit` for each message of the inputs, in the order of the inputs. Files of a folder come
// in the order of their names.
//
// A folder is read if it is a Maildir (files of "new", then of "cur") or if `recursive` is set
// (files, then subfolders). Hidden files and folders are skipped, except hidden Maildirs. Links to
// folders are not followed. Files that cannot be read, and files that are not messages, are
// reported on standard error and do not stop the iteration.
//
// Returns false when a file could not be read, or when an input is not a message. A file in a
// folder or archive that is not a message does not count as a failure. Memory contains at most one
// message and the file names of the folders that are being read.
bool ForEachItem(const SourceOptions& options, const VisitItem& visit);

// Returns the total size of the input files in bytes, as far as it is known without reading them.
// Used for progress.
std::size_t TotalBytes(const SourceOptions& options);

// Returns the first `most` bytes of a file, or the whole file if it is shorter. Empty when it
// cannot be read.
std::string ReadStart(const std::string& file, std::size_t most);

// Returns the bytes of a file, or of standard input for "-". Throws std::runtime_error with the
// reason when it cannot be read or has more than kMostMessageBytes.
std::string ReadBytes(const std::string& file);

}  // namespace zqv::cli
