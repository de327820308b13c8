#include "stats/key_store.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "stats/tally.h"

namespace {

using stats::KeyStore;
using stats::TallyEntry;
using stats::TallyTable;

struct SharedTables {
  KeyStore keys{2};
  TallyTable hits{keys, 0};
  TallyTable pages{keys, 1};
};

TEST(KeyStore, FindsOnlyWhatWasEntered) {
  KeyStore keys;
  const KeyStore::Ref first = keys.FindOrEnter("/a");
  EXPECT_EQ(keys.Find("/a"), first);
  EXPECT_EQ(keys.Key(first), "/a");
  EXPECT_EQ(keys.Find("/A"), KeyStore::kNone);
  EXPECT_EQ(keys.Find(""), KeyStore::kNone);
}

TEST(KeyStore, KeysLongerThanABlockAndEmptyKeysAreKept) {
  KeyStore keys(3);
  const std::string huge(std::size_t{3} << 20, 'x');
  const KeyStore::Ref before = keys.FindOrEnter("");
  const KeyStore::Ref large = keys.FindOrEnter(huge);
  const KeyStore::Ref after = keys.FindOrEnter("/after");
  EXPECT_EQ(keys.Key(before), "");
  EXPECT_EQ(keys.Key(large), huge);
  EXPECT_EQ(keys.Key(after), "/after");
  EXPECT_EQ(keys.Find(huge), large);
}

TEST(KeyStore, ManyKeysKeepTheirCells) {
  KeyStore keys(2);
  for (int i = 0; i < 50000; ++i) {
    const KeyStore::Ref ref = keys.FindOrEnter(std::to_string(i));
    keys.At(ref, 0).count = i;
    keys.At(ref, 1).count = -i;
  }
  for (int i = 0; i < 50000; ++i) {
    const KeyStore::Ref ref = keys.Find(std::to_string(i));
    ASSERT_NE(ref, KeyStore::kNone);
    ASSERT_EQ(keys.At(ref, 0).count, i);
    ASSERT_EQ(keys.At(ref, 1).count, -i);
  }
}

TEST(SharedKeys, TablesCountTheSameKeyApart) {
  SharedTables tables;
  mdlMonth::TallyAdd("/a", tables.hits, 10);
  mdlMonth::TallyAdd("/b", tables.hits, 10);
  mdlMonth::TallyAdd("/b", tables.pages, 3);
  EXPECT_EQ(tables.hits.Count(), 2);
  EXPECT_EQ(tables.pages.Count(), 1);
  EXPECT_FALSE(tables.pages.Contains("/a"));
  TallyEntry entry;
  ASSERT_TRUE(tables.pages.Find("/b", &entry));
  EXPECT_EQ(entry.Count, 1);
  EXPECT_EQ(entry.Metric, 3);
}

TEST(SharedKeys, ClearingOneTableLeavesTheOther) {
  SharedTables tables;
  mdlMonth::TallyAdd("/a", tables.hits, 10);
  mdlMonth::TallyAdd("/a", tables.pages, 3);
  tables.hits.Clear();
  EXPECT_EQ(tables.hits.Count(), 0);
  EXPECT_FALSE(tables.hits.Contains("/a"));
  ASSERT_EQ(tables.pages.Count(), 1);
  EXPECT_EQ(tables.pages.At(1).Key, "/a");
  mdlMonth::TallyAdd("/a", tables.hits, 5);
  EXPECT_EQ(tables.hits.At(1).Count, 1);
  EXPECT_EQ(tables.hits.At(1).Metric, 5);
}

TEST(KeyStore, AKeyIsEnteredOnce) {
  KeyStore keys;
  const KeyStore::Ref row = keys.FindOrEnter("/a");
  EXPECT_EQ(keys.FindOrEnter("/a"), row);
  EXPECT_EQ(keys.FindOrEnterAgain("/a"), row);
  const KeyStore::Ref other = keys.FindOrEnterAgain("/b");
  EXPECT_NE(other, row);
  EXPECT_EQ(keys.FindOrEnterAgain("/b"), other);
  EXPECT_EQ(keys.FindOrEnterAgain("/a"), row);
}

TEST(KeyStore, NotesBeginAtZeroAndStay) {
  KeyStore keys(1, 2);
  const KeyStore::Ref row = keys.FindOrEnter("/a");
  EXPECT_EQ(keys.Note(row, 0), 0U);
  EXPECT_EQ(keys.Note(row, 1), 0U);
  keys.Note(row, 1) = 0xFFFFFFFF;
  keys.At(row, 0).count = 7;
  EXPECT_EQ(keys.Note(row, 0), 0U);
  EXPECT_EQ(keys.Note(row, 1), 0xFFFFFFFF);
  EXPECT_EQ(keys.Key(row), "/a");
}

TEST(KeyStore, VisitsEveryKeyInOrderOfEntry) {
  KeyStore keys(2, 1);
  std::vector<std::string> entered;
  for (int i = 0; i < 20000; ++i) {
    entered.push_back(std::string(static_cast<std::size_t>(i % 50), 'x') + std::to_string(i));
    if (i % 5000 == 0) entered.back() += std::string(300'000, 'y');
    keys.FindOrEnter(entered.back());
  }
  std::vector<std::string> visited;
  keys.ForEach([&](KeyStore::Ref row) { visited.emplace_back(keys.Key(row)); });
  EXPECT_TRUE(visited == entered);
}

TEST(KeyStore, ClearForgetsEveryKey) {
  KeyStore keys;
  keys.FindOrEnterAgain("/a");
  keys.Clear();
  EXPECT_EQ(keys.Find("/a"), KeyStore::kNone);
  EXPECT_NE(keys.FindOrEnterAgain("/a"), KeyStore::kNone);
}

}  // namespace
