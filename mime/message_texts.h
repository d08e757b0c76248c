// Where the texts of a message lie in its bytes, so that a parsed tree need not hold copies of
// them: all header fields, and the bodies of leaves, which together are nearly all of a message.
#pragma once

#include <mimetic/mimeentity.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mime/header_view.h"

namespace zqv::mime {

// Where the texts of one entity are. Its fields are neighbours among those of the message.
struct EntityTexts {
  std::string_view body;  // null: the tree holds it
  std::size_t first_field = 0;
  std::size_t fields = 0;
  std::optional<Parsed<mimetic::ContentType>> type;  // what the parser needs to know, too
};

// Filled by the parser, in the order of the message.
class MessageTexts {
 public:
  // The texts of an entity whose header begins, until the next one's does. [borrowed]
  EntityTexts& Begin(const mimetic::MimeEntity& entity);

  // The next field of that header. Its texts must outlive this.
  void AddField(EntityTexts& texts, const FieldText& field);

  // `text` must outlive this; the body of the entity, which was begun, is empty.
  void AddBody(const mimetic::MimeEntity& entity, std::string_view text);

  // A copy that lasts as long as this.
  std::string_view Keep(std::string_view text);

  // What was added, or what the body holds itself. [borrowed from either]
  std::string_view BodyOf(const mimetic::MimeEntity& entity) const;

  // The fields that were added. [borrowed]
  HeaderView HeaderOf(const mimetic::MimeEntity& entity) const;

  // What the first Content-Type says, or what the library makes of none. [borrowed]
  const mimetic::ContentType& TypeOf(const mimetic::MimeEntity& entity) const;

 private:
  // Null for an entity that was never begun.
  const EntityTexts* Find(const mimetic::MimeEntity& entity) const;

  std::unordered_map<const mimetic::MimeEntity*, EntityTexts> entities_;
  // Found last: several questions in a row are about one entity.
  mutable const mimetic::MimeEntity* recent_ = nullptr;
  mutable const EntityTexts* recent_texts_ = nullptr;

  std::vector<FieldText> fields_;  // of all entities
  std::vector<std::unique_ptr<char[]>> kept_;
  std::size_t size_ = 0;  // of the last one
  std::size_t left_ = 0;  // of that
};

}  // namespace zqv::mime
