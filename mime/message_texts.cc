#include "mime/message_texts.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace zqv::mime {

EntityTexts& MessageTexts::Begin(const mimetic::MimeEntity& entity) {
  EntityTexts& texts = entities_[&entity];
  texts.first_field = fields_.size();
  recent_ = &entity;
  recent_texts_ = &texts;
  return texts;
}

void MessageTexts::AddField(EntityTexts& texts, const FieldText& field) {
  fields_.push_back(field);
  ++texts.fields;
  if (field.known == FieldName::kContentType && !texts.type.has_value()) {
    texts.type.emplace(std::string(field.value));
  }
}

void MessageTexts::AddBody(const mimetic::MimeEntity& entity, std::string_view text) {
  entities_[&entity].body = text;
}

std::string_view MessageTexts::Keep(std::string_view text) {
  constexpr std::size_t kRoom = 1000;  // for some texts; allocators are quickest below a KB
  if (text.empty()) return "";
  if (text.size() > left_) {
    const std::size_t room = std::max(text.size(), kRoom);
    kept_.emplace_back(new char[room]);
    size_ = left_ = room;
  }
  char* const copy = kept_.back().get() + (size_ - left_);
  std::memcpy(copy, text.data(), text.size());
  left_ -= text.size();
  return {copy, text.size()};
}

const EntityTexts* MessageTexts::Find(const mimetic::MimeEntity& entity) const {
  if (recent_ == &entity) return recent_texts_;
  const auto found = entities_.find(&entity);
  if (found == entities_.end()) return nullptr;
  recent_ = &entity;
  return recent_texts_ = &found->second;
}

std::string_view MessageTexts::BodyOf(const mimetic::MimeEntity& entity) const {
  const EntityTexts* const texts = Find(entity);
  const bool is_here = texts != nullptr && texts->body.data() != nullptr;
  return is_here ? texts->body : std::string_view(entity.body());
}

HeaderView MessageTexts::HeaderOf(const mimetic::MimeEntity& entity) const {
  const EntityTexts* const texts = Find(entity);
  if (texts == nullptr) return HeaderView(nullptr, 0);
  return HeaderView(fields_.data() + texts->first_field, texts->fields,
                    texts->type.has_value() ? &*texts->type : nullptr);
}

const mimetic::ContentType& MessageTexts::TypeOf(const mimetic::MimeEntity& entity) const {
  static const mimetic::ContentType none;
  const EntityTexts* const texts = Find(entity);
  return texts != nullptr && texts->type.has_value() ? texts->type->value : none;
}

}  // namespace zqv::mime
