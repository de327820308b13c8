// settings.ini of any bytes: lines that nobody touches keep every byte, and what is written is read
// back, in the same text and in the text as it would be saved.
//
// Parts: settings.ini, a section, a value's name, a value's text.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/names.h"
#include "platform/settings_file_linux.h"
#include "tests/fuzz/expect.h"
#include "tests/fuzz/parts.h"

namespace {

using platform::SettingsFile;

std::optional<std::string> ValueOf(const SettingsFile& file, std::string_view path,
                                   std::string_view name) {
  if (!file.HasKey(path)) return std::nullopt;
  const std::size_t values = file.ValueCount(path);
  for (std::size_t i = 0; i < values; ++i) {
    const SettingsFile::Value value = file.ValueAt(path, i);
    if (platform::SameName(value.name, name)) return value.text;
  }
  return std::nullopt;
}

// The number of keys, and all values one after the other.
std::string AllOf(const SettingsFile& file, const std::string& path) {
  const std::size_t values = file.ValueCount(path);
  std::string all = "[" + path + "]";
  for (std::size_t i = 0; i < values; ++i) {
    const SettingsFile::Value value = file.ValueAt(path, i);
    all += "(" + value.name + "=" + value.text + ")";
  }
  for (std::size_t i = 0; i < file.SubkeyCount(path); ++i) {
    const std::string& name = file.Subkey(path, i);
    all += AllOf(file, path.empty() ? name : path + "\\" + name);
  }
  return all;
}

void CheckReadBack(const SettingsFile& file, const std::string& path, const std::string& name,
                   const std::optional<std::string>& text) {
  fuzz::Expect(ValueOf(file, path, name) == text, "a value is read back", name);
  const SettingsFile again(file.Text());
  fuzz::Expect(ValueOf(again, path, name) == text, "a saved value is read back", name);
  fuzz::Expect(AllOf(file, "") == AllOf(again, ""), "a saved file says the same", file.Text());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string_view> parts = fuzz::PartsOf(data, size);
  if (parts.size() != 4) return -1;
  SettingsFile file(parts[0]);
  fuzz::Expect(file.Text() == parts[0], "an untouched file keeps every byte", parts[0]);
  const std::string path(parts[1]);
  const std::string name(parts[2]);
  const std::string text(parts[3]);
  static_cast<void>(file.BrokenLines());
  if (!SettingsFile::IsValidPath(path) || !SettingsFile::IsValidValueName(name)) return 0;
  if (text.find('\0') != std::string::npos) return 0;
  const std::size_t broken = file.BrokenLines().size();
  file.CreateKey(path);
  fuzz::Expect(file.HasKey(path), "a created key is there", path);
  file.SetValue(path, name, text);
  CheckReadBack(file, path, name, text);
  fuzz::Expect(!file.SetValue(path, name, text), "the same value changes nothing", name);
  file.DeleteValue(path, name);
  CheckReadBack(file, path, name, std::nullopt);
  fuzz::ExpectEqual(file.BrokenLines().size(), broken, "broken lines stay");
  return 0;
}
