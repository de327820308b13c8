// Reads lines "ZONE SECONDS" (since 1970) and prints the zone's bias in minutes at that moment as
// the program works it out. For zones_test.py.

#include <cstdlib>
#include <ctime>
#include <iostream>
#include <string>

#include "platform/standard_time_linux.h"

int main() {
  std::string zone;
  std::time_t moment = 0;
  while (std::cin >> zone >> moment) {
    setenv("TZ", zone.c_str(), 1);
    tzset();
    std::cout << -platform::StandardOffset(moment) / 60 << '\n';
  }
}
