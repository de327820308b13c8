#include "tools/visitors.h"

#include <charconv>
#include <iterator>
#include <string_view>

namespace sample_logs {
namespace {

// "#" stands for the version.
constexpr std::string_view kBrowsers[] = {
    "Mozilla/5.0+(Windows+NT+10.0;+Win64;+x64)+AppleWebKit/537.36+(KHTML,+like+Gecko)+Chrome/#"
    "+Safari/537.36",
    "Mozilla/5.0+(iPhone;+CPU+iPhone+OS+17_5+like+Mac+OS+X)+AppleWebKit/605.1.15+(KHTML,+like"
    "+Gecko)+Version/#+Mobile/15E148+Safari/604.1",
    "Mozilla/5.0+(Linux;+Android+10;+K)+AppleWebKit/537.36+(KHTML,+like+Gecko)+Chrome/#+Mobile"
    "+Safari/537.36",
    "Mozilla/5.0+(Macintosh;+Intel+Mac+OS+X+10_15_7)+AppleWebKit/605.1.15+(KHTML,+like+Gecko)"
    "+Version/#+Safari/605.1.15",
    "Mozilla/5.0+(Windows+NT+10.0;+Win64;+x64;+rv:109.0)+Gecko/20100101+Firefox/#",
    "Mozilla/5.0+(Windows+NT+10.0;+Win64;+x64)+AppleWebKit/537.36+(KHTML,+like+Gecko)+Chrome/118.0"
    "+Safari/537.36+Edg/#",
    "Mozilla/5.0+(X11;+Ubuntu;+Linux+x86_64;+rv:109.0)+Gecko/20100101+Firefox/#",
    "Mozilla/5.0+(Macintosh;+Intel+Mac+OS+X+10_15_7)+AppleWebKit/537.36+(KHTML,+like+Gecko)"
    "+Chrome/#+Safari/537.36",
    "Mozilla/5.0+(iPad;+CPU+OS+16_7+like+Mac+OS+X)+AppleWebKit/605.1.15+(KHTML,+like+Gecko)"
    "+Version/#+Mobile/15E148+Safari/604.1",
    "Mozilla/5.0+(compatible;+MSIE+10.0;+Windows+NT+6.1;+WOW64;+Trident/6.0;+rv:#)",
    "Opera/9.80+(Windows+NT+6.1)+Presto/2.12.388+Version/#",
    "Mozilla/5.0+(X11;+CrOS+x86_64+14541.0.0)+AppleWebKit/537.36+(KHTML,+like+Gecko)+Chrome/#"
    "+Safari/537.36",
};

std::string Version(std::uint64_t number) {
  return std::to_string(96 + number % 40) + "." + std::to_string(number / 40);
}

std::string Hex(std::uint64_t number) {
  char digits[16];
  return {digits, std::to_chars(digits, digits + sizeof digits, number, 16).ptr};
}

// Spreads the numbers below 2^24 without two meeting: the factor is odd.
constexpr std::uint64_t Spread(std::uint64_t number) { return number * 0x9E3779B1 & 0xFFFFFF; }

std::string IPv6Address(std::uint64_t number) {
  const std::uint64_t spread = Spread(number);
  return "2001:db8:" + Hex(spread >> 12) + ":" + Hex(spread & 0xFFF) + "::" + Hex(1 + number % 9);
}

// The documentation ranges first, they hold 254 addresses each; then the private range.
std::string IPv4Address(std::uint64_t number) {
  constexpr std::string_view kDocumentation[] = {
      "192.0.2.",
      "198.51.100.",
      "203.0.113.",
  };
  if (number < 3 * 254) {
    return std::string(kDocumentation[number % 3]) + std::to_string(1 + number / 3);
  }
  const std::uint64_t spread = Spread(number);
  return "10." + std::to_string(spread >> 16) + "." + std::to_string(spread >> 8 & 0xFF) + "." +
         std::to_string(spread & 0xFF);
}

}  // namespace

std::string ClientAddress(std::uint64_t index) {
  return index % 3 == 2 ? IPv6Address(index / 3) : IPv4Address(index / 3 * 2 + index % 3);
}

std::string BrowserAgent(std::uint64_t index) {
  std::string agent(kBrowsers[index % std::size(kBrowsers)]);
  const std::size_t version_at = agent.find('#');
  return agent.replace(version_at, 1, Version(index / std::size(kBrowsers)));
}

const std::vector<Robot>& Robots() {
  static const std::vector<Robot> robots = {
      {"Mozilla/5.0+(compatible;+Googlebot/2.1;++http://www.google.com/bot.html)", "192.0.2.201",
       12, 9},
      {"Mozilla/5.0+(compatible;+bingbot/2.0;++http://www.bing.com/bingbot.htm)", "198.51.100.202",
       9, 8},
      {"Mozilla/5.0+(compatible;+YandexBot/3.0;++http://yandex.com/bots)", "203.0.113.203", 5, 6},
      {"Mozilla/5.0+(compatible;+HarbourSpider/1.4;++http://spider.example.net/about)",
       "2001:db8:5::7", 3, 30},
      {"ia_archiver", "203.0.113.204", 1, 45},
      // Known by nothing but its visits to /robots.txt.
      {"LinkWarden/0.9+(http://links.example.com)", "192.0.2.205", 2, 12}};
  return robots;
}

const std::string& ScannerAgent() {
  static const std::string agent = "python-requests/2.31.0";
  return agent;
}

const std::vector<std::string>& ScannedUrls() {
  static const std::vector<std::string> urls = {
      "/wp-login.php", "/.env",      "/phpmyadmin/index.php", "/admin/config.php",
      "/xmlrpc.php",   "/.git/HEAD", "/cgi-bin/test.cgi",     "/backup.zip",
      "/owa/auth.owa", "/web.config"};
  return urls;
}

}  // namespace sample_logs
