// One table lists the properties of all native classes. Reading and writing follow its rows.
#include "standin/native.h"

#include <array>
#include <cstddef>

#include "base/ascii.h"
#include "standin/fatal.h"

namespace zqv::standin {
namespace {

// The first six rows are in the order of Date::Field.
constexpr std::array kProperties = {
    NativeProperty{NativeKind::kDate, "Year", TypeKind::kInteger},
    NativeProperty{NativeKind::kDate, "Month", TypeKind::kInteger},
    NativeProperty{NativeKind::kDate, "Day", TypeKind::kInteger},
    NativeProperty{NativeKind::kDate, "Hour", TypeKind::kInteger},
    NativeProperty{NativeKind::kDate, "Minute", TypeKind::kInteger},
    NativeProperty{NativeKind::kDate, "Second", TypeKind::kInteger},
    NativeProperty{NativeKind::kDate, "TotalSeconds", TypeKind::kDouble},
    NativeProperty{NativeKind::kFolderItem, "NativePath", TypeKind::kString},
    NativeProperty{NativeKind::kFolderItem, "URLPath", TypeKind::kString},
    NativeProperty{NativeKind::kException, "Message", TypeKind::kString},
    NativeProperty{NativeKind::kException, "ErrorNumber", TypeKind::kInteger},
};

Date::Field FieldOf(const NativeProperty& property) {
  return static_cast<Date::Field>(&property - kProperties.data());
}

bool IsMissing(const ClassInfo& info, const char* property,
               const std::set<std::string, std::less<>>& missing) {
  if (missing.empty()) return false;
  for (const ClassInfo* c = &info; c != nullptr; c = c->super) {
    if (missing.count(c->name + "." + property) != 0) return true;
  }
  return false;
}

bool IsPlainInUrl(char c) {
  return base::IsAlphanumeric(c) ||
         std::string_view("/-._~!$&'()*+,;=:@").find(c) != std::string_view::npos;
}

#if defined(_WIN32)
constexpr char kOtherSlash = '\\';
#else
constexpr char kOtherSlash = '/';
#endif

}  // namespace

std::unique_ptr<NativeState> NewState(NativeKind kind) {
  switch (kind) {
    case NativeKind::kDate:
      return std::make_unique<NativeState>(Date());
    case NativeKind::kMemoryBlock:
      return std::make_unique<NativeState>(MemoryBlock());
    case NativeKind::kFolderItem:
      return std::make_unique<NativeState>(FolderItem());
    case NativeKind::kException:
      return std::make_unique<NativeState>(ExceptionState());
    case NativeKind::kNone:
      break;
  }
  Fatal("a registered class has no native state");
}

std::string FileUrl(std::string_view path) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string url = "file://";
  // A Windows path with a drive letter needs a slash before it.
  if (path.size() > 1 && path[1] == ':') url += '/';
  for (const char c : path) {
    if (IsPlainInUrl(c)) {
      url += c;
    } else if (c == kOtherSlash) {
      url += '/';
    } else {
      const auto byte = static_cast<unsigned char>(c);
      url += '%';
      url += kDigits[byte >> 4U];
      url += kDigits[byte & 15U];
    }
  }
  return url;
}

const NativeProperty* FindNativeProperty(const ClassInfo& info, std::string_view name,
                                         const std::set<std::string, std::less<>>& missing) {
  for (const NativeProperty& property : kProperties) {
    if (property.owner == info.native && base::EqualsIgnoringCase(property.name, name)) {
      return IsMissing(info, property.name, missing) ? nullptr : &property;
    }
  }
  return nullptr;
}

std::int64_t ReadInteger(const NativeThing& thing, const NativeProperty& property) {
  if (property.owner == NativeKind::kDate) {
    return std::get<Date>(*thing.state).fields()[FieldOf(property)];
  }
  return std::get<ExceptionState>(*thing.state).error_number;
}

double ReadDouble(const NativeThing& thing, const NativeProperty&) {
  return std::get<Date>(*thing.state).total_seconds();
}

bool WriteInteger(NativeThing* thing, const NativeProperty& property, std::int64_t value) {
  if (property.owner == NativeKind::kDate) {
    return std::get<Date>(*thing->state).SetField(FieldOf(property), value);
  }
  std::get<ExceptionState>(*thing->state).error_number = value;
  return true;
}

bool WriteDouble(NativeThing* thing, const NativeProperty&, double value) {
  return std::get<Date>(*thing->state).SetTotalSeconds(value);
}

const std::string& ReadPath(const NativeThing& thing, const NativeProperty& property) {
  const auto& item = std::get<FolderItem>(*thing.state);
  return base::EqualsIgnoringCase(property.name, "URLPath") ? item.url_path : item.native_path;
}

}  // namespace zqv::standin
