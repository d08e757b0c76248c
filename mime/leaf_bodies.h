// Where the bodies of a message's leaves lie in its bytes, so that a parsed tree need not hold a
// copy of them: of an attachment of 100 MB, that is all the difference there is.
#pragma once

#include <mimetic/body.h>

#include <string_view>
#include <unordered_map>

namespace zqv::mime {

// Empty, it tells of trees that hold their bodies themselves.
class LeafBodies {
 public:
  // `text` must outlive this, as must the body, which holds nothing itself.
  void Add(const mimetic::Body& body, std::string_view text) { texts_.emplace(&body, text); }

  // What was added, or what the body holds itself. [borrowed from either]
  std::string_view Of(const mimetic::Body& body) const {
    const auto text = texts_.find(&body);
    return text != texts_.end() ? text->second : std::string_view(body);
  }

 private:
  std::unordered_map<const mimetic::Body*, std::string_view> texts_;
};

}  // namespace zqv::mime
