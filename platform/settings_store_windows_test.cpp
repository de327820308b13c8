#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <string>

#include "platform/settings_store.h"

namespace platform {
namespace {

// What the registry holds beside texts.
class RegistryValues : public testing::Test {
 protected:
  RegistryValues() {
    EXPECT_EQ(TheSettingsStore().CreateKey(kPath, &key_), kStoreSuccess);
    SetEnvironmentVariableA("HITWICK_TEST", "D:\\logs");
  }
  ~RegistryValues() override {
    TheSettingsStore().CloseKey(key_);
    RegDeleteKeyA(HKEY_CURRENT_USER, kPath);
  }

  void Put(DWORD type, const std::string& data) const {
    ASSERT_EQ(
        RegSetValueExA(reinterpret_cast<HKEY>(key_), "x", 0, type,
                       reinterpret_cast<const BYTE*>(data.data()), static_cast<DWORD>(data.size())),
        ERROR_SUCCESS);
  }
  // The result of reading the value and what it reads as, with its terminating zero.
  SettingsStore::Result Read(std::string* name, std::string* data) const {
    return TheSettingsStore().EnumValue(key_, 0, 1000, name, data);
  }
  std::string Text() const {
    std::string name;
    std::string data;
    EXPECT_EQ(Read(&name, &data), kStoreSuccess);
    EXPECT_EQ(name, "x");
    EXPECT_EQ(data.find('\0'), data.size() - 1);
    return data.c_str();
  }
  DWORD Type() const {
    DWORD type = REG_NONE;
    RegQueryValueExA(reinterpret_cast<HKEY>(key_), "x", nullptr, &type, nullptr, nullptr);
    return type;
  }

  static constexpr const char* kPath =
      "Software\\VB and VBA Program Settings\\Hitwick\\types of values";
  SettingsStore::Key key_ = 0;
};

TEST_F(RegistryValues, VariablesOfTheEnvironmentAreReplaced) {
  Put(REG_EXPAND_SZ, std::string("%HITWICK_TEST%\\W3SVC1\0", 22));
  EXPECT_EQ(Text(), "D:\\logs\\W3SVC1");
  Put(REG_EXPAND_SZ, std::string("%NOT_SET_ANYWHERE%\0", 19));
  EXPECT_EQ(Text(), "%NOT_SET_ANYWHERE%");
}

TEST_F(RegistryValues, PlainTextIsNotLookedInto) {
  Put(REG_SZ, std::string("%HITWICK_TEST%\0", 15));
  EXPECT_EQ(Text(), "%HITWICK_TEST%");
}

TEST_F(RegistryValues, NumberIsItsDecimalDigits) {
  Put(REG_DWORD, std::string("\x32\0\0\0", 4));
  EXPECT_EQ(Text(), "50");
  Put(REG_DWORD, std::string("\xFF\xFF\xFF\xFF", 4));
  EXPECT_EQ(Text(), "4294967295");
}

TEST_F(RegistryValues, AnythingElseIsNoTextButHasItsName) {
  for (const DWORD type : {REG_BINARY, REG_MULTI_SZ, REG_QWORD, REG_NONE}) {
    Put(type, std::string("50\0\0\0\0\0\0", 8));
    std::string name;
    std::string data;
    EXPECT_EQ(Read(&name, &data), kStoreUnsupportedType) << type;
    EXPECT_EQ(name, "x");
  }
}

TEST_F(RegistryValues, WritingBackWhatWasReadKeepsTheValueAsItIs) {
  Put(REG_EXPAND_SZ, std::string("%HITWICK_TEST%\0", 15));
  EXPECT_EQ(TheSettingsStore().SetValue(key_, "x", "D:\\logs"), kStoreSuccess);
  EXPECT_EQ(Type(), static_cast<DWORD>(REG_EXPAND_SZ));
  EXPECT_EQ(TheSettingsStore().SetValue(key_, "x", "D:\\other"), kStoreSuccess);
  EXPECT_EQ(Type(), static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(Text(), "D:\\other");
}

}  // namespace
}  // namespace platform
