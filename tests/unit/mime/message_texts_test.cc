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
  mime::MessageTexts texts;
  EXPECT_EQ(texts.Of(entity.header()), nullptr);
  EXPECT_EQ(texts.Of(entity.body()).data(), entity.body().data());
  const std::string_view body = "elsewhere";
  texts.AddBody(entity.body(), body);
  EXPECT_EQ(texts.Of(entity.body()).data(), body.data());
}

constexpr std::string_view kMessage =
    "Received: from a\n by b; Tue, 1 Jan 2019 10:00:00 +0000\n"
    "X-Empty:\nX-Short: value\nX-Fold:\n folded\nX-Long: one\n\ttwo\n three\n"
    "Content-Type: text/plain;charset=utf-8\n\nbody\n";

// The value of each field; "in" when it lies in the message, "kept" when it is a copy, and "held"
// when the header holds it.
struct ValueRow {
  std::string_view name, value, place;
};
constexpr ValueRow kValues[] = {
    {"Received", "from a by b; Tue, 1 Jan 2019 10:00:00 +0000", "kept"},
    {"X-Empty", "", "kept"},
    {"X-Short", "value", "in"},
    {"X-Fold", " folded", "kept"},
    {"X-Long", "one two three", "kept"},
    {"Content-Type", "text/plain; charset=\"utf-8\"", "held"},
};

TEST(MessageTexts, LeaveTheValuesOfFieldsWhereTheyLie) {
  mime::MessageTexts texts;
  mimetic::MimeEntity entity;
  mime::ParseMessage(kMessage, entity, texts);
  const mime::HeaderView view(entity.header(), texts.Of(entity.header()));
  std::string storage;
  std::size_t index = 0;
  for (const ValueRow& row : kValues) {
    const std::string_view value = view.Value(index, storage);
    EXPECT_EQ(view.Name(index), row.name);
    EXPECT_EQ(value, row.value);
    const bool is_in =
        value.data() >= kMessage.data() && value.data() < kMessage.data() + kMessage.size();
    EXPECT_EQ(is_in                            ? "in"
              : value.data() == storage.data() ? "held"
                                               : "kept",
              row.place)
        << row.name;
    ++index;
  }
}

TEST(MessageTexts, EndAValueAtItsFirstNul) {
  const std::string message = std::string("X-Nul: be\0fore\nX-Fold: a\n b\0c\n\n", 32);
  mime::MessageTexts texts;
  mimetic::MimeEntity entity;
  mime::ParseMessage(message, entity, texts);
  const mime::HeaderView view(entity.header(), texts.Of(entity.header()));
  std::string storage;
  ASSERT_EQ(view.size(), 2U);
  EXPECT_EQ(view.Value(0, storage), "be");
  EXPECT_EQ(view.Value(1, storage), "a b");
}

}  // namespace
}  // namespace zqv::test
