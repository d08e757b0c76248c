// The code that reads the tree of a message, in the tests and in the zqv program, works on the
// smallest stack for the deepest tree.
#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>

#include "cli/check_message.h"
#include "cli/document.h"
#include "cli/message.h"
#include "cli/report_page.h"
#include "cli/summary.h"
#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/support/thread_stack.h"

namespace zqv::interface_test {
namespace {

// Other builds have larger stack frames.
constexpr std::size_t kLevels = kShips ? kMostEntities - 1 : 2'000;
constexpr std::size_t kStack = kShips ? test::kTinyStack : test::kSmallStack;

std::size_t MirroredLevels(const Object& message) {
  const nlohmann::ordered_json json = MirrorOfTree(message, kLevels);
  std::size_t levels = 0;
  const nlohmann::ordered_json* parts = &json["Body"]["Parts"];
  for (; !parts->empty(); parts = &(*parts)[0]["Body"]["Parts"]) ++levels;
  return levels;
}

struct ReaderRow {
  const char* name;
  void (*read)(const Object& message);
};
void PrintTo(const ReaderRow& row, std::ostream* out) { *out << row.name; }
constexpr ReaderRow kReaders[] = {
    {"mirror", [](const Object& message) { EXPECT_EQ(MirroredLevels(message), kLevels); }},
    {"all members", [](const Object& message) { EXPECT_EQ(ReadEverything(message, 1), ""); }},
    {"parts",
     [](const Object& message) {
       const cli::PartTree tree(message);
       ASSERT_EQ(tree.parts().size(), kLevels + 1);
       EXPECT_EQ(tree.parts().back().depth, kLevels);
       EXPECT_EQ(cli::FindPart(message, tree.Number(kLevels)), tree.parts().back().entity);
     }},
    {"JSON",
     [](const Object& message) {
       const nlohmann::ordered_json json = cli::DescribeMessage(message, cli::ReadableText);
       EXPECT_EQ(json["parts"].size(), kLevels + 1);
       EXPECT_NE(json.dump(2).find("The innermost text."), std::string::npos);
     }},
    {"page",
     [](const Object& message) {
       EXPECT_NE(cli::ReportPage("deep.eml", message).find("The innermost text."),
                 std::string::npos);
     }},
    {"summary and findings",
     [](const Object& message) {
       const cli::PartTree tree(message);
       const auto attached = cli::ListAttached(message, tree);
       EXPECT_FALSE(cli::SummaryOf(message, tree, cli::MailReading(message)).empty());
       cli::CheckMessage(message, tree, attached);
     }},
};

class DeepReading : public InterfaceTest, public ::testing::WithParamInterface<ReaderRow> {};

TEST_P(DeepReading, WorksOnTheSmallestStack) {
  Start();
  for (const auto& make : {&NestedMultiparts, &NestedMixture}) {
    test::RunOnStack(kStack, [&] { GetParam().read(Parse(make(kLevels))); });
  }
}

INSTANTIATE_TEST_SUITE_P(Readers, DeepReading, ::testing::ValuesIn(kReaders), [](const auto& row) {
  std::string name = row.param.name;
  for (char& c : name) c = c == ' ' ? '_' : c;
  return name;
});

}  // namespace
}  // namespace zqv::interface_test
