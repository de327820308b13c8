#include "platform/settings_file_linux.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

std::vector<std::string> Subkeys(const SettingsFile& file, std::string_view path) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < file.SubkeyCount(path); ++i) names.push_back(file.Subkey(path, i));
  return names;
}

// "name=text" of every value of a key.
std::vector<std::string> Values(const SettingsFile& file, std::string_view path) {
  std::vector<std::string> values;
  for (std::size_t i = 0; i < file.ValueCount(path); ++i) {
    const SettingsFile::Value value = file.ValueAt(path, i);
    values.push_back(value.name + "=" + value.text);
  }
  return values;
}

std::vector<int> BrokenNumbers(const SettingsFile& file) {
  std::vector<int> numbers;
  for (const auto& line : file.BrokenLines()) numbers.push_back(line.number);
  return numbers;
}

using List = std::vector<std::string>;

TEST(SettingsFileTest, AnEmptyTextHoldsTheEmptyBranch) {
  const SettingsFile file("");
  EXPECT_TRUE(file.HasKey(""));
  EXPECT_EQ(file.SubkeyCount(""), 0u);
  EXPECT_EQ(file.ValueCount(""), 0u);
  EXPECT_EQ(file.Text(), "");
}

TEST(SettingsFileTest, SectionsAreKeysAndLinesAreValues) {
  const SettingsFile file(
      "[web1]\nIISLogFormat=W3C\nIISLogDir=/srv/iis/W3SVC1\n\n"
      "[web1\\Filters\\Robots]\nfield=cs(User-Agent)\npattern=*robot*\n");
  EXPECT_EQ(Values(file, "web1"), (List{"IISLogFormat=W3C", "IISLogDir=/srv/iis/W3SVC1"}));
  EXPECT_EQ(Values(file, "web1\\Filters\\Robots"),
            (List{"field=cs(User-Agent)", "pattern=*robot*"}));
  EXPECT_EQ(Subkeys(file, "web1"), List{"Filters"});
}

TEST(SettingsFileTest, AKeyExistsThroughTheKeysBelowIt) {
  const SettingsFile file("[web1\\Filters\\x]\n");
  EXPECT_TRUE(file.HasKey("web1"));
  EXPECT_TRUE(file.HasKey("web1\\Filters"));
  EXPECT_FALSE(file.HasKey("web"));
  EXPECT_EQ(Subkeys(file, ""), List{"web1"});
  EXPECT_EQ(file.ValueCount("web1"), 0u);
}

TEST(SettingsFileTest, OrderIsThatOfTheFirstAppearance) {
  const SettingsFile file("[b\\x]\n[a]\n2=\n1=\n[B]\n[c]\n[a\\z]\n[a\\y]\n");
  EXPECT_EQ(Subkeys(file, ""), (List{"b", "a", "c"}));
  EXPECT_EQ(Subkeys(file, "a"), (List{"z", "y"}));
  EXPECT_EQ(Values(file, "a"), (List{"2=", "1="}));
}

TEST(SettingsFileTest, NamesCompareWithoutRegardToCase) {
  SettingsFile file("[Web1]\nUsageDir=a\n");
  EXPECT_TRUE(file.HasKey("wEB1"));
  EXPECT_TRUE(file.SetValue("WEB1", "USAGEDIR", "b"));
  EXPECT_EQ(file.Text(), "[Web1]\nUsageDir=b\n");
  EXPECT_FALSE(file.CreateKey("web1"));
}

TEST(SettingsFileTest, SectionsOfOneNameAreOneKey) {
  SettingsFile file("[a]\nx=1\n\n[b]\n\n[A]\ny=2\n");
  EXPECT_EQ(Values(file, "a"), (List{"x=1", "y=2"}));
  file.SetValue("a", "z", "3");
  EXPECT_EQ(file.Text(), "[a]\nx=1\n\n[b]\n\n[A]\ny=2\nz=3\n");
}

TEST(SettingsFileTest, OfARepeatedValueTheFirstCounts) {
  SettingsFile file("[a]\nx=1\nX=2\n[a]\nx=3\n");
  EXPECT_EQ(Values(file, "a"), List{"x=1"});
  EXPECT_TRUE(file.SetValue("a", "x", "9"));
  EXPECT_EQ(file.Text(), "[a]\nx=9\nX=2\n[a]\nx=3\n");
}

TEST(SettingsFileTest, DeletingARepeatedValueDeletesAllOfIt) {
  SettingsFile file("[a]\nx=1\nX=2\ny=0\n[a]\nx=3\n");
  EXPECT_TRUE(file.DeleteValue("a", "x"));
  EXPECT_EQ(file.Text(), "[a]\ny=0\n[a]\n");
  EXPECT_FALSE(file.DeleteValue("a", "x"));
}

TEST(SettingsFileTest, ValuesAboveTheFirstSectionBelongToTheBranch) {
  SettingsFile file("; top\nx=1\n\n; about a\n[a]\ny=2\n");
  EXPECT_EQ(Values(file, ""), List{"x=1"});
  file.SetValue("", "z", "3");
  EXPECT_EQ(file.Text(), "; top\nx=1\nz=3\n\n; about a\n[a]\ny=2\n");
}

TEST(SettingsFileTest, TheFirstValueOfTheBranchStandsAboveTheFirstSection) {
  SettingsFile file("[a]\ny=2\n");
  file.SetValue("", "z", "3");
  EXPECT_EQ(file.Text(), "z=3\n[a]\ny=2\n");
  EXPECT_EQ(Values(file, ""), List{"z=3"});
  EXPECT_EQ(Values(file, "a"), List{"y=2"});
}

TEST(SettingsFileTest, EscapesStandForBackslashReturnAndFeed) {
  const SettingsFile file("[a]\nx=C:\\\\logs\\r\\n\n");
  EXPECT_EQ(file.ValueAt("a", 0).text, "C:\\logs\r\n");
}

TEST(SettingsFileTest, OtherBackslashesStandForThemselves) {
  const SettingsFile file("[a]\nx=C:\\srv\\\n");
  EXPECT_EQ(file.ValueAt("a", 0).text, "C:\\srv\\");
}

TEST(SettingsFileTest, EveryTextComesBackAsItWasWritten) {
  for (const std::string text : {"",
                                 " blanks at the ends ",
                                 "  more  ",
                                 " ",
                                 "  ",
                                 "   ",
                                 " \\",
                                 "\\ ",
                                 "\\s",
                                 " \\s ",
                                 "\\s\\",
                                 "s \\ s",
                                 "\t",
                                 "\ttabs\t",
                                 " \t ",
                                 "\n ",
                                 " \r",
                                 "a=b",
                                 "; no comment",
                                 "[no section]",
                                 "\\",
                                 "\\n",
                                 "\r\n",
                                 "a\nb\rc\\",
                                 "\\\\",
                                 "tab\there",
                                 "\xC3\xA4\xFF",
                                 "\x01\x1F\x7F"}) {
    SettingsFile file("[a]\n");
    file.SetValue("a", "x", text);
    file.SetValue("a", "y", "next");
    const SettingsFile read(file.Text());
    EXPECT_EQ(Values(read, "a"), (List{"x=" + text, "y=next"}));
    EXPECT_TRUE(read.BrokenLines().empty());
  }
}

TEST(SettingsFileTest, BlanksAroundNamesAndValuesDoNotCount) {
  const SettingsFile file("[a] \n  x = /the path  \n\ty\t=1\nz =  \r\n w=\n");
  EXPECT_EQ(Values(file, "a"), (List{"x=/the path", "y=1", "z=", "w="}));
  EXPECT_TRUE(file.BrokenLines().empty());
}

TEST(SettingsFileTest, ReturnsAtTheEndOfALineDoNotCountWhateverFollows) {
  SettingsFile file("[web1]\npattern=*b\r\r");
  EXPECT_EQ(Values(file, "web1"), List{"pattern=*b"});
  EXPECT_TRUE(file.SetValue("web1", "x", "1\r"));
  EXPECT_EQ(Values(SettingsFile(file.Text()), "web1"), (List{"pattern=*b", "x=1\r"}));
}

TEST(SettingsFileTest, EscapedBlanksAtTheEndsOfAValueCount) {
  const SettingsFile file("[a]\nx = \\s1\\s \ny=\\s\nz=\\s\\s  2 \\s\nw=\\s \\s\\\\\\s \\s\n");
  EXPECT_EQ(Values(file, "a"), (List{"x= 1 ", "y= ", "z=    2  ", "w=   \\   "}));
}

TEST(SettingsFileTest, BlanksAreEscapedAtTheEndsOnly) {
  SettingsFile file("[a]\n");
  file.SetValue("a", "x", "  two words  ");
  EXPECT_EQ(file.Text(), "[a]\nx=\\s two words \\s\n");
}

TEST(SettingsFileTest, BackslashBeforeAnSInsideAValueStandsForItself) {
  const SettingsFile file("[a]\nx=C:\\srv\\system\ny=a \\s b\n");
  EXPECT_EQ(Values(file, "a"), (List{"x=C:\\srv\\system", "y=a \\s b"}));
}

TEST(SettingsFileTest, ChangedValueKeepsTheBlanksBeforeIt) {
  SettingsFile file("[a]\n x  =  1 \r\ny =\n");
  EXPECT_TRUE(file.SetValue("a", "X", "2"));
  EXPECT_TRUE(file.SetValue("a", "y", " 3"));
  EXPECT_EQ(file.Text(), "[a]\n x  =  2\r\ny =\\s3\n");
  EXPECT_FALSE(file.SetValue("a", "x", "2"));
}

TEST(SettingsFileTest, CommentsMayBeIndented) {
  const SettingsFile file("[a]\n  ; x = 1\n\t# y = 2\nz=3\n");
  EXPECT_EQ(Values(file, "a"), List{"z=3"});
  EXPECT_TRUE(file.BrokenLines().empty());
}

TEST(SettingsFileTest, ValuesKnowTheirLines) {
  const SettingsFile file("; top\n[a]\nx=1\n\n[b]\n[A]\ny=2\n");
  EXPECT_EQ(file.ValueAt("a", 0).line, 3);
  EXPECT_EQ(file.ValueAt("a", 1).line, 7);
}

TEST(SettingsFileTest, WhatAChangeDoesNotTouchKeepsItsBytes) {
  const std::string before =
      "; a comment\r\n# another\n\n \t\n[odd section]\nstrange = yes\nno value here\n[a]\nx=\\q\\\n"
      "x=again\n\n; end";
  SettingsFile file(before);
  EXPECT_EQ(file.Text(), before);
  file.SetValue("a", "x", "new");
  EXPECT_EQ(file.Text(),
            "; a comment\r\n# another\n\n \t\n[odd section]\nstrange = yes\nno value here\n[a]\n"
            "x=new\nx=again\n\n; end");
}

TEST(SettingsFileTest, ANewLineHasTheLineEndOfTheFirstOne) {
  SettingsFile file("[a]\r\nx=1\r\n");
  file.SetValue("a", "x", "2");
  file.SetValue("a", "y", "3");
  file.CreateKey("b");
  EXPECT_EQ(file.Text(), "[a]\r\nx=2\r\ny=3\r\n\r\n[b]\r\n");
}

TEST(SettingsFileTest, ALastLineWithoutLineEndGetsOneOnlyWhenALineFollows) {
  SettingsFile file("[a]\nx=1");
  file.SetValue("a", "x", "2");
  EXPECT_EQ(file.Text(), "[a]\nx=2");
  file.SetValue("a", "y", "3");
  EXPECT_EQ(file.Text(), "[a]\nx=2\ny=3\n");
}

TEST(SettingsFileTest, WritingWhatIsThereChangesNothing) {
  SettingsFile file("[a]\nx=C:\\srv\n");
  EXPECT_FALSE(file.SetValue("a", "x", "C:\\srv"));
  EXPECT_EQ(file.Text(), "[a]\nx=C:\\srv\n");
}

TEST(SettingsFileTest, ANewKeyStandsWithItsFamily) {
  SettingsFile file("[web1]\nx=1\n\n; the second site\n[web2]\nx=2\n");
  EXPECT_TRUE(file.CreateKey("web1\\Filters\\f"));
  EXPECT_EQ(file.Text(), "[web1]\nx=1\n\n[web1\\Filters\\f]\n\n; the second site\n[web2]\nx=2\n");
  EXPECT_TRUE(file.CreateKey("web3"));
  EXPECT_EQ(file.Text(),
            "[web1]\nx=1\n\n[web1\\Filters\\f]\n\n; the second site\n[web2]\nx=2\n\n[web3]\n");
}

TEST(SettingsFileTest, ACommentRightBelowAValueStaysWithIt) {
  SettingsFile file("[a]\nx=1\n; about x\n[b]\n");
  file.CreateKey("a\\c");
  EXPECT_EQ(file.Text(), "[a]\nx=1\n; about x\n\n[a\\c]\n[b]\n");
}

TEST(SettingsFileTest, AValueOfAKeyWithoutSectionMakesTheSection) {
  SettingsFile file("[web1\\Filters\\f]\nx=1\n");
  EXPECT_TRUE(file.SetValue("web1", "UsageDir", "/u"));
  EXPECT_EQ(file.Text(), "[web1\\Filters\\f]\nx=1\n\n[web1]\nUsageDir=/u\n");
}

TEST(SettingsFileTest, ADeletedKeyTakesItsValuesAndLeavesComments) {
  SettingsFile file("[a]\nx=1\n\n[b]\n; mine\ny=2\nbroken\nY=3\n\n[c]\n");
  file.DeleteKey("b");
  EXPECT_FALSE(file.HasKey("b"));
  EXPECT_EQ(file.Text(), "[a]\nx=1\n\n; mine\nbroken\n\n[c]\n");
}

TEST(SettingsFileTest, DeletedKeysLeaveNoHeapOfBlankLines) {
  SettingsFile file("[a]\nx=1\n");
  for (int i = 0; i < 3; ++i) {
    file.CreateKey("b");
    file.SetValue("b", "y", "2");
    file.CreateKey("c");
    file.DeleteKey("b");
    file.DeleteKey("c");
  }
  EXPECT_EQ(file.Text(), "[a]\nx=1\n");
  file.DeleteKey("a");
  EXPECT_EQ(file.Text(), "");
}

TEST(SettingsFileTest, TheKeyAboveADeletedOneStays) {
  SettingsFile file("[web1\\Filters\\f]\nx=1\n");
  file.DeleteKey("web1\\Filters\\f");
  EXPECT_EQ(file.Text(), "[web1\\Filters]\n");
  file.DeleteKey("web1\\Filters");
  EXPECT_EQ(file.Text(), "[web1]\n");
  file.DeleteKey("web1");
  EXPECT_EQ(file.Text(), "");
}

TEST(SettingsFileTest, BrokenLinesAreCountedFromOneAndTheRestIsUsed) {
  const SettingsFile file(std::string("nonsense\n[a]\n=no name\nx=1\nz\0=2\n =\n", 34));
  EXPECT_EQ(BrokenNumbers(file), (std::vector<int>{1, 3, 5, 6}));
  EXPECT_EQ(Values(file, "a"), List{"x=1"});
}

TEST(SettingsFileTest, ValuesBelowABrokenSectionBelongToNoKey) {
  for (const char* header : {"[b", "[]", "[", "[\\b]", "[b\\]", "[b\\\\c]", " [b]", "[b] x"}) {
    const SettingsFile file("[a]\nx=1\n" + std::string(header) + "\ny=2\n[c]\nz=3\n");
    EXPECT_EQ(Values(file, "a"), List{"x=1"}) << header;
    EXPECT_EQ(Values(file, "c"), List{"z=3"}) << header;
    EXPECT_EQ(BrokenNumbers(file), std::vector<int>{3}) << header;
  }
}

TEST(SettingsFileTest, AByteOrderMarkIsNoPartOfTheFirstLine) {
  const SettingsFile file("\xEF\xBB\xBF[a]\nx=1\n");
  EXPECT_EQ(Values(file, "a"), List{"x=1"});
}

TEST(SettingsFileTest, NamesThatTheFormatCannotHoldAreInvalid) {
  using std::string_literals::operator""s;
  for (const std::string& name :
       {""s, "a=b"s, "[a"s, ";a"s, "#a"s, "a\nb"s, "a\rb"s, "a\0b"s, " a"s, "a "s, "\ta"s, " "s}) {
    EXPECT_FALSE(SettingsFile::IsValidValueName(name)) << name;
  }
  for (const std::string& path : {""s, "\\a"s, "a\\"s, "a\\\\b"s, "a\nb"s, "a\rb"s, "a\0b"s}) {
    EXPECT_FALSE(SettingsFile::IsValidPath(path)) << path;
  }
}

TEST(SettingsFileTest, EveryValidNameComesBackAsItWasWritten) {
  for (const std::string path : {"a]", "]", "[", "a=b", "; x", " a ", "=", "a] ; b", "\xFF"}) {
    ASSERT_TRUE(SettingsFile::IsValidPath(path)) << path;
    SettingsFile file;
    file.CreateKey(path);
    file.SetValue(path, "a [b] ;#", "1");
    const SettingsFile read(file.Text());
    EXPECT_EQ(Subkeys(read, ""), List{path});
    EXPECT_EQ(Values(read, path), List{"a [b] ;#=1"});
  }
}

}  // namespace
}  // namespace platform
