#include "logread/log_input.h"

#include <cstddef>
#include <cstdint>
#include <utility>

#include "config/log_files.h"
#include "config/mdlConfigs.h"
#include "platform/archive.h"

namespace log_input {
namespace {

using platform::InputFile;

std::uint64_t bytes_done = 0;
std::uint64_t bytes_in_all = 0;

bool SomebodyWatches() { return static_cast<bool>(mdlConfigs::Run().Ui.show_bytes_read); }

class Counted : public InputFile {
 public:
  Counted(std::unique_ptr<InputFile> file, std::string name)
      : file_(std::move(file)), name_(std::move(name)) {}

  int Read(char* buffer, std::size_t size, std::size_t* got) override {
    const int error = file_->Read(buffer, size, got);
    bytes_done += *got;
    mdlConfigs::Run().Ui.show_bytes_read(name_, bytes_done, bytes_in_all);
    return error;
  }

 private:
  const std::unique_ptr<InputFile> file_;
  const std::string name_;
};

std::string NameIn(const std::string& path) {
  return path.substr(path.rfind(platform::kPathSeparator) + 1);
}

std::unique_ptr<InputFile> OpenAsItLies(const std::string& path, int* error) {
  std::unique_ptr<InputFile> file = platform::TheFileSystem().OpenForReading(path, error);
  if (file && SomebodyWatches()) file = std::make_unique<Counted>(std::move(file), NameIn(path));
  return file;
}

std::unique_ptr<InputFile> OpenArchive(const std::string& path, int* error) {
  std::unique_ptr<InputFile> archive = OpenAsItLies(path, error);
  return archive ? platform::TheArchives().Unpacked(std::move(archive)) : nullptr;
}

}  // namespace

void BeginMonth(const std::string& folder, const std::vector<std::string>& names) {
  bytes_done = bytes_in_all = 0;
  if (!SomebodyWatches()) return;
  for (const std::string& name : names) {
    bytes_in_all += platform::TheFileSystem().FileSize(platform::JoinPath(folder, name));
  }
}

std::unique_ptr<InputFile> Open(const std::string& path, int* error) {
  return log_files::IsArchive(path) ? OpenArchive(path, error) : OpenAsItLies(path, error);
}

}  // namespace log_input
