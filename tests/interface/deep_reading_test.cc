// What reads a message's tree, in the tests and in the zqv program, works on the smallest stack for
// the deepest tree, however the tree was made.
#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>

#include "cli/document.h"
#include "cli/message.h"
#include "cli/oddities.h"
#include "cli/report_page.h"
#include "cli/summary.h"
#include "standin/mirror.h"
#include "tests/interface/child.h"
#include "tests/interface/messages.h"
#include "tests/interface/reading.h"
#include "tests/interface/session.h"
#include "tests/support/thread_stack.h"

namespace zqv::interface_test {
namespace {

// Enough for a library that needs stack for each level, too.
constexpr std::size_t kHugeStack = std::size_t{256} << 20;
// Frames are larger in other builds.
constexpr std::size_t kLevels = kShips ? 10'000 : 2'000;
constexpr std::size_t kStack = kShips ? test::kTinyStack : test::kSmallStack;

// Members that share with others what they give: each thing below them would be named by its path,
// which is as long as the tree is deep.
bool IsShared(std::string_view, std::string_view member) {
  return (member.size() > 7 && member.substr(member.size() - 7) == "Variant") ||
         member == "Attachments" || member == "Inlines";
}

std::size_t MirroredLevels(const Object& message) {
  const nlohmann::ordered_json json = standin::Mirror(message, {4 * kLevels, false, IsShared});
  std::size_t levels = 0;
  const nlohmann::ordered_json* parts = &json["Body"]["Parts"];
  for (; !parts->empty(); parts = &(*parts)[0]["Body"]["Parts"]) ++levels;
  return levels;
}

constexpr const char* kTooDeep =
    "RuntimeException, 0: C++ Exception: the message is nested too deeply";

struct ReaderRow {
  const char* name;
  void (*read)(const Object& message);
};
void PrintTo(const ReaderRow& row, std::ostream* out) { *out << row.name; }
constexpr ReaderRow kReaders[] = {
    {"mirror", [](const Object& message) { EXPECT_EQ(MirroredLevels(message), kLevels); }},
    {"all members",
     [](const Object& message) {
       // Whether the source can be written without its files on such a stack is the library's
       // matter.
       const std::string raised = ReadEverything(message, 1);
       EXPECT_TRUE(raised.empty() || raised == kTooDeep) << raised;
     }},
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
    {"summary and oddities",
     [](const Object& message) {
       const cli::PartTree tree(message);
       const auto attached = cli::ListAttached(message, tree);
       EXPECT_FALSE(cli::SummaryOf(message, tree, attached).empty());
       cli::FindOddities(message, tree, attached);
     }},
};

class DeepReading : public InterfaceTest, public ::testing::WithParamInterface<ReaderRow> {};

TEST_P(DeepReading, WorksOnTheSmallestStack) {
  Start();
  for (const auto& make : {&NestedMultiparts, &NestedMixture}) {
    Object message;
    test::RunOnStack(kHugeStack, [&] { message = Parse(make(kLevels)); });
    test::RunOnStack(kStack, [&] { GetParam().read(message); });
    test::RunOnStack(kHugeStack, [&] { message = Object(); });
  }
}

INSTANTIATE_TEST_SUITE_P(Readers, DeepReading, ::testing::ValuesIn(kReaders), [](const auto& row) {
  std::string name = row.param.name;
  for (char& c : name) c = c == ' ' ? '_' : c;
  return name;
});

}  // namespace
}  // namespace zqv::interface_test
