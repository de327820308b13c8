#include "stats/key_store.h"

#include <gtest/gtest.h>

#include <string>

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
  const KeyStore::Ref first = keys.Append("/a");
  EXPECT_EQ(keys.Find("/a"), first);
  EXPECT_EQ(keys.Key(first), "/a");
  EXPECT_EQ(keys.Find("/A"), KeyStore::kNone);
  EXPECT_EQ(keys.Find(""), KeyStore::kNone);
}

TEST(KeyStore, KeysLongerThanABlockAndEmptyKeysAreKept) {
  KeyStore keys(3);
  const std::string huge(std::size_t{3} << 20, 'x');
  const KeyStore::Ref before = keys.Append("");
  const KeyStore::Ref large = keys.Append(huge);
  const KeyStore::Ref after = keys.Append("/after");
  EXPECT_EQ(keys.Key(before), "");
  EXPECT_EQ(keys.Key(large), huge);
  EXPECT_EQ(keys.Key(after), "/after");
  EXPECT_EQ(keys.Find(huge), large);
}

TEST(KeyStore, ManyKeysKeepTheirCells) {
  KeyStore keys(2);
  for (int i = 0; i < 50000; ++i) {
    const KeyStore::Ref ref = keys.Append(std::to_string(i));
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

TEST(SharedKeys, KeysAreForgottenWithTheLastTable) {
  SharedTables tables;
  mdlMonth::TallyAdd("/a", tables.hits, 10);
  mdlMonth::TallyAdd("/b", tables.pages, 3);
  tables.hits.Clear();
  EXPECT_NE(tables.keys.Find("/a"), KeyStore::kNone);
  tables.pages.Clear();
  EXPECT_EQ(tables.keys.Find("/a"), KeyStore::kNone);
  EXPECT_EQ(tables.keys.Find("/b"), KeyStore::kNone);
}

}  // namespace
