// A helper library that registers nothing: it writes the task that it is given beside itself and
// answers 42.
#include <windows.h>

#include <fstream>
#include <string>

extern "C" __declspec(dllexport) LONG WINAPI
    Hitwick_schedule(const char* name, const char* program, const char* parameters,
                     const char* folder, SHORT hour, SHORT minute) {
  std::ofstream(std::string(folder) + "\\scheduled.txt", std::ios::binary)
      << name << '|' << program << '|' << parameters << '|' << folder << '|' << hour << '|'
      << minute;
  return 42;
}
