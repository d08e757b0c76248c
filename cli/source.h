// Where messages come from: files, mailboxes in one file, Maildirs, folders, standard input.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zqv::cli {

inline constexpr const char* kStandardInput = "-";

// How a file is read. kAuto looks at its first bytes: a separator line begins a mailbox
// (cli/mbox.h), archives and compressed files are unpacked (cli/containers.h), an .emlx file gives
// its message, and what is no message is refused (cli/no_message.h).
enum class InputForm { kAuto, kMessage, kMbox };

// One message that has not been parsed yet.
struct Item {
  std::string name;   // for people: the file's path; of several in a mailbox "path#2"
  std::string place;  // relative path that tells it from all others below one input:
                      // "letter.eml", "mail/2024/letter.eml", "archive.mbox/000002",
                      // "mail.zip/2024/letter.eml"
  std::string path;   // the file that holds it
  std::optional<std::string> bytes;  // when they were read already: pipes, mailboxes, archives
};

struct SourceOptions {
  std::vector<std::string> inputs;  // paths, "-" being standard input
  bool recursive = false;
  InputForm form = InputForm::kAuto;
  std::vector<std::string> include;  // patterns such as "*.eml", one of which the names of files
                                     // in folders must match; none: all files
};

// Gets each message in turn; false ends the walk.
using VisitItem = std::function<bool(Item&& item)>;

// Walks through the inputs in the order given; what is in folders in the order of their names.
//
// A folder is read when it is a Maildir (messages of "new", then of "cur") or when `recursive` is
// set: plain files, then subfolders. There hidden names are left out, but for Maildirs, and links
// to folders are not followed. What cannot be read is said on standard error and does not end the
// walk; nor do files in folders and archives that are no messages, which are said and counted.
// False when there was something that cannot be read, or an input that is no message. Memory holds
// one message, one list of a folder's names and one mailbox's message at a time.
bool ForEachItem(const SourceOptions& options, const VisitItem& visit);

// The bytes of the inputs' files as far as that can be told without reading them; for progress.
std::size_t TotalBytes(const SourceOptions& options);

// The first bytes of a file, `most` of them or all there are; none when it cannot be read.
std::string ReadStart(const std::string& file, std::size_t most);

// The bytes of a file, or of standard input for "-". Throws std::runtime_error with the reason,
// also for more than kMostMessageBytes.
std::string ReadBytes(const std::string& file);

}  // namespace zqv::cli
