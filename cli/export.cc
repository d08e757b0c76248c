// `zqv export`: many messages into a folder.
//
// Each message is written under its place below the folder: "Mail/2024/letter.eml" becomes
// "Mail/2024/letter.eml.json", .txt, .html, and a folder "letter.eml.files" of what is attached.
// Nothing is there by halves: files appear whole, and a folder of files gets its name when all of
// them are in it. What goes wrong with one message is said and does not stop the others.
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

// What became of a message.
struct Outcome {
  enum class Kind : char {
    kWritten = 'w',
    kSkipped = 's',  // all was there already
    kFailed = 'f',
    kDiskFull = 'd',  // so will be what comes
  };
  Kind kind = Kind::kWritten;
  std::string reason;                 // of what failed
  std::size_t empty = 0;              // files without a byte, which were not written
  std::vector<std::string> problems;  // what keeps files from being those that were sent
};

// As another process hands it over, and back.
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

// Writes messages into the folder.
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

  // Never throws for what is wrong with a message or with the folder.
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
  // False when everything that there is to write was there already.
  bool WriteForms(const Item& item) {
    const std::size_t slash = item.place.rfind('/');
    const std::string name = item.place.substr(slash == std::string::npos ? 0 : slash + 1);
    const Folder& folder = Open(item.place.substr(0, slash == std::string::npos ? 0 : slash));
    std::vector<ExportForm> missing;
    for (const ExportForm form : forms_) {
      if (request_.force || !folder.Has(name + SuffixOf(form))) {
        missing.push_back(form);
      } else if (!request_.skip_existing) {
        throw std::runtime_error(request_.folder + "/" + item.place + SuffixOf(form) +
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

  // The folder below the top. One at a time is kept: messages come folder by folder.
  const Folder& Open(const std::string& place) {
    if (place.empty()) return top_;
    if (!current_ || current_place_ != place) {
      std::optional<Folder> folder;
      for (std::string_view rest = place; !rest.empty();) {
        const std::string name(rest.substr(0, rest.find('/')));
        folder.emplace((folder ? *folder : top_).Sub(name));
        rest.remove_prefix(std::min(rest.size(), name.size() + 1));
      }
      current_.swap(folder);
      current_place_ = place;
    }
    return *current_;
  }

  // False when the message has nothing of this form.
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
    if (folder.Has(name)) {  // replaced one by one: whatever else is in there stays
      WriteAll(files, folder.Sub(name));
      return true;
    }
    const std::string unfinished = UnfinishedName(name);
    folder.Remove(unfinished);  // of a run that was killed
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
    } catch (const std::runtime_error&) {  // what went wrong before matters more
    }
  }

  const Session& session_;
  const Request& request_;
  const Folder top_;
  std::vector<ExportForm> forms_;
  std::optional<Folder> current_;
  std::string current_place_;
  Outcome outcome_;  // of the message that is written
};

// The hash of a place is the same on every machine.
bool IsInShard(const std::string& place, const Shard& shard) {
  return base::Fnv(place) % shard.count == shard.number - 1;
}

std::size_t SizeOf(const Item& item) {
  if (item.bytes) return item.bytes->size();
  struct stat status = {};
  return stat(item.path.c_str(), &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
}

// What became of the messages.
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
      case Outcome::Kind::kDiskFull:  // processes side by side find out one after the other
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

  // Whether no more can be written.
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
  std::string disk_full_;  // what failed for that first
};

}  // namespace

int Export(const Session& session, const Request& request, Output*) {
  Exporter exporter(session, request);
  Tally tally(Progress::IsWanted() ? TotalBytes(request.source) / request.shard.count : 0);
  const auto hand_to = [&](const std::function<void(const Item&)>& use) {
    return ForEachChosen(session, request, [&](Item&& item) {
      if (IsInShard(item.place, request.shard)) use(item);
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
    all_read = hand_to([&](const Item& item) { workers.Give(ParcelOf(item)); });
    workers.Finish();
  }
  tally.Say();
  return all_read && tally.all_good() ? 0 : 1;
}

}  // namespace zqv::cli
