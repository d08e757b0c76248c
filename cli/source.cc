#include "cli/source.h"

#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <initializer_list>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "cli/descriptor.h"
#include "cli/file_name.h"
#include "cli/mbox.h"
#include "cli/output.h"

namespace zqv::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTooLarge = "larger than 2 GB, which is more than a host string holds";

// Enough for a separator line; most messages are then read by the library itself.
using FirstBytes = std::array<char, 1024>;
using Block = std::array<char, 65536>;

// An opened file, or standard input, which stays open.
class File {
 public:
  explicit File(const std::string& path)
      : own_(path == kStandardInput ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC)),
        number_(path == kStandardInput ? STDIN_FILENO : own_.number()) {
    if (number_ < 0) Fail();
  }

  // Throws for a plain file that is larger than what a message may be.
  void RefuseTooLarge() const {
    struct stat status = {};
    if (fstat(number_, &status) == 0 && S_ISREG(status.st_mode) &&
        static_cast<std::size_t>(status.st_size) > kMostMessageBytes) {
      throw std::runtime_error(kTooLarge);
    }
  }

  // As many bytes as `buffer` holds, fewer only at the end.
  template <std::size_t kSize>
  std::string_view Read(std::array<char, kSize>* buffer) const {
    std::size_t size = 0;
    while (size < buffer->size()) {
      const ssize_t got = read(number_, buffer->data() + size, buffer->size() - size);
      if (got == 0) break;
      if (got > 0) {
        size += static_cast<std::size_t>(got);
      } else if (errno != EINTR) {
        Fail();
      }
    }
    return {buffer->data(), size};
  }

 private:
  [[noreturn]] static void Fail() {
    throw std::runtime_error(std::generic_category().message(errno));
  }

  const Descriptor own_;
  const int number_;
};

// Begins with what was read already.
std::string ReadRest(const File& file, std::string_view start) {
  Block buffer{};
  std::string bytes(start);
  while (true) {
    const std::string_view block = file.Read(&buffer);
    if (block.empty()) return bytes;
    if (bytes.size() + block.size() > kMostMessageBytes) throw std::runtime_error(kTooLarge);
    bytes += block;
  }
}

std::string_view FirstLine(std::string_view text) {
  std::string_view line = text.substr(0, text.find('\n'));
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

// The last name in a path, also of "." and "a/".
std::string BaseName(const std::string& path) {
  if (path == kStandardInput) return "stdin";
  std::error_code error;
  fs::path name = fs::path(path).filename();
  if (name.empty() || name == "." || name == "..") {
    name = fs::weakly_canonical(path, error).filename();
    if (name.empty()) name = fs::weakly_canonical(path, error).parent_path().filename();
  }
  return name.empty() ? "root" : name.string();
}

std::string Padded(std::size_t number) {
  constexpr std::size_t kDigits = 6;
  const std::string digits = std::to_string(number);
  return std::string(kDigits - std::min(digits.size(), kDigits), '0') + digits;
}

std::string Join(const std::string& folder, const std::string& name) {
  return folder + (folder.back() == '/' ? "" : "/") + name;
}

bool IsHidden(const std::string& name) { return name.front() == '.'; }

bool IsMaildir(const std::string& path) {
  std::error_code error;
  return fs::is_directory(fs::path(path) / "cur", error) &&
         fs::is_directory(fs::path(path) / "new", error);
}

bool IsIncluded(const std::vector<std::string>& patterns, const std::string& name) {
  return patterns.empty() ||
         std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
           return fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
         });
}

struct Listing {
  std::vector<std::string> files;
  std::vector<std::string> folders;
};

// In the order of the names. Throws std::filesystem::filesystem_error.
Listing ListFolder(const std::string& path) {
  Listing listing;
  for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
    std::error_code error;  // a link that leads nowhere is neither
    std::string name = entry.path().filename().string();
    if (entry.is_regular_file(error)) {
      if (!IsHidden(name)) listing.files.push_back(std::move(name));
    } else if (entry.is_directory(error) && !entry.is_symlink(error)) {
      if (!IsHidden(name) || IsMaildir(entry.path())) listing.folders.push_back(std::move(name));
    }
  }
  std::sort(listing.files.begin(), listing.files.end());
  std::sort(listing.folders.begin(), listing.folders.end());
  return listing;
}

void RemoveNames(std::initializer_list<std::string_view> unwanted,
                 std::vector<std::string>* names) {
  const auto is_unwanted = [&](const std::string& name) {
    return std::find(unwanted.begin(), unwanted.end(), name) != unwanted.end();
  };
  names->erase(std::remove_if(names->begin(), names->end(), is_unwanted), names->end());
}

// What a walk does with a file; false ends it.
using VisitFile = std::function<bool(const std::string& path, const std::string& place)>;

// Finds the files. Those that are not in folders need not exist.
class Walk {
 public:
  Walk(const SourceOptions& options, const VisitFile& visit, bool is_silent)
      : options_(options), visit_(visit), is_silent_(is_silent) {}

  bool Run() {
    FileNames places;
    for (const std::string& input : options_.inputs) {
      if (!goes_on_) break;
      const std::string place = places.Take(BaseName(input));
      std::error_code error;
      if (input == kStandardInput || !fs::is_directory(input, error)) {
        goes_on_ = visit_(input, place);
      } else if (options_.recursive || IsMaildir(input)) {
        WalkFolder(input, place);
      } else {
        Say(input, "is a folder; --recursive reads what is in it");
      }
    }
    return all_good_;
  }

 private:
  // As deep as folders nest.
  void WalkFolder(const std::string& path, const std::string& place) {
    Listing listing = List(path);
    if (IsMaildir(path)) {
      for (const char* const box : {"new", "cur"}) {
        WalkFiles(Join(path, box), Join(place, box), List(Join(path, box)).files);
      }
      RemoveNames({"cur", "new", "tmp"}, &listing.folders);
    } else {
      WalkFiles(path, place, std::exchange(listing.files, {}));
    }
    if (!options_.recursive) return;
    for (const std::string& name : listing.folders) {
      if (!goes_on_) return;
      WalkFolder(Join(path, name), Join(place, name));
    }
  }

  void WalkFiles(const std::string& path, const std::string& place,
                 const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      if (!goes_on_) return;
      if (!IsIncluded(options_.include, name)) continue;
      goes_on_ = visit_(Join(path, name), Join(place, name));
    }
  }

  Listing List(const std::string& path) {
    try {
      return ListFolder(path);
    } catch (const fs::filesystem_error& error) {
      Say(path, error.code().message());
      return {};
    }
  }

  void Say(const std::string& path, const std::string& reason) {
    if (!is_silent_) Complain(path + ": " + reason);
    all_good_ = false;
  }

  const SourceOptions& options_;
  const VisitFile& visit_;
  const bool is_silent_;
  bool goes_on_ = true;
  bool all_good_ = true;
};

// Gives the messages of a file.
class Reader {
 public:
  Reader(InputForm form, const VisitItem& visit) : form_(form), visit_(visit) {}

  bool all_good() const { return all_good_; }

  // False when the visitor wants no more.
  bool Read(const std::string& path, const std::string& place) {
    try {
      return ReadFile(path, place);
    } catch (const std::runtime_error& error) {
      Complain(path + ": " + error.what());
      all_good_ = false;
      return true;
    }
  }

 private:
  bool ReadFile(const std::string& path, const std::string& place) {
    struct stat status = {};
    const bool is_input = path == kStandardInput;
    const bool is_plain = !is_input && stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    const bool is_pipe = is_input || (!is_plain && status.st_mode != 0);
    // The library itself says what is wrong with a file that it cannot read.
    if (!is_pipe && (!is_plain || access(path.c_str(), R_OK) != 0)) {
      return visit_({path, place, path, std::nullopt});
    }
    const File file(path);
    FirstBytes first{};
    const std::string_view start = file.Read(&first);
    const bool is_mailbox = IsMboxSeparator(FirstLine(start));
    if (form_ == InputForm::kMbox && !is_mailbox) {
      throw std::runtime_error("does not begin with the From line of an mbox file");
    }
    if (form_ != InputForm::kMessage && is_mailbox) return ReadMailbox(file, start, path, place);
    if (is_pipe) return visit_({path, place, path, ReadRest(file, start)});
    file.RefuseTooLarge();
    return visit_({path, place, path, std::nullopt});
  }

  bool ReadMailbox(const File& file, std::string_view start, const std::string& path,
                   const std::string& place) {
    std::size_t number = 0;
    MboxSplitter splitter([&](std::string&& message) {
      const std::string name = path + "#" + std::to_string(++number);
      if (message.size() > kMostMessageBytes) {
        Complain(name + ": " + kTooLarge);
        all_good_ = false;
        return true;
      }
      return visit_({name, place + "/" + Padded(number), path, std::move(message)});
    });
    Block buffer{};
    bool goes_on = splitter.Add(start);
    while (goes_on) {
      const std::string_view block = file.Read(&buffer);
      if (block.empty()) break;
      goes_on = splitter.Add(block);
    }
    return goes_on && splitter.Finish();
  }

  const InputForm form_;
  const VisitItem& visit_;
  bool all_good_ = true;
};

}  // namespace

bool ForEachItem(const SourceOptions& options, const VisitItem& visit) {
  Reader reader(options.form, visit);
  const VisitFile read = [&](const std::string& path, const std::string& place) {
    return reader.Read(path, place);
  };
  const bool walked = Walk(options, read, false).Run();
  return walked && reader.all_good();
}

std::size_t TotalBytes(const SourceOptions& options) {
  std::size_t total = 0;
  const VisitFile add = [&](const std::string& path, const std::string&) {
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
      total += static_cast<std::size_t>(status.st_size);
    }
    return true;
  };
  Walk(options, add, true).Run();
  return total;
}

std::string ReadBytes(const std::string& file) {
  const File opened(file);
  opened.RefuseTooLarge();
  return ReadRest(opened, {});
}

}  // namespace zqv::cli
