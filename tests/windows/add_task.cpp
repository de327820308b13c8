// Adds a daily task with the helper library of a folder, as the program there would:
//
//     add_task FOLDER NAME
//
// Writes the system's code; 0: the task is there.
#include <iostream>

#include "platform/daily_tasks.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  std::cout << platform::TheDailyTasks()
                   .Hitwick_schedule({argv[2], "hitwick.exe", " /BATCH", argv[1], 2, 0})
                   .code
            << std::endl;
  return 0;
}
