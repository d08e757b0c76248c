#include "tests/interface/reading.h"

#include <array>
#include <cstdio>

#include "standin/mirror.h"

namespace zqv::interface_test {
namespace {

constexpr std::string_view kConstructors[] = {"Constructor(Content as string)",
                                              "Constructor(Content as MemoryBlock)",
                                              "Constructor(File as FolderItem)"};

// Reads everything below an object. It is a loop, so that it works on a small stack.
class Reader {
 public:
  // Reads elements of lists with the indices from -1 to `last_index`.
  explicit Reader(int last_index = 11) : last_index_(last_index) {}

  void Run(const Object& top) {
    Add(top);
    while (!waiting_.empty()) {
      const Object object = waiting_.back();
      waiting_.pop_back();
      Read(object);
    }
  }

  int calls() const { return calls_; }
  const std::string& raised() const { return raised_; }

  template <typename Work>
  void Try(Work work) {
    const std::string raised = RaisedBy(work);
    // An exception for an index out of bounds is expected.
    if (raised.find("OutOfBoundsException, 0: The parameter index") != 0) raised_ += raised;
    ++calls_;
  }

 private:
  void Add(const Object& object) {
    if (!object.IsNil() && !object.IsArray()) waiting_.push_back(object);
  }

  void Read(const Object& object) {
    const standin::ClassInfo* const info = Host::Get("the test").classes().Find(object.ClassName());
    for (const standin::ClassInfo* c = info; c != nullptr; c = c->super) {
      for (const standin::Property& property : c->properties) {
        Try([&] {
          const Value value = Get(object, property.name);
          // The objects of an attachment are also in the tree, where they are read.
          if (object.ClassName() == "MimeAttachmentZQV") return;
          if (const auto* const member = std::get_if<Object>(&value)) Add(*member);
        });
      }
      for (const standin::Method& method : c->methods) CallMethod(object, method);
    }
  }

  void CallMethod(const Object& object, const standin::Method& method) {
    const std::string_view declaration = method.row->declaration;
    if (declaration.substr(0, 11) == "Constructor") return;
    const auto& parameters = method.declaration.parameters;
    if (parameters.empty()) {
      Try([&] { Call(object, declaration); });
    } else if (standin::KindOf(parameters[0].type) == standin::TypeKind::kInteger) {
      for (int index = -1; index <= last_index_; ++index) {
        Try([&] { Add(ObjectOf(Call(object, declaration, index))); });
      }
    } else {
      for (const char* name : {"subject", "No-Such-Field"}) {
        Try([&] { Call(object, declaration, MakeString(name)); });
      }
    }
  }

  const int last_index_;
  std::vector<Object> waiting_;
  int calls_ = 0;
  std::string raised_;
};

}  // namespace

const char* NameOf(Way way) {
  static constexpr const char* kNames[] = {"string", "block", "file"};
  return kNames[static_cast<std::size_t>(way)];
}

Input::Input(Way way, std::string_view bytes) {
  switch (way) {
    case Way::kString:
      value_ = MakeString(bytes, abi::kUnknownEncoding);
      break;
    case Way::kBlock:
      value_ = MakeMemoryBlock(bytes);
      break;
    case Way::kFile:
      folder_ = std::make_unique<TemporaryFolder>();
      value_ = MakeFolderItem(folder_->Write("input.eml", bytes));
  }
}

Constructed ConstructOn(const Object& message, std::string_view constructor, const Value& content) {
  return {message, RaisedBy([&] { standin::CallWith(message, constructor, {content}); })};
}

Constructed Construct(Way way, std::string_view bytes) {
  const Input input(way, bytes);
  return ConstructOn(NewInstance("MimeEmailZQV"), kConstructors[static_cast<std::size_t>(way)],
                     input.value());
}

Object Parse(std::string_view bytes, Way way) {
  const Constructed constructed = Construct(way, bytes);
  EXPECT_EQ(constructed.raised, "");
  return constructed.message;
}

Object FromText(std::string_view class_name, std::string_view text) {
  return standin::Construct(class_name, "Constructor", MakeString(text));
}

std::string Show(const Value& value) {
  const auto* const string = std::get_if<String>(&value);
  if (string == nullptr || string->IsNil()) return "nil";
  std::array<char, 16> encoding{};
  std::snprintf(encoding.data(), encoding.size(), "0x%x ", string->encoding());
  return encoding.data() + std::string(string->bytes());
}

std::string ShowProperty(const Object& object, std::string_view property) {
  return Show(Get(object, property));
}

int UseEverything(Way way, std::string_view bytes) {
  Reader reader;
  const Constructed constructed = Construct(way, bytes);
  reader.Run(constructed.message);
  reader.Try([&] { standin::Mirror(constructed.message); });
  for (const char* class_name : {"MimeMailboxZQV", "MimeGroupZQV", "MimeAddressZQV",
                                 "MimeMailboxListZQV", "MimeAddressListZQV", "MimeFieldZQV"}) {
    reader.Try([&] {
      // Text in Mac Roman, so that the host has to convert it.
      const String text = MakeString("Caf\x8E: Ada <a@example.org>;", abi::kMacRoman);
      reader.Run(standin::Construct(class_name, "Constructor", text));
    });
  }
  for (const abi::Encoding encoding : {abi::kUtf8, abi::kUnknownEncoding, abi::kMacRoman}) {
    reader.Try([&] {
      const String html = MakeString("<p>Caf\xC3\xA9 &euro; =?utf-8?Q?x?=</p>", encoding);
      CallShared("MimeEmailZQV", "HTMLToPlainText", html);
      CallShared("MimeEmailZQV", "DecodeInline", html);
    });
  }
  return reader.calls();
}

std::string ReadEverything(const Object& object, int last_index) {
  Reader reader(last_index);
  reader.Run(object);
  return reader.raised();
}

Object FirstPartOf(const Object& entity) {
  const Object parts = ObjectOf(Call(ObjectOf(Get(entity, "Body")), "Parts as MimeEntityZQV()"));
  return parts.Size() == 0 ? Object() : ObjectOf(parts.At(0));
}

std::size_t LevelsOf(const Object& message) {
  std::size_t levels = 0;
  for (Object part = FirstPartOf(message); !part.IsNil(); part = FirstPartOf(part)) ++levels;
  return levels;
}

nlohmann::ordered_json MirrorOfTree(const Object& message, std::size_t levels) {
  standin::MirrorOptions options;
  options.max_depth = 4 * (levels + 1);
  options.skip = [](std::string_view, std::string_view member) {
    static constexpr std::string_view kVariant = "Variant";
    return member == "Attachments" || member == "Inlines" ||
           (member.size() > kVariant.size() &&
            member.substr(member.size() - kVariant.size()) == kVariant);
  };
  return standin::Mirror(message, options);
}

nlohmann::ordered_json MirrorWithoutDates(const Object& message) {
  standin::MirrorOptions options;
  options.skip = [](std::string_view, std::string_view member) {
    return member == "Date" || member == "ReceivedDate";
  };
  return standin::Mirror(message, options);
}

}  // namespace zqv::interface_test
