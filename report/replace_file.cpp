#include "report/replace_file.h"

#include <memory>

#include "platform/file_system.h"

namespace report {

int ReplaceFile(const std::string& path, std::string_view content) {
  int error = 0;
  const std::unique_ptr<platform::OutputFile> file =
      platform::TheFileSystem().CreateOutput(path, &error);
  if (file == nullptr) return error;
  error = file->Append(content);
  return error != 0 ? error : file->Commit();
}

}  // namespace report
