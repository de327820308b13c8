#include "platform/settings_store.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/service.h"
#include "tests/fakes/fake_settings_store.h"

namespace platform {
namespace {

using Key = SettingsStore::Key;

// What holds for every settings store; the parameter tells whether a fake stands in. Everything
// happens below one key of the test's own, which is removed before and after.
class SettingsStoreTest : public testing::TestWithParam<bool> {
 protected:
  SettingsStoreTest() {
    if (GetParam()) replacement_ = std::make_unique<Replacement<SettingsStore>>(fake_);
    RemoveTree(std::string(kSettingsBranch), "contract test");
    branch_ = Create(root_);
    EXPECT_NE(branch_, 0u);
  }
  ~SettingsStoreTest() override {
    for (const Key key : opened_) TheSettingsStore().CloseKey(key);
    RemoveTree(std::string(kSettingsBranch), "contract test");
  }

  Key Create(const std::string& path) {
    Key key = 0;
    EXPECT_EQ(TheSettingsStore().CreateKey(path, &key), kStoreSuccess) << path;
    opened_.push_back(key);
    return key;
  }
  Key CreateBelow(const std::string& path) { return Create(root_ + "\\" + path); }
  // The result of opening a key that is closed again.
  static SettingsStore::Result ResultOfOpening(const std::string& path) {
    Key key = 0;
    const SettingsStore::Result result = TheSettingsStore().OpenKey(path, &key);
    EXPECT_EQ(result == kStoreSuccess, key != 0);
    TheSettingsStore().CloseKey(key);
    return result;
  }
  bool Exists(const std::string& path) const {
    return ResultOfOpening(root_ + "\\" + path) == kStoreSuccess;
  }
  static void Set(Key key, const std::string& name, std::string_view text) {
    EXPECT_EQ(TheSettingsStore().SetValue(key, name, text), kStoreSuccess) << name;
  }
  static std::vector<std::string> Subkeys(Key key) {
    std::vector<std::string> names;
    std::string name;
    while (TheSettingsStore().EnumKey(key, static_cast<std::uint32_t>(names.size()), &name) ==
           kStoreSuccess) {
      names.push_back(name);
    }
    return names;
  }
  // "name=text" of every value, the terminating zero checked and left out.
  static std::vector<std::string> Values(Key key) {
    std::vector<std::string> values;
    std::string name;
    std::string data;
    while (TheSettingsStore().EnumValue(key, static_cast<std::uint32_t>(values.size()), 10000,
                                        &name, &data) == kStoreSuccess) {
      EXPECT_FALSE(data.empty());
      EXPECT_EQ(data.find('\0'), data.size() - 1);
      values.push_back(name + "=" + data.substr(0, data.size() - 1));
    }
    return values;
  }

  const std::string root_ = std::string(kSettingsBranch) + "\\contract test";
  Key branch_ = 0;

 private:
  static void RemoveTree(const std::string& path, const std::string& name) {
    Key key = 0;
    if (TheSettingsStore().OpenKey(path + "\\" + name, &key) != kStoreSuccess) return;
    for (const std::string& subkey : Subkeys(key)) RemoveTree(path + "\\" + name, subkey);
    TheSettingsStore().CloseKey(key);
    ASSERT_EQ(TheSettingsStore().OpenKey(path, &key), kStoreSuccess);
    EXPECT_EQ(TheSettingsStore().DeleteKey(key, name), kStoreSuccess);
    TheSettingsStore().CloseKey(key);
  }

  fakes::FakeSettingsStore fake_;
  std::unique_ptr<Replacement<SettingsStore>> replacement_;
  std::vector<Key> opened_;
};

using List = std::vector<std::string>;

TEST_P(SettingsStoreTest, AMissingKeyIsNotFound) {
  EXPECT_EQ(ResultOfOpening(root_ + "\\missing"), kStoreNotFound);
  EXPECT_EQ(ResultOfOpening(root_ + "\\missing\\below"), kStoreNotFound);
}

TEST_P(SettingsStoreTest, CreatingAKeyCreatesThoseAboveIt) {
  CreateBelow("a\\b\\c");
  EXPECT_TRUE(Exists("a"));
  EXPECT_TRUE(Exists("a\\b"));
  EXPECT_TRUE(Exists("A\\B\\C"));
}

TEST_P(SettingsStoreTest, CreatingAKeyAgainOpensItAsItIs) {
  Set(CreateBelow("a"), "x", "1");
  EXPECT_EQ(Values(CreateBelow("A")), List{"x=1"});
  EXPECT_EQ(Subkeys(branch_), List{"a"});
}

// Written in the order of their names, because a registry may list them so.
TEST_P(SettingsStoreTest, ValuesKeepTheirPlaceWhenTheyAreWrittenAgain) {
  const Key key = CreateBelow("a");
  for (const char* name : {"field", "includes", "name", "pattern"}) Set(key, name, "1");
  Set(key, "includes", "2");
  EXPECT_EQ(Values(key), (List{"field=1", "includes=2", "name=1", "pattern=1"}));
}

TEST_P(SettingsStoreTest, ValueNamesCompareWithoutRegardToCaseAndKeepTheirSpelling) {
  Set(branch_, "UsageDir", "old");
  Set(branch_, "USAGEDIR", "new");
  EXPECT_EQ(Values(branch_), List{"UsageDir=new"});
  EXPECT_EQ(TheSettingsStore().DeleteValue(branch_, "usagedir"), kStoreSuccess);
  EXPECT_TRUE(Values(branch_).empty());
}

TEST_P(SettingsStoreTest, CountsAreThoseOfTheKeyItself) {
  CreateBelow("a\\b");
  CreateBelow("c");
  Set(branch_, "x", "1");
  Set(CreateBelow("c"), "y", "1");
  std::uint32_t subkeys = 0;
  std::uint32_t values = 0;
  EXPECT_EQ(TheSettingsStore().QueryInfo(branch_, &subkeys, &values), kStoreSuccess);
  EXPECT_EQ(subkeys, 2u);
  EXPECT_EQ(values, 1u);
}

TEST_P(SettingsStoreTest, EnumerationEndsWithNoMoreItems) {
  std::string name;
  std::string data;
  EXPECT_EQ(TheSettingsStore().EnumKey(branch_, 0, &name), kStoreNoMoreItems);
  EXPECT_EQ(TheSettingsStore().EnumValue(branch_, 0, 1000, &name, &data), kStoreNoMoreItems);
}

TEST_P(SettingsStoreTest, TextOfAnyBytesComesBack) {
  for (const char* text : {"", " ", " x ", "C:\\InetPub\\", "a\r\nb", "a=b", "; [x]", "\x01\x7F"}) {
    Set(branch_, "x", text);
    EXPECT_EQ(Values(branch_), List{std::string("x=") + text});
  }
}

TEST_P(SettingsStoreTest, DataThatDoesNotFitIsMoreData) {
  Set(branch_, "x", std::string(1000, 'a'));
  std::string name;
  std::string data;
  EXPECT_EQ(TheSettingsStore().EnumValue(branch_, 0, 1000, &name, &data), kStoreMoreData);
  EXPECT_EQ(TheSettingsStore().EnumValue(branch_, 0, 1001, &name, &data), kStoreSuccess);
  EXPECT_EQ(data.size(), 1001u);
}

TEST_P(SettingsStoreTest, ValueNamesAreEnumeratedUpTo254Characters) {
  Set(branch_, std::string(254, 'a'), "1");
  Set(branch_, std::string(255, 'b'), "1");
  std::string name;
  std::string data;
  EXPECT_EQ(TheSettingsStore().EnumValue(branch_, 0, 1000, &name, &data), kStoreSuccess);
  EXPECT_EQ(name.size(), 254u);
  EXPECT_EQ(TheSettingsStore().EnumValue(branch_, 1, 1000, &name, &data), kStoreMoreData);
}

TEST_P(SettingsStoreTest, DeletingWhatIsMissingIsNotFound) {
  EXPECT_EQ(TheSettingsStore().DeleteValue(branch_, "missing"), kStoreNotFound);
  EXPECT_EQ(TheSettingsStore().DeleteKey(branch_, "missing"), kStoreNotFound);
}

TEST_P(SettingsStoreTest, ADeletedKeyTakesItsValuesWithIt) {
  Set(CreateBelow("a"), "x", "1");
  EXPECT_EQ(TheSettingsStore().DeleteKey(branch_, "A"), kStoreSuccess);
  EXPECT_FALSE(Exists("a"));
  EXPECT_TRUE(Values(CreateBelow("a")).empty());
}

TEST_P(SettingsStoreTest, AKeyWithSubkeysIsNotDeleted) {
  Set(CreateBelow("a\\b"), "x", "1");
  EXPECT_EQ(TheSettingsStore().DeleteKey(branch_, "a"), kStoreAccessDenied);
  EXPECT_TRUE(Exists("a\\b"));
}

TEST_P(SettingsStoreTest, TheKeyAboveADeletedOneStays) {
  const Key above = CreateBelow("a\\b");
  CreateBelow("a\\b\\c");
  EXPECT_EQ(TheSettingsStore().DeleteKey(above, "c"), kStoreSuccess);
  EXPECT_TRUE(Exists("a\\b"));
  EXPECT_TRUE(Subkeys(above).empty());
}

TEST_P(SettingsStoreTest, AKeyThatVanishedFailsEveryOperation) {
  const Key key = CreateBelow("a");
  ASSERT_EQ(TheSettingsStore().DeleteKey(branch_, "a"), kStoreSuccess);
  std::uint32_t count = 0;
  std::string name;
  std::string data;
  EXPECT_NE(TheSettingsStore().QueryInfo(key, &count, &count), kStoreSuccess);
  EXPECT_NE(TheSettingsStore().EnumKey(key, 0, &name), kStoreSuccess);
  EXPECT_NE(TheSettingsStore().EnumValue(key, 0, 100, &name, &data), kStoreSuccess);
  EXPECT_NE(TheSettingsStore().SetValue(key, "x", "1"), kStoreSuccess);
  EXPECT_NE(TheSettingsStore().DeleteValue(key, "x"), kStoreSuccess);
  EXPECT_NE(TheSettingsStore().DeleteKey(key, "b"), kStoreSuccess);
  EXPECT_FALSE(Exists("a"));
}

TEST_P(SettingsStoreTest, ClosingNoKeyIsHarmless) { TheSettingsStore().CloseKey(0); }

INSTANTIATE_TEST_SUITE_P(FakeAndReal, SettingsStoreTest, testing::Values(true, false),
                         [](const auto& suite) { return suite.param ? "Fake" : "Real"; });

}  // namespace
}  // namespace platform
