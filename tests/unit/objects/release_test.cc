#include "objects/release.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <set>
#include <utility>
#include <vector>

#include "objects/body.h"
#include "objects/entity.h"
#include "tests/support/thread_stack.h"
#include "tests/unit/objects/objects_fixture.h"

namespace zqv::test {
namespace {

// Whether nothrow new succeeds. Only the queue of the waiting lists uses nothrow new in this
// program.
bool g_has_memory = true;

}  // namespace
}  // namespace zqv::test

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return zqv::test::g_has_memory ? std::malloc(size) : nullptr;
}

namespace zqv::test {
namespace {

using objects::MimeBodyClassData;
using objects::MimeEntityClassData;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class Release : public ObjectsTest {
 protected:
  void TearDown() override {
    g_has_memory = true;
    ObjectsTest::TearDown();
  }

  // A body whose list has `count` entities with a body each. `lists_` keeps the addresses of all
  // lists, the outer one first.
  host::ObjectRef NewTree(std::size_t count) {
    host::ObjectRef top = NewBody();
    for (std::size_t i = 0; i < count; ++i) AddEntity(ListOf(top), NewBody());
    return top;
  }

  // A body that contains a list with one body, which contains another such list, and so on.
  host::ObjectRef NewChain(std::size_t levels) {
    host::ObjectRef body = NewBody();
    for (std::size_t i = 0; i < levels; ++i) {
      host::ObjectRef around = NewBody();
      AddEntity(ListOf(around), std::move(body));
      body = std::move(around);
    }
    return body;
  }

  // The addresses of the lists that were given back, in that order.
  std::vector<const void*> UnlockedLists() const {
    std::vector<const void*> lists;
    for (const void* thing : Unlocked()) {
      if (std::count(lists_.begin(), lists_.end(), thing) > 0) lists.push_back(thing);
    }
    return lists;
  }

  std::vector<const void*> lists_;

 private:
  static abi::REALarray ListOf(const host::ObjectRef& body) {
    return host::RecordOf<MimeBodyClassData>(body.get())->parts.get();
  }

  host::ObjectRef NewBody() {
    auto body = host::NewInstance<MimeBodyClassData>();
    host::RecordOf<MimeBodyClassData>(body.get())->parts.Put(host::NewObjectArray());
    lists_.push_back(ListOf(body));
    return body;
  }

  static void AddEntity(abi::REALarray list, host::ObjectRef body) {
    const auto entity = host::NewInstance<MimeEntityClassData>();
    host::RecordOf<MimeEntityClassData>(entity.get())->Body.Put(std::move(body));
    host::AppendObject(list, entity.get());
  }
};

TEST_F(Release, OfNilDoesNothing) {
  RecordUnlocks();
  objects::ReleaseParts({});
  EXPECT_THAT(Unlocked(), IsEmpty());
}

TEST_F(Release, GivesTheListBackAtOnce) {
  RecordUnlocks();
  host::ArrayRef list = host::NewObjectArray();
  const void* const raw = list.get();
  objects::ReleaseParts(std::move(list));
  EXPECT_EQ(Unlocked(), std::vector<const void*>{raw});
}

class ReleaseOfMany : public Release, public ::testing::WithParamInterface<std::size_t> {};

// Inner lists wait until the outer list is gone, and are then given back newest first. The first 32
// lists wait on the stack, all others in allocated memory.
TEST_P(ReleaseOfMany, GivesTheListsInsideBackAfterTheOuterOne) {
  host::ObjectRef top = NewTree(GetParam());
  RecordUnlocks();
  top = {};
  std::vector<const void*> expected = lists_;
  std::reverse(expected.begin() + 1, expected.end());
  EXPECT_THAT(UnlockedLists(), ElementsAreArray(expected));
  EXPECT_EQ(host().ledger().Report(), "");
}

INSTANTIATE_TEST_SUITE_P(Counts, ReleaseOfMany, ::testing::Values(1, 31, 32, 33, 100));

TEST_F(Release, GivesListsBackAtOnceWhenThereIsNoMemoryForThemToWait) {
  host::ObjectRef top = NewTree(100);
  RecordUnlocks();
  g_has_memory = false;
  top = {};
  const std::vector<const void*> unlocked = UnlockedLists();
  EXPECT_EQ(std::set<const void*>(unlocked.begin(), unlocked.end()).size(), 101U);
  EXPECT_EQ(unlocked.size(), 101U);
  EXPECT_EQ(unlocked.front(), lists_.front());
  // The lists for which the queue has places without allocating wait. The others are given back at
  // once, in the order of the message.
  const auto first = std::find(lists_.begin() + 1, lists_.end(), unlocked[1]);
  EXPECT_THAT(
      std::vector<const void*>(unlocked.begin() + 1, unlocked.begin() + 1 + (lists_.end() - first)),
      ElementsAreArray(first, lists_.end()));
  EXPECT_EQ(host().ledger().Report(), "");
}

TEST_F(Release, QueueIsUsedAgain) {
  for (int i = 0; i < 3; ++i) {
    host::ObjectRef top = NewTree(40);
    top = {};
    EXPECT_EQ(host().ledger().Report(), "");
  }
}

// The host's calls never nest deeper than a few frames, however deep the tree is.
TEST_F(Release, NeedsNoStackForNesting) {
  standin::Capabilities capabilities;
  capabilities.release_stack = 4'000;
  StartObjects(capabilities);
  host::ObjectRef top = NewChain(10'000);
  RunOnStack(std::size_t{128} * 1024, [&top] { top = {}; });
  EXPECT_EQ(host().ledger().Report(), "");
}

TEST_F(Release, GivesBackEveryListOfAChain) {
  host::ObjectRef top = NewChain(1'000);
  RecordUnlocks();
  top = {};
  std::vector<const void*> expected = lists_;
  std::reverse(expected.begin(), expected.end());
  EXPECT_THAT(UnlockedLists(), ElementsAreArray(expected));
}

}  // namespace
}  // namespace zqv::test
