// A real folder for one test, and the small file helpers that go with it.
#ifndef HITWICK_TESTS_FAKES_TEMP_DIR_H_
#define HITWICK_TESTS_FAKES_TEMP_DIR_H_

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <system_error>

namespace fakes {

// Creates the folders above `path` and writes the bytes as they are.
inline void WriteFile(const std::filesystem::path& path, std::string_view content) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
}

// The bytes of a file; empty when it cannot be read.
inline std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// A new, empty folder that disappears with all its content at the end of the scope.
class ScopedTempDir {
 public:
  ScopedTempDir() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() /
              ("hitwick-test-" + std::to_string(random()) + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ~ScopedTempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScopedTempDir(const ScopedTempDir&) = delete;
  ScopedTempDir& operator=(const ScopedTempDir&) = delete;

  std::string path() const { return path_.string(); }
  // The path of a name inside the folder, joined with the system's own separator.
  std::string operator/(std::string_view name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_TEMP_DIR_H_
