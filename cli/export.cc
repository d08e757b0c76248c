// `zqv export`: writes many messages to a folder.
//
// The path of each file consists of the message's relative path and a suffix:
// "Mail/2024/letter.eml" becomes "Mail/2024/letter.eml.json", .txt, .html, and a folder
// "letter.eml.files" with the files in the message. Files appear complete or not at all, and the
// folder of files gets its name when it is complete. A failure of one message is reported and does
// not stop the others.
#include <sys/stat.h>

#include <algorithm>
#include <exception>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/fnv.h"
#include "cli/attached_files.h"
#include "cli/folder.h"
#include "cli/message.h"
#include "cli/message_document.h"
#include "cli/output.h"
#include "cli/print_json.h"
#include "cli/progress.h"
#include "cli/source.h"
#include "cli/text.h"
#include "cli/verbs.h"
#include "cli/visit.h"
#include "cli/workers.h"

namespace zqv::cli {
namespace {

using standin::Object;
using standin::String;

const char* SuffixOf(ExportForm form) {
  switch (form) {
    case ExportForm::kJson:
      return ".json";
    case ExportForm::kText:
      return ".txt";
    case ExportForm::kHtml:
      return ".html";
    case ExportForm::kFiles:
      break;
  }
  return ".files";
}

// The outcome of exporting one message.
struct Outcome {
  enum class Kind : char {
    kWritten = 'w',
    kSkipped = 's',  // everything existed already
    kFailed = 'f',
    kDiskFull = 'd',  // the following messages will fail, too
  };
  Kind kind = Kind::kWritten;
  std::string reason;                 // of the failure
  std::size_t empty = 0;              // number of files without a byte, which were not written
  std::vector<std::string> problems;  // files that differ from the file that was sent, and why
};

// Convert an outcome to the form in which it is sent between processes, and back.
Parcel ParcelOf(const Outcome& outcome) {
  Parcel parcel = {std::string(1, static_cast<char>(outcome.kind)), outcome.reason,
                   std::to_string(outcome.empty)};
  parcel.insert(parcel.end(), outcome.problems.begin(), outcome.problems.end());
  return parcel;
}
Outcome OutcomeOf(const Parcel& parcel) {
  return {static_cast<Outcome::Kind>(parcel[0].front()), parcel[1],
          ReadNumber(parcel[2]).value_or(0), Parcel(parcel.begin() + 3, parcel.end())};
}

// Writes messages to the folder.
class Exporter {
 public:
  Exporter(const Session& session, const Request& request)
      : session_(session), request_(request), top_(request.folder) {
    if (request.forms.empty()) {
      forms_.push_back(ExportForm::kJson);
    } else {
      forms_ = request.forms;
    }
  }

  // Exports one message. Throws nothing that is caused by the message or the folder.
  Outcome Write(const Item& item) {
    outcome_ = {};
    try {
      if (!WriteForms(item)) outcome_.kind = Outcome::Kind::kSkipped;
    } catch (const DiskFull& error) {
      outcome_ = {Outcome::Kind::kDiskFull, ReasonOf(error), 0, {}};
    } catch (const std::exception& error) {
      outcome_ = {Outcome::Kind::kFailed, ReasonOf(error), 0, {}};
    }
    return outcome_;
  }

 private:
  // False when everything existed already.
  bool WriteForms(const Item& item) {
    const std::size_t slash = item.relative_path.rfind('/');
    const std::string name = item.relative_path.substr(slash == std::string::npos ? 0 : slash + 1);
    const Folder& folder =
        Open(item.relative_path.substr(0, slash == std::string::npos ? 0 : slash));
    std::vector<ExportForm> missing;
    for (const ExportForm form : forms_) {
      if (request_.force || !folder.Has(name + SuffixOf(form))) {
        missing.push_back(form);
      } else if (!request_.skip_existing) {
        throw std::runtime_error(request_.folder + "/" + item.relative_path + SuffixOf(form) +
                                 " is there already; --skip-existing or --force");
      }
    }
    if (missing.empty()) return false;
    const Object email = session_.Open(item);
    bool is_new = missing.size() == forms_.size();
    for (const ExportForm form : missing) {
      if (WriteForm(form, item, email, folder, name)) is_new = true;
    }
    return is_new;
  }

  // Opens the subfolder with this relative path. Caches the last one, because messages of one
  // folder follow each other.
  const Folder& Open(const std::string& relative_path) {
    if (relative_path.empty()) return top_;
    if (!current_ || current_path_ != relative_path) {
      std::optional<Folder> folder;
      for (std::string_view rest = relative_path; !rest.empty();) {
        const std::string name(rest.substr(0, rest.find('/')));
        folder.emplace((folder ? *folder : top_).Sub(name));
        rest.remove_prefix(std::min(rest.size(), name.size() + 1));
      }
      current_.swap(folder);
      current_path_ = relative_path;
    }
    return *current_;
  }

  // Writes one form of a message. False when the message has nothing in this form.
  bool WriteForm(ExportForm form, const Item& item, const Object& email, const Folder& folder,
                 const std::string& name) {
    const std::string file = name + SuffixOf(form);
    switch (form) {
      case ExportForm::kJson:
        folder.Write(file,
                     DocumentText(item.name, "message",
                                  MessageDocument(email, request_,
                                                  request_.files.value_or(FileForm::kNone))) +
                         "\n",
                     request_.force);
        return true;
      case ExportForm::kText:
        return WriteText(TextMember(email, "PlainText"), folder, file);
      case ExportForm::kHtml:
        return WriteText(TextMember(email, "HTMLText"), folder, file);
      case ExportForm::kFiles:
        break;
    }
    return WriteFiles(email, folder, file);
  }

  bool WriteText(const String& text, const Folder& folder, const std::string& file) const {
    if (text.IsNil()) return false;
    folder.Write(file, DataText(text), request_.force);
    return true;
  }

  bool WriteFiles(const Object& email, const Folder& folder, const std::string& name) {
    const MailReading reading(email);
    const AttachedFiles files(reading, request_.all);
    for (const AttachedFiles::Empty& file : files.empty()) {
      if (file.problem.empty()) {
        ++outcome_.empty;
      } else {
        outcome_.problems.push_back(file.name + ": " + file.problem);
      }
    }
    if (files.count() == 0) return false;
    if (folder.Has(name)) {  // files are replaced one by one; others in the folder stay
      WriteAll(files, folder.Sub(name));
      return true;
    }
    const std::string unfinished = UnfinishedName(name);
    folder.Remove(unfinished);  // left by a run that was killed
    try {
      WriteAll(files, folder.Sub(unfinished));
      folder.Rename(unfinished, name);
    } catch (...) {
      RemoveQuietly(folder, unfinished);
      throw;
    }
    return true;
  }

  void WriteAll(const AttachedFiles& files, const Folder& folder) {
    for (std::size_t i = 0; i < files.count(); ++i) {
      folder.Write(files.Name(i), files.Data(i).bytes(), request_.force);
      const std::string problem = files.Problem(i);
      if (!problem.empty()) outcome_.problems.push_back(problem);
    }
  }

  static void RemoveQuietly(const Folder& folder, const std::string& name) {
    try {
      folder.Remove(name);
    } catch (const std::runtime_error&) {  // the first failure matters more than this one
    }
  }

  const Session& session_;
  const Request& request_;
  const Folder top_;
  std::vector<ExportForm> forms_;
  std::optional<Folder> current_;
  std::string current_path_;
  Outcome outcome_;  // of the current message
};

// The hash is the same on every machine, so shards of several machines fit together.
bool IsInShard(const std::string& relative_path, const Shard& shard) {
  return base::Fnv(relative_path) % shard.count == shard.number - 1;
}

std::size_t SizeOf(const Item& item) {
  if (item.bytes) return item.bytes->size();
  struct stat status = {};
  return stat(item.path.c_str(), &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
}

// Counts outcomes, reports failures and displays the progress.
class Tally {
 public:
  explicit Tally(std::size_t total_bytes) : progress_(total_bytes) {}

  void Add(const Item& item, const Outcome& outcome) {
    switch (outcome.kind) {
      case Outcome::Kind::kWritten:
        ++written_;
        break;
      case Outcome::Kind::kSkipped:
        ++skipped_;
        break;
      case Outcome::Kind::kFailed:
        ++failed_;
        Complain(item.name + ": " + outcome.reason);
        break;
      case Outcome::Kind::kDiskFull:  // several processes may meet a full disk; report the first
        if (disk_full_.empty()) disk_full_ = item.name + ": " + outcome.reason;
        return;
    }
    for (const std::string& problem : outcome.problems) {
      has_problems_ = true;
      Complain(item.name + ": " + problem);
    }
    empty_ += outcome.empty;
    progress_.Add(SizeOf(item));
  }

  // Whether nothing more can be written.
  bool IsDiskFull() const { return !disk_full_.empty(); }

  void Say() const {
    std::string text = "exported " + Counted(written_, "message");
    if (skipped_ > 0) {
      text += ", " + Grouped(skipped_) + (skipped_ == 1 ? " was" : " were") + " there already";
    }
    if (failed_ > 0) text += ", " + Grouped(failed_) + " failed";
    if (IsDiskFull()) {
      Complain(disk_full_ + "; " + text);
      return;
    }
    if (empty_ > 0) {
      text += ", without " + Counted(empty_, "file") + " that " + (empty_ == 1 ? "has" : "have") +
              " no bytes";
    }
    const double seconds = std::max(progress_.passed().count(), 0.001);
    const double rate = static_cast<double>(written_ + skipped_ + failed_) / seconds;
    Complain(text + ", in " + DurationText(progress_.passed()) + " (" +
             Grouped(static_cast<std::size_t>(rate)) + " a second)");
  }

  bool all_good() const { return failed_ == 0 && !has_problems_ && !IsDiskFull(); }

 private:
  Progress progress_;
  std::size_t written_ = 0;
  std::size_t skipped_ = 0;
  std::size_t failed_ = 0;
  std::size_t empty_ = 0;
  bool has_problems_ = false;
  std::string disk_full_;  // the report of the first full disk
};

}  // namespace

int Export(const Session& session, const Request& request, Output*) {
  Exporter exporter(session, request);
  Tally tally(Progress::IsWanted() ? TotalBytes(request.source) / request.shard.count : 0);
  const auto hand_to = [&](const std::function<void(const Item&)>& use) {
    return ForEachChosen(session, request, [&](Item&& item) {
      if (IsInShard(item.relative_path, request.shard)) use(item);
      return !tally.IsDiskFull();
    });
  };
  bool all_read = false;
  if (request.jobs == 1) {
    all_read = hand_to([&](const Item& item) { tally.Add(item, exporter.Write(item)); });
  } else {
    Workers workers(
        request.jobs, [&](const Parcel& piece) { return ParcelOf(exporter.Write(ItemOf(piece))); },
        [&](const Parcel& piece, const Parcel& result) {
          tally.Add(ItemOf(piece), OutcomeOf(result));
        },
        [&](const Parcel& piece, const std::string& reason) {
          tally.Add(ItemOf(piece), {Outcome::Kind::kFailed, reason, 0, {}});
        });
    all_read = hand_to([&](const Item& item) { workers.Submit(ParcelOf(item)); });
    workers.Finish();
  }
  tally.Say();
  return all_read && tally.all_good() ? 0 : 1;
}

}  // namespace zqv::cli
