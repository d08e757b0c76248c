// Writes a file of charset tables (standin/charset_tables.h) by asking this machine's iconv:
//   make_charset_tables FILE CHARSET...
// It finds the characters of a charset by trying all bytes. When iconv calls a sequence incomplete,
// it tries all bytes after that sequence.
#include <iconv.h>
#include <locale.h>
#include <wctype.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "standin/charset_tables.h"

namespace zqv::standin {
namespace {

using Points = std::vector<std::uint32_t>;

[[noreturn]] void Fail(const std::string& what) {
  std::fprintf(stderr, "make_charset_tables: %s\n", what.c_str());
  std::exit(1);
}

// Converts in one direction between a charset and UTF-32.
class Converter {
 public:
  Converter(const std::string& from, const std::string& to)
      : handle_(iconv_open(to.c_str(), from.c_str())) {
    if (handle_ == reinterpret_cast<iconv_t>(-1)) Fail("no conversion from " + from + " to " + to);
  }
  ~Converter() { iconv_close(handle_); }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  enum class Answer { kWhole, kUnfinished, kRefused };

  // Converts `input`. output() returns the result.
  Answer Run(const std::string& input) {
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    char* in = const_cast<char*>(input.data());
    std::size_t in_left = input.size();
    char* out = buffer_;
    std::size_t out_left = sizeof buffer_;
    const std::size_t inexact = iconv(handle_, &in, &in_left, &out, &out_left);
    if (inexact == static_cast<std::size_t>(-1)) {
      return errno == EINVAL ? Answer::kUnfinished : Answer::kRefused;
    }
    if (inexact != 0) return Answer::kRefused;
    // Flushes a character that iconv holds back to combine it with the next one.
    iconv(handle_, nullptr, nullptr, &out, &out_left);
    output_.assign(buffer_, sizeof buffer_ - out_left);
    return Answer::kWhole;
  }
  const std::string& output() const { return output_; }
  Points points() const {
    Points points(output_.size() / 4);
    if (!points.empty()) std::memcpy(points.data(), output_.data(), output_.size());
    return points;
  }

 private:
  iconv_t handle_;
  char buffer_[64];
  std::string output_;
};

std::uint32_t NumberOf(const std::string& bytes) {
  std::uint32_t number = 0;
  for (const char c : bytes) number = number << 8U | static_cast<unsigned char>(c);
  return number;
}

// Joins consecutive entries into runs. Entries must be added in ascending order.
class Runs {
 public:
  void Add(std::uint32_t length, std::uint32_t key, const Points& values, std::uint32_t size) {
    if (values.size() > kMostPoints) Fail("a character of too many code points");
    if (!runs_.empty() && Continues(runs_.back(), length, key, values, size)) {
      ++runs_.back().count;
      return;
    }
    Run run = {length, key, 1, size, {}};
    std::copy(values.begin(), values.end(), run.values);
    runs_.push_back(run);
  }
  void Sort() {
    std::stable_sort(runs_.begin(), runs_.end(), [](const Run& a, const Run& b) {
      return a.length != b.length ? a.length < b.length : a.key < b.key;
    });
  }
  const std::vector<Run>& runs() const { return runs_; }

 private:
  static bool Continues(const Run& run, std::uint32_t length, std::uint32_t key,
                        const Points& values, std::uint32_t size) {
    return values.size() == 1 && run.length == length && run.key + run.count == key &&
           run.size == size && run.values[0] + run.count == values[0];
  }

  std::vector<Run> runs_;
};

class File {
 public:
  explicit File(const char* name) : file_(name, std::ios::binary) {
    file_.write(kTableMagic, sizeof kTableMagic);
  }
  void Write(const std::string& charset, const std::string& state, TableKind kind,
             const Runs& runs) {
    Table table = {};
    if (charset.size() >= sizeof table.charset || state.size() >= sizeof table.state) {
      Fail("a name is too long");
    }
    std::memcpy(table.charset, charset.data(), charset.size());
    std::memcpy(table.state, state.data(), state.size());
    table.kind = kind;
    table.runs = static_cast<std::uint32_t>(runs.runs().size());
    file_.write(reinterpret_cast<const char*>(&table), sizeof table);
    file_.write(reinterpret_cast<const char*>(runs.runs().data()),
                static_cast<std::streamsize>(runs.runs().size() * sizeof(Run)));
  }
  bool Close() {
    file_.close();
    return file_.good();
  }

 private:
  std::ofstream file_;
};

// The sequence of bytes that switches to a state; null for a charset without states.
using State = const std::string*;

// Finds all characters that begin with `bytes`, in this state.
void FindCharacters(Converter* converter, State state, const std::string& bytes, Runs* runs) {
  for (int last = 0; last < 256; ++last) {
    const std::string tried = bytes + static_cast<char>(last);
    if (state != nullptr && std::strchr("\x1B\x0E\x0F", tried[0]) != nullptr && tried[0] != '\0') {
      continue;  // switches to another state
    }
    const Converter::Answer answer = converter->Run(state != nullptr ? *state + tried : tried);
    if (answer == Converter::Answer::kWhole && !converter->output().empty()) {
      runs->Add(static_cast<std::uint32_t>(tried.size()), NumberOf(tried), converter->points(),
                static_cast<std::uint32_t>(converter->points().size()));
    } else if (answer == Converter::Answer::kUnfinished && tried.size() < 4) {
      FindCharacters(converter, state, tried, runs);
    }
  }
}

// Finds sequences of characters, such as a letter and its accent, whose code points differ from the
// code points of the single characters.
void FindCompositions(Converter* converter, const std::string& first, Runs* runs) {
  if (converter->Run(first) != Converter::Answer::kWhole) return;
  const Points before = converter->points();
  for (int last = 0x80; last < 256; ++last) {
    const std::string single(1, static_cast<char>(last));
    if (converter->Run(single) != Converter::Answer::kWhole) continue;
    Points apart = before;
    const Points after = converter->points();
    apart.insert(apart.end(), after.begin(), after.end());
    if (converter->Run(first + single) != Converter::Answer::kWhole) continue;
    const Points together = converter->points();
    if (together == apart) continue;
    const auto length = static_cast<std::uint32_t>(first.size() + 1);
    runs->Add(length, NumberOf(first + single), together,
              static_cast<std::uint32_t>(together.size()));
    if (first.size() < 3) FindCompositions(converter, first + single, runs);
  }
}

void WriteStateless(const std::string& charset, File* file) {
  Converter decoder(charset, "UTF-32LE");
  Runs decoded;
  FindCharacters(&decoder, nullptr, "", &decoded);
  if (decoded.runs().empty()) Fail("nothing is read in " + charset);
  const bool has_single_bytes_only = decoded.runs().back().length == 1;
  for (int first = 0; has_single_bytes_only && first < 256; ++first) {
    FindCompositions(&decoder, std::string(1, static_cast<char>(first)), &decoded);
  }
  decoded.Sort();
  file->Write(charset, "", TableKind::kDecode, decoded);

  Converter encoder("UTF-32LE", charset);
  Runs encoded;
  for (std::uint32_t point = 0; point < 0x110000; ++point) {
    const std::string raw(reinterpret_cast<const char*>(&point), sizeof point);
    if (encoder.Run(raw) != Converter::Answer::kWhole || encoder.output().size() > 4) continue;
    encoded.Add(4, point, {NumberOf(encoder.output())},
                static_cast<std::uint32_t>(encoder.output().size()));
  }
  file->Write(charset, "", TableKind::kEncode, encoded);
}

// A shift to a state: the sequence within a text, and the sequence at the start of a text.
struct Shift {
  std::string bytes;
  std::string from_start;
};

struct Stateful {
  const char* charset;
  std::vector<Shift> shifts;  // the first is the initial state
};

std::vector<Shift> Plain(const std::vector<std::string>& sequences) {
  std::vector<Shift> shifts;
  for (const std::string& sequence : sequences) shifts.push_back({sequence, sequence});
  return shifts;
}

const std::vector<Stateful>& StatefulCharsets() {
  static const std::vector<Stateful> kAll = {
      {"ISO-2022-JP", Plain({"", "\x1B(B", "\x1B(J", "\x1B$@", "\x1B$B"})},
      {"ISO-2022-JP-2",
       Plain({"", "\x1B(B", "\x1B(J", "\x1B$@", "\x1B$B", "\x1B$A", "\x1B$(C", "\x1B$(D"})},
      {"ISO-2022-JP-3", Plain({"", "\x1B(B", "\x1B(J", "\x1B(I", "\x1B$@", "\x1B$B", "\x1B$(O",
                               "\x1B$(P", "\x1B$(Q"})},
      {"ISO-2022-KR",
       {{"", ""}, {"\x1B$)C", "\x1B$)C"}, {"\x0E", "\x1B$)C\x0E"}, {"\x0F", "\x1B$)C\x0F"}}},
  };
  return kAll;
}

bool WriteStateful(const std::string& charset, File* file) {
  for (const Stateful& row : StatefulCharsets()) {
    if (charset != row.charset) continue;
    Converter decoder(charset, "UTF-32LE");
    for (const Shift& shift : row.shifts) {
      Runs decoded;
      FindCharacters(&decoder, &shift.from_start, "", &decoded);
      decoded.Sort();
      file->Write(charset, shift.bytes, TableKind::kDecode, decoded);
    }
    return true;
  }
  return false;
}

void WriteFolding(File* file) {
  locale_t const locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (locale == nullptr) Fail("this machine lacks the locale C.UTF-8");
  Runs runs;
  for (std::uint32_t point = 0; point < 0x110000; ++point) {
    const auto small = static_cast<std::uint32_t>(towlower_l(point, locale));
    if (small != point) runs.Add(4, point, {small}, 1);
  }
  file->Write("", "", TableKind::kFoldCase, runs);
}

}  // namespace
}  // namespace zqv::standin

int main(int count, char** arguments) {
  if (count < 3) zqv::standin::Fail("usage: make_charset_tables FILE CHARSET...");
  zqv::standin::File file(arguments[1]);
  for (int i = 2; i < count; ++i) {
    if (!zqv::standin::WriteStateful(arguments[i], &file)) {
      zqv::standin::WriteStateless(arguments[i], &file);
    }
  }
  zqv::standin::WriteFolding(&file);
  if (!file.Close()) zqv::standin::Fail("the file cannot be written");
}
