// Where the texts of a message lie in its bytes, so that a parsed tree need not hold copies of
// them: the bodies of leaves, which are nearly all of a message, and the values of fields that are
// only handed out, which are most of a header.
#pragma once

#include <mimetic/body.h>
#include <mimetic/header.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zqv::mime {

// One text for each field of a header; null where the field holds its value itself.
using FieldTexts = std::vector<std::string_view>;

// Empty, it tells of trees that hold everything themselves.
class MessageTexts {
 public:
  // `text` must outlive this, as must the body, which holds nothing itself.
  void AddBody(const mimetic::Body& body, std::string_view text) { bodies_.emplace(&body, text); }

  // What was added, or what the body holds itself. [borrowed from either]
  std::string_view Of(const mimetic::Body& body) const {
    const auto text = bodies_.find(&body);
    return text != bodies_.end() ? text->second : std::string_view(body);
  }

  // The texts of a header's fields, to be filled. [borrowed]
  FieldTexts& NewFieldTexts(const mimetic::Header& header) {
    constexpr std::size_t kUsual = 32;  // fields
    FieldTexts& texts = fields_[&header];
    texts.reserve(kUsual);
    return texts;
  }

  // Null when the header's fields hold their values themselves. [borrowed]
  const FieldTexts* Of(const mimetic::Header& header) const {
    const auto texts = fields_.find(&header);
    return texts != fields_.end() ? &texts->second : nullptr;
  }

  // A copy that lasts as long as this.
  std::string_view Keep(std::string_view text);

 private:
  std::unordered_map<const mimetic::Body*, std::string_view> bodies_;
  std::unordered_map<const mimetic::Header*, FieldTexts> fields_;
  std::vector<std::unique_ptr<char[]>> kept_;
  std::size_t size_ = 0;  // of the last one
  std::size_t left_ = 0;  // of that
};

}  // namespace zqv::mime
