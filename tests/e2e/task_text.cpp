// Writes the definition of a daily task as the helper library hands it to the Task Scheduler:
//
//     task_text always|logged-on FOLDER PROGRAM PARAMETERS
//
// for the user S-1-5-21-1-2-3-1001, first on 2026-03-01 at 02:05.

#include <iostream>
#include <string>

#include "platform/task_xml.h"

int main(int argc, char** argv) {
  if (argc != 5) return 2;
  const auto logon = std::string(argv[1]) == "always" ? platform::TaskLogon::kAlways
                                                      : platform::TaskLogon::kWhenLoggedOn;
  std::cout << platform::TaskXml({"task", argv[3], argv[4], argv[2], 2, 5}, "S-1-5-21-1-2-3-1001",
                                 {2026, 3, 1, 2, 5}, logon);
  return 0;
}
