#include "mime/message_texts.h"

#include <gtest/gtest.h>
#include <mimetic/mimetic.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mime/header_view.h"
#include "mime/parser.h"

namespace zqv::test {
namespace {

TEST(MessageTexts, KeepsCopiesOfAnyLength) {
  mime::MessageTexts texts;
  std::vector<std::pair<std::string, std::string_view>> kept;
  for (const std::size_t length : {1U, 998U, 1U, 1U, 999U, 1000U, 1001U, 5000U, 0U, 3U, 100000U}) {
    std::string text(length, static_cast<char>('a' + kept.size()));
    const std::string_view copy = texts.Keep(text);
    EXPECT_NE(copy.data(), text.data());
    EXPECT_NE(copy.data(), nullptr) << "empty is not nothing";
    kept.emplace_back(std::move(text), copy);
  }
  for (const auto& [text, copy] : kept) EXPECT_EQ(copy, text);
}

TEST(MessageTexts, KnowOnlyWhatTheyWereTold) {
  const mimetic::MimeEntity entity;
  const mimetic::MimeEntity other;
  mime::MessageTexts texts;
  EXPECT_EQ(texts.HeaderOf(entity).size(), 0U);
  EXPECT_EQ(texts.TypeOf(entity).str(), "/");
  EXPECT_EQ(texts.BodyOf(entity).data(), entity.body().data());

  mime::EntityTexts& first = texts.Begin(entity);
  texts.AddField(first, {"Content-Type", "a/b", mime::FieldName::kContentType});
  texts.AddField(first, {"Content-Type", "c/d", mime::FieldName::kContentType});
  texts.Begin(other);
  const std::string_view body = "elsewhere";
  texts.AddBody(other, body);
  EXPECT_EQ(texts.TypeOf(entity).str(), "a/b");
  EXPECT_EQ(texts.HeaderOf(entity).size(), 2U);
  EXPECT_EQ(texts.BodyOf(entity).data(), entity.body().data());
  EXPECT_EQ(texts.TypeOf(other).str(), "/");
  EXPECT_EQ(texts.HeaderOf(other).size(), 0U);
  EXPECT_EQ(texts.BodyOf(other).data(), body.data());
}

constexpr std::string_view kMessage =
    "Received: from a\n by b; Tue, 1 Jan 2019 10:00:00 +0000\n"
    "X-Empty:\nX-Short: value\nX-Fold:\n folded\nX-Long: one\n\ttwo\n three\n"
    "Content-Type: text/plain;charset=utf-8\n\nbody\n";

// The value of each field: whether it lies in the message, was kept as a copy, or is a text form.
struct ValueRow {
  std::string_view name, value, place;
};
constexpr ValueRow kValues[] = {
    {"Received", "from a by b; Tue, 1 Jan 2019 10:00:00 +0000", "kept"},
    {"X-Empty", "", "in"},
    {"X-Short", "value", "in"},
    {"X-Fold", " folded", "kept"},
    {"X-Long", "one two three", "kept"},
    {"Content-Type", "text/plain; charset=\"utf-8\"", "form"},
};

TEST(MessageTexts, LeaveTheValuesOfFieldsWhereTheyLie) {
  mime::MessageTexts texts;
  mimetic::MimeEntity entity;
  mime::ParseMessage(kMessage, entity, texts);
  const mime::HeaderView view = texts.HeaderOf(entity);
  const auto is_in_message = [](std::string_view text) {
    return text.data() >= kMessage.data() && text.data() < kMessage.data() + kMessage.size();
  };
  std::size_t index = 0;
  for (const ValueRow& row : kValues) {
    const std::string_view value = view.Value(index);
    EXPECT_EQ(view[index].name, row.name);
    EXPECT_TRUE(is_in_message(view[index].name));
    EXPECT_EQ(value, row.value);
    const bool is_form = value.data() != view[index].value.data();
    EXPECT_EQ(is_form ? "form" : is_in_message(value) ? "in" : "kept", row.place) << row.name;
    ++index;
  }
  EXPECT_EQ(index, view.size());
  EXPECT_TRUE(entity.header().empty());
}

TEST(MessageTexts, EndAValueAtItsFirstNul) {
  const std::string message = std::string("X-Nul: be\0fore\nX-Fold: a\n b\0c\n\n", 32);
  mime::MessageTexts texts;
  mimetic::MimeEntity entity;
  mime::ParseMessage(message, entity, texts);
  const mime::HeaderView view = texts.HeaderOf(entity);
  ASSERT_EQ(view.size(), 2U);
  EXPECT_EQ(view.Value(0), "be");
  EXPECT_EQ(view.Value(1), "a b");
}

}  // namespace
}  // namespace zqv::test
