// A program that runs until its standard input ends, to be found running.
#include <iostream>
#include <string>

int main() {
  std::cout << "running" << std::endl;
  for (std::string line; std::getline(std::cin, line);) {
  }
  return 0;
}
