#include "tests/unit/mime/tree_difference.h"

#include <cstddef>
#include <string_view>

namespace zqv::test {
namespace {

// Field names are strings that compare without case; here every byte counts.
template <class Text>
std::string_view Bytes(const Text& text) {
  return {text.data(), text.size()};
}

std::string HeaderDifference(const mimetic::Header& left, const mimetic::Header& right) {
  if (left.size() != right.size())
    return std::to_string(left.size()) + " or " + std::to_string(right.size()) + " fields";
  auto other = right.begin();
  std::size_t number = 0;
  for (const mimetic::Field& field : left) {
    if (Bytes(field.name()) != Bytes(other->name()))
      return "the name of field " + std::to_string(number);
    if (field.value() != other->value()) return "the value of field " + std::to_string(number);
    ++other;
    ++number;
  }
  return {};
}

std::string TextDifference(const mimetic::Body& left, const mimetic::Body& right) {
  if (Bytes(left) != Bytes(right)) return "the body";
  if (left.preamble() != right.preamble()) return "the preamble";
  if (left.epilogue() != right.epilogue()) return "the epilogue";
  return {};
}

std::string Difference(const mimetic::MimeEntity& left, const mimetic::MimeEntity& right,
                       const std::string& where) {
  std::string found = HeaderDifference(left.header(), right.header());
  if (found.empty()) found = TextDifference(left.body(), right.body());
  const auto& left_parts = left.body().parts();
  const auto& right_parts = right.body().parts();
  if (found.empty() && left_parts.size() != right_parts.size())
    found =
        std::to_string(left_parts.size()) + " or " + std::to_string(right_parts.size()) + " parts";
  if (!found.empty()) return where + ": " + found;
  auto other = right_parts.begin();
  std::size_t number = 0;
  for (const mimetic::MimeEntity* part : left_parts) {
    found = Difference(*part, **other++, where + ", part " + std::to_string(number++));
    if (!found.empty()) return found;
  }
  return {};
}

}  // namespace

std::string FirstDifference(const mimetic::MimeEntity& left, const mimetic::MimeEntity& right) {
  return Difference(left, right, "message");
}

void PutBack(const mime::MessageTexts& texts, mimetic::MimeEntity& entity) {
  entity.body().assign(texts.BodyOf(entity));
  const mime::HeaderView header = texts.HeaderOf(entity);
  for (std::size_t i = 0; i < header.size(); ++i) {
    // The library's parser has asked for the type, so its tree has the type's text form.
    const bool is_type = header[i].known == mime::FieldName::kContentType;
    entity.header().emplace_back(std::string(header[i].name),
                                 std::string(is_type ? header.Value(i) : header[i].value));
  }
  for (mimetic::MimeEntity* const part : entity.body().parts()) PutBack(texts, *part);
}

}  // namespace zqv::test
