#include "platform/file_system.h"

#include <vector>

namespace platform {

std::string JoinPath(std::string_view folder, std::string_view name) {
  std::string path(folder);
  path += kPathSeparator;
  path += name;
  return path;
}

int ReadWholeFile(FileSystem& files, const std::string& path, std::string* content) {
  content->clear();
  int error = 0;
  const std::unique_ptr<InputFile> file = files.OpenForReading(path, &error);
  if (file == nullptr) return error;
  std::vector<char> buffer(64 * 1024);
  std::size_t got = 0;
  while ((error = file->Read(buffer.data(), buffer.size(), &got)) == 0 && got > 0) {
    content->append(buffer.data(), got);
  }
  return error;
}

int ReadWholeFile(const std::string& path, std::string* content) {
  return ReadWholeFile(TheFileSystem(), path, content);
}

}  // namespace platform
