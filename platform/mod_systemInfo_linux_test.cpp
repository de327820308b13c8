#include <gtest/gtest.h>

#include <cerrno>

#include "platform/mod_systemInfo.h"

namespace mod_systemInfo {
namespace {

TEST(LinuxSystemInfoTest, CountsAsVersionSix) { EXPECT_EQ(GetOSMajorVersion(), 6); }

TEST(LinuxSystemInfoTest, ErrorTextIsTheCLibrarys) {
  EXPECT_EQ(GetErrorText(ENOENT), "No such file or directory");
  EXPECT_EQ(GetErrorText(ENOSPC), "No space left on device");
}

TEST(LinuxSystemInfoTest, UnknownCodesHaveATextToo) {
  EXPECT_NE(GetErrorText(123456).find("123456"), std::string::npos);
  EXPECT_NE(GetErrorText(-5), "");
}

}  // namespace
}  // namespace mod_systemInfo
