#include "platform/temporary_name.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

TEST(TemporaryNameTest, NamesTargetAndProcessAndIsNeverTheSame) {
  const std::string name = TemporaryName("usage/Jan.htm", 4711);
  EXPECT_EQ(name.rfind("usage/Jan.htm.4711-", 0), 0u) << name;
  EXPECT_EQ(name.size(), std::string("usage/Jan.htm.4711-0123456789abcdef.tmp").size());
  EXPECT_NE(name, TemporaryName("usage/Jan.htm", 4711));
}

TEST(TemporaryNameTest, TellsItsTarget) {
  EXPECT_EQ(TargetOfTemporary(TemporaryName("Jan.htm", 4711)), "Jan.htm");
  EXPECT_EQ(TargetOfTemporary(TemporaryName("a.1.tmp", 1)), "a.1.tmp");
  EXPECT_EQ(TargetOfTemporary("Jan.htm.4711.tmp"), "Jan.htm");
  EXPECT_EQ(TargetOfTemporary("Jan.htm.4711-2.tmp"), "Jan.htm");
}

TEST(TemporaryNameTest, OtherNamesHaveNone) {
  for (const char* name :
       {"", ".tmp", "Jan.htm", "Jan.htm.tmp", "Jan.htm.backup.tmp", "Jan.htm.1-.tmp", "4711.tmp",
        "Jan.htm.1-xyz.tmp", "Jan.htm.-1.tmp", "Jan.htm.1.tmp.old", "Jan.htm.1-A.tmp"}) {
    EXPECT_EQ(TargetOfTemporary(name), "") << name;
  }
}

}  // namespace
}  // namespace platform
