#include "cli/picture.h"

#include "cli/base64.h"

namespace zqv::cli {
namespace {

using namespace std::string_view_literals;

// A picture format: its first bytes, and further bytes at a fixed offset.
struct Signature {
  std::string_view type;
  std::string_view start;
  std::size_t at;
  std::string_view there;
};
constexpr Signature kSignatures[] = {
    {"image/png", "\x89PNG\r\n\x1A\n"sv, 0, {}},
    {"image/jpeg", "\xFF\xD8\xFF"sv, 0, {}},
    {"image/gif", "GIF87a"sv, 0, {}},
    {"image/gif", "GIF89a"sv, 0, {}},
    {"image/webp", "RIFF"sv, 8, "WEBP"sv},
    {"image/bmp", "BM"sv, 6, "\0\0\0\0"sv},
};

}  // namespace

std::string_view PictureType(std::string_view bytes) {
  for (const Signature& signature : kSignatures) {
    if (bytes.size() < signature.at + signature.there.size()) continue;
    if (bytes.substr(0, signature.start.size()) == signature.start &&
        bytes.substr(signature.at, signature.there.size()) == signature.there) {
      return signature.type;
    }
  }
  return {};
}

std::string Pictures::DataUri(std::string_view bytes, std::size_t copies) {
  const std::string_view type = PictureType(bytes);
  if (type.empty() || bytes.size() > kMostBytes || bytes.size() > left_ / copies) return {};
  left_ -= bytes.size() * copies;
  std::string uri = "data:";
  uri += type;
  uri += ";base64,";
  return uri += Base64(bytes);
}

}  // namespace zqv::cli
