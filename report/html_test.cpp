#include "report/html.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(UrlCell, LinkHasEncodedBlanksAndTextReadableOnes) {
  EXPECT_EQ(html::UrlCell("/index.htm"), "<td><a href=\"/index.htm\">/index.htm</a></td>");
  EXPECT_EQ(html::UrlCell("/a+b+c/%7Eme"), "<td><a href=\"/a%20b%20c/%7Eme\">/a b c/~me</a></td>");
}

TEST(UrlCell, OnlyTheCapitalFormOfTheTildeIsReplaced) {
  EXPECT_EQ(html::UrlCell("/%7eme"), "<td><a href=\"/%7eme\">/%7eme</a></td>");
}

TEST(UrlCell, ScriptIsTextWithoutLink) {
  EXPECT_EQ(html::UrlCell("javascript:alert(1)"), "<td>javascript:alert(1)</td>");
  EXPECT_EQ(html::UrlCell("data:text/html,a+b"), "<td>data:text/html,a b</td>");
}

TEST(IsLinkable, SchemesThatCarryAScriptAreNot) {
  EXPECT_FALSE(html::IsLinkable("javascript:x"));
  EXPECT_FALSE(html::IsLinkable("vbscript:x"));
  EXPECT_FALSE(html::IsLinkable("data:x"));
}

TEST(IsLinkable, HoweverTheyAreSpelt) {
  EXPECT_FALSE(html::IsLinkable("JavaScript:x"));
  EXPECT_FALSE(html::IsLinkable("java\tscript:x"));
  EXPECT_FALSE(html::IsLinkable("\x01 java script :x"));
  EXPECT_FALSE(html::IsLinkable(std::string("java\0script:x", 13)));
  EXPECT_FALSE(html::IsLinkable("DA\x7fTA:x"));
}

TEST(IsLinkable, NorACharacterReferenceInPlaceOfTheScheme) {
  EXPECT_FALSE(html::IsLinkable("&#106;avascript:x"));
  EXPECT_FALSE(html::IsLinkable("java&Tab;script:x"));
  EXPECT_FALSE(html::IsLinkable("javascript&#58;alert(1)"));
  EXPECT_FALSE(html::IsLinkable("javascript&colon;alert(1)"));
}

TEST(IsLinkable, OrdinaryAddressesAre) {
  EXPECT_TRUE(html::IsLinkable("/index.htm"));
  EXPECT_TRUE(html::IsLinkable("/a&b"));
  EXPECT_TRUE(html::IsLinkable("http://www.example.org/a&b"));
  EXPECT_TRUE(html::IsLinkable("/javascript:x"));
  EXPECT_TRUE(html::IsLinkable("?javascript:x"));
  EXPECT_TRUE(html::IsLinkable("#data:x"));
  EXPECT_TRUE(html::IsLinkable("notjavascript:x"));
  EXPECT_TRUE(html::IsLinkable("*"));
  EXPECT_TRUE(html::IsLinkable(""));
}

TEST(ReferrerCell, LinksToItWithoutReplacements) {
  EXPECT_EQ(html::ReferrerCell("http://a/b+c%7E"),
            "<td><a href=\"http://a/b+c%7E\">http://a/b+c%7E</a></td>");
}

TEST(ReferrerCell, NoneIsADirectRequest) {
  EXPECT_EQ(html::ReferrerCell("-"), "<td>(Direct request)</td>");
}

TEST(ReferrerCell, ScriptIsTextWithoutLink) {
  EXPECT_EQ(html::ReferrerCell("VBScript:x"), "<td>VBScript:x</td>");
}

TEST(BarCell, HeightIsABareNumber) {
  std::string page;
  html::BarCell(page, "90", "green");
  EXPECT_EQ(page,
            "<td  style=\"vertical-align:bottom; height:300px\"><div style=\"height:90; "
            "background-color:green; font-size:0pt; width:100%\"></div>\r\n");
}

TEST(Caption, LinkStandsAfterTheTitle) {
  std::string page;
  html::Caption(page, "Title");
  html::Caption(page, "Title", " <small>x</small>");
  EXPECT_EQ(page,
            "<caption><b>Title</b></caption>\r\n"
            "<caption><b>Title</b> <small>x</small></caption>\r\n");
}

}  // namespace
