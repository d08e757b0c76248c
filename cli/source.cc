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

#include "cli/containers.h"
#include "cli/descriptor.h"
#include "cli/file_kind.h"
#include "cli/file_name.h"
#include "cli/mbox.h"
#include "cli/output.h"

namespace zqv::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTooLarge = "larger than 2 GB, which is more than a host string holds";

// Enough to recognise a separator line and the kinds of files. Most messages are then read by the
// library itself.
using FirstBytes = std::array<char, 1024>;
using Block = std::array<char, 65536>;

// An open file, or standard input, which is not closed.
class File {
 public:
  explicit File(const std::string& path)
      : own_(path == kStandardInput ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC)),
        number_(path == kStandardInput ? STDIN_FILENO : own_.number()) {
    if (number_ < 0) Fail();
  }

  // Throws when a regular file is larger than a message may be.
  void RefuseTooLarge() const {
    struct stat status = {};
    if (fstat(number_, &status) == 0 && S_ISREG(status.st_mode) &&
        static_cast<std::size_t>(status.st_size) > kMostMessageBytes) {
      throw std::runtime_error(kTooLarge);
    }
  }

  // Fills `buffer`. Returns fewer bytes only at the end of the file.
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

// Reads the rest of a file. `start` contains the bytes that were read already; the result begins
// with them.
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

// Returns the last name in a path, also for "." and "a/".
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

// Lists the files and folders in a folder, sorted by name. Throws
// std::filesystem::filesystem_error.
Listing ListFolder(const std::string& path) {
  Listing listing;
  for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
    std::error_code error;  // a broken link is neither a file nor a folder
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

// Receives each file that is found. Returns false to stop.
using VisitFile = std::function<bool(const std::string& path, const std::string& relative_path)>;

// Finds the files of all inputs. Inputs need not exist.
class Walk {
 public:
  Walk(const SourceOptions& options, const VisitFile& visit, bool is_silent)
      : options_(options), visit_(visit), is_silent_(is_silent) {}

  bool Run() {
    FileNames relative_paths;
    for (const std::string& input : options_.inputs) {
      if (!goes_on_) break;
      const std::string relative_path = relative_paths.Take(BaseName(input));
      std::error_code error;
      if (input == kStandardInput || !fs::is_directory(input, error)) {
        goes_on_ = visit_(input, relative_path);
      } else if (options_.recursive || IsMaildir(input)) {
        WalkFolder(input, relative_path);
      } else {
        Say(input, "is a folder; --recursive reads what is in it");
      }
    }
    return all_good_;
  }

 private:
  // Recursive: folders are nested less deeply than the stack allows.
  void WalkFolder(const std::string& path, const std::string& relative_path) {
    Listing listing = List(path);
    if (IsMaildir(path)) {
      for (const char* const box : {"new", "cur"}) {
        WalkFiles(Join(path, box), Join(relative_path, box), List(Join(path, box)).files);
      }
      RemoveNames({"cur", "new", "tmp"}, &listing.folders);
    } else {
      WalkFiles(path, relative_path, std::exchange(listing.files, {}));
    }
    if (!options_.recursive) return;
    for (const std::string& name : listing.folders) {
      if (!goes_on_) return;
      WalkFolder(Join(path, name), Join(relative_path, name));
    }
  }

  void WalkFiles(const std::string& path, const std::string& relative_path,
                 const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      if (!goes_on_) return;
      if (!IsIncluded(options_.include, name)) continue;
      goes_on_ = visit_(Join(path, name), Join(relative_path, name));
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

// A file that is being read: its first bytes, and a function that returns the rest.
struct Contents {
  std::string name;           // for a reader
  std::string relative_path;  // as in Item
  std::string path;           // of the file, or of the archive that contains it
  std::string_view start;
  NextBlock rest;
  bool is_plain_file = false;  // the library can read it itself by its path
};

// The file is not a message. Inside a folder or archive this is not a failure.
class NotAMessage : public std::runtime_error {
 public:
  explicit NotAMessage(const std::string& what) : std::runtime_error("is no message but " + what) {}
};

// Makes a safe relative path of a name in an archive.
std::string SafeRelativePath(const std::string& name) {
  std::string relative_path;
  for (std::string_view rest = name; !rest.empty();) {
    const std::string_view part = rest.substr(0, rest.find('/'));
    rest.remove_prefix(std::min(rest.size(), part.size() + 1));
    if (!part.empty() && part != "." && part != "..") {
      relative_path += (relative_path.empty() ? "" : "/") + CleanFileName(part);
    }
  }
  return relative_path.empty() ? "file" : relative_path;
}

// Whether a file in an archive is hidden, or was added by the system that made the archive.
bool IsHiddenThere(const std::string& name) {
  constexpr std::string_view kOfTheSystem = "__MACOSX/";
  if (name.compare(0, kOfTheSystem.size(), kOfTheSystem) == 0) return true;
  for (std::string_view rest = name; !rest.empty();) {
    const std::string_view part = rest.substr(0, rest.find('/'));
    rest.remove_prefix(std::min(rest.size(), part.size() + 1));
    if (part.substr(0, 1) == "." && part != "." && part != "..") return true;
  }
  return false;
}

// Reads the messages in files.
class Reader {
 public:
  Reader(const SourceOptions& options, const VisitItem& visit) : options_(options), visit_(visit) {}

  bool all_good() const { return all_good_; }
  // The number of files that are not messages.
  std::size_t refused() const { return refused_; }

  // Reads one file. False once the visitor has returned false.
  bool Read(const std::string& path, const std::string& relative_path) {
    return Guarded(path, relative_path, [&] { return ReadFile(path, relative_path); });
  }

 private:
  // Returns the result of `read`. An exception is reported and does not stop the iteration. A file
  // that is not a message counts as a failure only if it is an input itself.
  template <typename ReadOne>
  bool Guarded(const std::string& name, const std::string& relative_path, ReadOne read) {
    try {
      return read();
    } catch (const NotAMessage& error) {
      Complain(name + ": " + ReasonOf(error));
      ++refused_;
      if (relative_path.find('/') != std::string::npos) return true;
    } catch (const std::runtime_error& error) {
      Complain(name + ": " + ReasonOf(error));
    }
    all_good_ = false;
    return true;
  }

  bool ReadFile(const std::string& path, const std::string& relative_path) {
    struct stat status = {};
    const bool is_input = path == kStandardInput;
    const bool is_plain = !is_input && stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    const bool is_pipe = is_input || (!is_plain && status.st_mode != 0);
    // Files that cannot be read are passed on, since the library reports the reason.
    if (!is_pipe && (!is_plain || access(path.c_str(), R_OK) != 0)) {
      return visit_({path, relative_path, path, std::nullopt});
    }
    const File file(path);
    FirstBytes first{};
    const std::string_view start = file.Read(&first);
    Block buffer{};
    const NextBlock rest = [&]() -> std::string_view { return file.Read(&buffer); };
    const bool is_container = options_.form == InputForm::kAuto && IsContainer(start);
    if (is_container) return ReadContainer({path, relative_path, path, start, rest, false});
    if (!is_pipe && !IsMboxSeparator(FirstLine(start))) file.RefuseTooLarge();
    return ReadContents({path, relative_path, path, start, rest, !is_pipe});
  }

  bool ReadContents(const Contents& contents) {
    const bool is_mailbox = IsMboxSeparator(FirstLine(contents.start));
    if (options_.form == InputForm::kMbox && !is_mailbox) {
      throw std::runtime_error("does not begin with the From line of an mbox file");
    }
    if (options_.form != InputForm::kMessage && is_mailbox) return ReadMailbox(contents);
    const std::string_view emlx_start = MessageInEmlx(contents.start);
    if (options_.form == InputForm::kAuto && emlx_start.data() != nullptr &&
        WhyNotAMessage(emlx_start).empty()) {
      const std::string file = ReadAll(contents);
      return Visit(contents, std::string(MessageInEmlx(file)));
    }
    if (options_.form == InputForm::kAuto) {
      const std::string why = WhyNotAMessage(contents.start);
      if (!why.empty()) throw NotAMessage(why);
    }
    if (contents.is_plain_file) {
      return visit_({contents.name, contents.relative_path, contents.path, std::nullopt});
    }
    return Visit(contents, ReadAll(contents));
  }

  bool Visit(const Contents& contents, std::string bytes) {
    return visit_({contents.name, contents.relative_path, contents.path, std::move(bytes)});
  }

  static std::string ReadAll(const Contents& contents) {
    std::string bytes(contents.start);
    while (true) {
      const std::string_view block = contents.rest();
      if (block.empty()) return bytes;
      if (bytes.size() + block.size() > kMostMessageBytes) throw std::runtime_error(kTooLarge);
      bytes += block;
    }
  }

  bool ReadContainer(const Contents& outer) {
    std::string_view start = outer.start;
    Container container([&] { return start.empty() ? outer.rest() : std::exchange(start, {}); });
    FileNames relative_paths;
    bool goes_on = true;
    while (goes_on && container.Next()) {
      Contents inner = outer;
      if (!container.name().empty()) {
        const std::string relative_path = SafeRelativePath(container.name());
        const std::string base = relative_path.substr(relative_path.rfind('/') + 1);
        if (IsHiddenThere(container.name()) || !IsIncluded(options_.include, base)) continue;
        inner.name += "/" + container.name();
        inner.relative_path += "/" + relative_paths.Take(relative_path);
      }
      goes_on =
          Guarded(inner.name, inner.relative_path, [&] { return ReadInner(&container, inner); });
    }
    return goes_on;
  }

  bool ReadInner(Container* container, Contents contents) {
    const std::size_t wanted = FirstBytes().size();
    std::string start;
    while (start.size() < wanted) {
      const std::string_view block = container->Block();
      if (block.empty()) break;
      start += block;
    }
    if (IsContainer(start)) throw NotAMessage("an archive within another file");
    contents.start = start;
    contents.rest = [container] { return container->Block(); };
    return ReadContents(contents);
  }

  bool ReadMailbox(const Contents& contents) {
    std::size_t number = 0;
    MboxSplitter splitter([&](std::string&& message) {
      const std::string name = contents.name + "#" + std::to_string(++number);
      if (message.size() > kMostMessageBytes) {
        Complain(name + ": " + kTooLarge);
        all_good_ = false;
        return true;
      }
      return visit_(
          {name, contents.relative_path + "/" + Padded(number), contents.path, std::move(message)});
    });
    bool goes_on = splitter.Add(contents.start);
    while (goes_on) {
      const std::string_view block = contents.rest();
      if (block.empty()) break;
      goes_on = splitter.Add(block);
    }
    return goes_on && splitter.Finish();
  }

  const SourceOptions& options_;
  const VisitItem& visit_;
  bool all_good_ = true;
  std::size_t refused_ = 0;
};

}  // namespace

bool ForEachItem(const SourceOptions& options, const VisitItem& visit) {
  Reader reader(options, visit);
  const VisitFile read = [&](const std::string& path, const std::string& relative_path) {
    return reader.Read(path, relative_path);
  };
  const bool walked = Walk(options, read, false).Run();
  if (reader.refused() > 1) {
    Complain(std::to_string(reader.refused()) + " files are no messages");
  }
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

std::string ReadStart(const std::string& file, std::size_t most) {
  const Descriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC));
  std::string bytes(opened.number() < 0 ? 0 : most, '\0');
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t got = read(opened.number(), bytes.data() + size, bytes.size() - size);
    if (got <= 0) break;
    size += static_cast<std::size_t>(got);
  }
  bytes.resize(size);
  return bytes;
}

std::string ReadBytes(const std::string& file) {
  const File opened(file);
  opened.RefuseTooLarge();
  return ReadRest(opened, {});
}

}  // namespace zqv::cli
