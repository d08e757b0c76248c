// Calls in any order. An input is a program of an application that makes objects of every class,
// calls constructors with valid and invalid arguments, reads members, keeps and releases objects,
// and sets the switches. Entry points of the host fail at times. The library must not crash, leak
// or throw a C++ exception; the stand-in host checks this.
//
// ZQV_FUZZ_HOST selects the host: 0 or unset means a complete one; from any other number version,
// missing entry points and memory layout are derived. The library caches what it finds in its host
// for the life of the process, so a process has one host. Starting a process for each input would
// hide from libFuzzer which code an input reaches.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "abi/encodings.h"
#include "fuzz/alphabet.h"
#include "fuzz/session.h"
#include "fuzz/target.h"
#include "standin/application.h"
#include "standin/host.h"

namespace zqv::fuzz {
namespace {

using standin::Object;
using standin::Value;

constexpr const char* kEntryPoints[] = {
#define ZQV_ENTRY_POINT(name, result, arguments, ownership) #name,
#include "abi/entry_points.def"
};

// Entry points that never fail here; the interface tests let each of them fail. Without classes
// nothing can be called. A host that cannot lock or unlock never frees anything. In a host without
// upper bounds the library inserts out of bounds, for which the stand-in ends the process.
constexpr std::string_view kNeverFaulty[] = {
    "PluginRegisterClass", "REALLockObject", "REALUnlockObject",       "REALLockString",
    "REALUnlockString",    "RuntimeUBound",  "PluginDisposeStringData"};

bool MayFail(std::string_view name) {
  return std::find(std::begin(kNeverFaulty), std::end(kNeverFaulty), name) ==
         std::end(kNeverFaulty);
}

constexpr const char* kClasses[] = {"MimeEmailZQV",       "MimeEntityZQV",  "MimeBodyZQV",
                                    "MimeHeaderZQV",      "MimeMailboxZQV", "MimeGroupZQV",
                                    "MimeFieldZQV",       "MimeAddressZQV", "MimeMailboxListZQV",
                                    "MimeAddressListZQV", "Date",           "MimeAttachmentZQV"};

// Reads the bytes of an input as numbers. After the last byte all numbers are 0.
class Numbers {
 public:
  explicit Numbers(std::string_view bytes) : bytes_(bytes) {}

  bool AtEnd() const { return bytes_.empty(); }
  std::size_t Below(std::size_t end) { return Byte() % end; }
  bool Chance() { return Byte() % 2 == 0; }

  template <typename T, std::size_t kSize>
  const T& Of(const T (&items)[kSize]) {
    return items[Below(kSize)];
  }

  // The next number, times four, is the length of the text, which may be cut by the end of the
  // input.
  std::string_view Text() {
    const std::size_t wanted = Byte() * 4;
    const std::size_t length = std::min(bytes_.size(), wanted);
    const std::string_view text = bytes_.substr(0, length);
    bytes_.remove_prefix(length);
    return text;
  }

 private:
  std::size_t Byte() {
    if (bytes_.empty()) return 0;
    const auto byte = static_cast<unsigned char>(bytes_.front());
    bytes_.remove_prefix(1);
    return byte;
  }

  std::string_view bytes_;
};

// clang-format off
constexpr std::string_view kMessagePieces[] = {
    "Subject: =?utf-8?Q?Caf=C3=A9?=\n", "From: Ada <a@b>, c@d\n", "To: G: a@b, c@d;, e@f\n",
    "Date: Tue, 1 Jan 2019 10:00:00 +0200\n", "Received: x; Tue, 1 Jan 2019 10:00:00 +0200\n",
    "Content-Type: multipart/mixed; boundary=b\n\n--b\n", "\n--b\n", "\n--b--\n", "\n", "\n\n",
    "Content-Type: multipart/related; boundary=c\n\n--c\n", "\n--c\n", "\n--c--\n",
    "Content-Type: message/rfc822\n\n", "Content-Type: text/html\n\n<p>x<br>y",
    "Content-Type: text/plain; charset=utf-16\n\n", "Content-Type: text/plain; charset=foo\n\n",
    "Content-Type: image/png; name=x.png\n", "Content-Disposition: attachment\n",
    "Content-Disposition: inline; filename*=utf-8''x\n", "Content-ID: <i>\n",
    "Content-Transfer-Encoding: base64\n\nQWxhZGRpbg==", "Sender: <@r:u@v>\n", "\x8E\xC3\xA9",
    "Cc: \"Ada, B\" <a@b>\n", "x", "GIF89a", std::string_view("\0", 1)};
// clang-format on

// While an instance exists, standard error is discarded, with the debug log and with reports of
// findings. Set ZQV_FUZZ_LOG to see both.
class Silence {
 public:
  Silence() {
    if (std::getenv("ZQV_FUZZ_LOG") != nullptr) return;
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    standard_error_ = dup(STDERR_FILENO);
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
  }
  ~Silence() {
    if (standard_error_ < 0) return;
    dup2(standard_error_, STDERR_FILENO);
    close(standard_error_);
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  int standard_error_ = -1;
};

class Application {
 public:
  explicit Application(Numbers numbers) : numbers_(numbers) {}

  void Run() {
    for (int steps = 0; steps < 400 && !numbers_.AtEnd(); ++steps) Step();
    for (const char* name : {"RaiseUnknownFormatExceptions", "Debugging"})
      standin::SetShared("MimeEmailZQV", name, false);
  }

 private:
  void Step() {
    try {
      switch (numbers_.Below(10)) {
        case 0:
          return Keep(standin::NewInstance(numbers_.Of(kClasses)));
        case 1:
          return Keep(Content());
        case 2:
          return CallConstructor();
        case 3:
        case 4:
          return ReadProperty();
        case 5:
        case 6:
          return CallMethod();
        case 7:
          return Release();
        case 8:
          return UseShared();
        default:
          return SetFault();
      }
    } catch (const standin::HostException&) {
      // The application handles a host exception and continues.
    } catch (const std::logic_error&) {
      // The program asked for something impossible, such as a member that the class does not have.
    }
  }

  void Keep(Value value) { kept_[numbers_.Below(kept_.size())] = std::move(value); }

  Value& Any() { return kept_[numbers_.Below(kept_.size())]; }

  Object AnyObject() {
    const auto* const object = std::get_if<Object>(&Any());
    return object != nullptr ? *object : Object();
  }

  // A text from the input, or a message made of the pieces above.
  std::string Text() {
    const bool is_spelt = numbers_.Chance();
    const std::string_view text = numbers_.Text();
    return is_spelt ? Alphabet(kMessagePieces).Spell(text, 2'000) : std::string(text);
  }

  // A value of any type for a constructor's argument.
  Value Content() {
    static constexpr abi::Encoding kEncodings[] = {abi::kUtf8,     abi::kUnknownEncoding,
                                                   abi::kMacRoman, abi::kAscii,
                                                   abi::kUtf16,    abi::kIsoLatin1};
    switch (numbers_.Below(9)) {
      case 0:
        return standin::MakeMemoryBlock(Text());
      case 1:
        return standin::MakeMemoryBlockOfUnknownSize(Text());
      case 2:
        return standin::MakeMemoryBlockWithoutPointer(static_cast<int>(numbers_.Below(256)));
      case 3:
        return standin::MakeFolderItem(numbers_.Chance() ? "/" : "/no/such/file");
      case 4:
        return standin::MakeEmptyString(numbers_.Of(kEncodings));
      case 5:
        return std::monostate();
      default: {
        const abi::Encoding encoding = numbers_.Of(kEncodings);
        return standin::MakeString(Text(), encoding);
      }
    }
  }

  static const standin::ClassInfo* ClassOf(const Object& object) {
    if (object.IsNil() || object.IsArray()) return nullptr;
    return standin::Host::Get("calls_fuzz").classes().Find(object.ClassName());
  }

  // Calls a constructor on a new object or on one that was constructed before.
  void CallConstructor() {
    static constexpr const char* kConstructors[] = {
        "Constructor(Content as string)", "Constructor(Content as MemoryBlock)",
        "Constructor(File as FolderItem)", "Constructor(TextToParse as String)"};
    Object object = AnyObject();
    if (object.IsNil() || object.IsArray() || numbers_.Chance()) {
      object = standin::NewInstance(numbers_.Of(kClasses));
      Keep(object);
    }
    const bool is_message = object.ClassName() == "MimeEmailZQV";
    const char* const constructor = kConstructors[is_message ? numbers_.Below(3) : 3];
    const Value content = numbers_.Chance() ? Any() : Content();
    standin::CallWith(object, constructor, {content});
  }

  void ReadProperty() {
    const Object object = AnyObject();
    const standin::ClassInfo* info = ClassOf(object);
    if (info == nullptr) return;
    if (info->super != nullptr && numbers_.Chance()) info = info->super;
    if (info->properties.empty()) return;
    Keep(standin::Get(object, info->properties[numbers_.Below(info->properties.size())].name));
  }

  void CallMethod() {
    const Object object = AnyObject();
    const standin::ClassInfo* const info = ClassOf(object);
    if (info == nullptr || info->methods.empty()) return;
    const standin::Method& method = info->methods[numbers_.Below(info->methods.size())];
    if (method.declaration.name == "Constructor") return;
    std::vector<Value> arguments;
    for (const standin::Parameter& parameter : method.declaration.parameters) {
      arguments.push_back(ArgumentOf(standin::KindOf(parameter.type)));
    }
    const Value value = standin::CallWith(object, method.row->declaration, arguments);
    if (method.declaration.result.is_array) Extend(value, method.declaration.result.name);
    Keep(value);
  }

  Value ArgumentOf(standin::TypeKind kind) {
    static constexpr std::int64_t kIndexes[] = {
        0, 0, 0, 1, 2, 3, -1, 7, INT64_MIN, INT64_MAX, std::int64_t{1} << 32};
    static constexpr const char* kNames[] = {"subject", "TO", "", "No-Such-Field", "Content-ID"};
    if (kind == standin::TypeKind::kInteger) return numbers_.Of(kIndexes);
    if (numbers_.Chance()) return Any();
    return standin::MakeString(numbers_.Of(kNames));
  }

  // An application may append to an array that a getter returned, which is the object's own array.
  void Extend(const Value& value, const std::string& class_name) {
    if (!numbers_.Chance()) return;
    const Object array = standin::ObjectOf(value);
    if (!array.IsNil()) array.Append(standin::NewInstance(class_name));
  }

  void Release() {
    if (numbers_.Chance()) {
      Any() = std::monostate();
    } else {
      Value& first = Any();
      std::swap(first, Any());
    }
  }

  void UseShared() {
    static constexpr const char* kSwitches[] = {"RaiseUnknownFormatExceptions", "Debugging"};
    static constexpr const char* kMethods[] = {"DecodeInline", "HTMLToPlainText"};
    if (numbers_.Chance()) {
      const char* const name = numbers_.Of(kSwitches);
      if (!silence_.has_value()) silence_.emplace();
      standin::SetShared("MimeEmailZQV", name, numbers_.Chance());
    } else {
      const Value text = numbers_.Chance() ? Any() : Content();
      Keep(standin::CallShared("MimeEmailZQV", numbers_.Of(kMethods), text));
    }
  }

  // Makes some of the next calls of an entry point do nothing or throw.
  void SetFault() {
    static constexpr standin::Fault::Kind kKinds[] = {standin::Fault::Kind::kNothing,
                                                      standin::Fault::Kind::kThrows,
                                                      standin::Fault::Kind::kThrowsInt};
    const char* const name = numbers_.Of(kEntryPoints);
    if (!MayFail(name)) return;
    standin::Host& host = standin::Host::Get("calls_fuzz");
    // An entry point that is missing in this host stays missing.
    if (host.capabilities().faults.count(name) != 0) return;
    standin::Fault fault{numbers_.Of(kKinds)};
    fault.from_call = host.CallCount(name) + 1 + numbers_.Below(30);
    fault.calls = 1 + numbers_.Below(3);
    host.SetFault(name, fault);
  }

  Numbers numbers_;
  std::array<Value, 8> kept_;
  std::optional<Silence> silence_;  // from the first change of a switch on
};

// The capabilities of the host with this number.
standin::Capabilities MadeUpHost(std::uint32_t number) {
  static constexpr double kVersions[] = {2005.0,  2009.1, 2012.5, 2013.035, 2013.041,
                                         2019.11, 2020.1, 2021.0, 2024.1,   2024.1};
  std::mt19937 random(number);
  const auto below = [&](std::size_t end) { return random() % end; };
  standin::Capabilities host;
  host.version = kVersions[below(std::size(kVersions))];
  host.date_flavour = static_cast<standin::DateFlavour>(below(3));
  host.string_data = static_cast<standin::StringDataFlavour>(below(3));
  if (below(2) == 0) host.array_layout = static_cast<standin::ArrayLayout>(below(9));
  for (std::size_t missing = below(4); missing > 0; --missing) {
    const char* const name = kEntryPoints[below(std::size(kEntryPoints))];
    if (MayFail(name)) host.faults[name] = standin::Fault();
  }
  if (below(3) == 0) host.unknown_classes = {kClasses[below(std::size(kClasses))]};
  return host;
}

void RunProgram(std::string_view input) {
  Application(Numbers(input)).Run();
  standin::Host& host = standin::Host::Get("calls_fuzz");
  for (const char* name : kEntryPoints) {
    if (MayFail(name) && host.capabilities().faults.count(name) == 0)
      host.SetFault(name, std::nullopt);
  }
}

// Starts the session and reads one element, so that the library fills its caches and runs the
// self-test of the array layout. Otherwise the result of an input would depend on the inputs before
// it.
void Start() {
  const char* const number = std::getenv("ZQV_FUZZ_HOST");
  const unsigned long chosen = number != nullptr ? std::strtoul(number, nullptr, 10) : 0;
  Session::Start(chosen == 0 ? standin::Capabilities()
                             : MadeUpHost(static_cast<std::uint32_t>(chosen)));
  const Object list =
      standin::Construct("MimeMailboxListZQV", "Constructor", standin::MakeString("a@b"));
  try {
    standin::Call(list, "Mailboxes", 0);
  } catch (const standin::HostException&) {
    // A host without arrays raises an exception here.
  }
}

void Run(std::string_view input) {
  RunProgram(input);
  Session::Get().ExpectNothingLeft();
}

// A program that begins by constructing a message, which is spelt by the first third of the input
// and kept as the first object.
std::string Spell(std::string_view input) {
  static constexpr char kMakeMessage[] = {2, 1, 0, 0, 0, 1, 6, 0, 0};
  const auto quarter = static_cast<char>(std::min<std::size_t>(input.size() / 12, 100));
  return std::string(std::begin(kMakeMessage), std::end(kMakeMessage)) + quarter +
         std::string(input);
}

}  // namespace

const Target target = {Start, Run, Spell};

}  // namespace zqv::fuzz
