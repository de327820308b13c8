// The settings store on Windows: the registry itself. Each operation is one registry function, so
// that results, ordering and the treatment of letter case are the registry's own. Only values that
// are no text are looked at here.
#include "platform/settings_store.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "platform/service.h"

namespace platform {
namespace {

// Value names longer than this, terminating zero included, are reported as "more data".
constexpr std::size_t kValueNameCapacity = 255;
// The registry allows 255 characters; the active code page may take three bytes for each.
constexpr std::size_t kKeyNameCapacity = 3 * 255 + 1;
// Longer than any path with variables in it.
constexpr std::size_t kLongestKept = 65536;

HKEY Handle(SettingsStore::Key key) { return reinterpret_cast<HKEY>(key); }

// Puts the values of the environment's variables in the place of their names.
std::string Expanded(const std::string& text) {
  // The form for single bytes asks for more room than it says.
  std::string expanded(2 + ExpandEnvironmentStringsA(text.c_str(), nullptr, 0), '\0');
  ExpandEnvironmentStringsA(text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
  return expanded.c_str();
}

std::string Digits(const std::string& data) {
  DWORD number = 0;
  std::memcpy(&number, data.data(), std::min(data.size(), sizeof number));
  return std::to_string(number);
}

// Turns the data of a value into a text with its terminating zero.
SettingsStore::Result ToText(DWORD type, std::string* data) {
  switch (type) {
    case REG_SZ:
      return kStoreSuccess;
    case REG_EXPAND_SZ:
      *data = Expanded(*data) + '\0';
      return kStoreSuccess;
    case REG_DWORD:
      *data = Digits(*data) + '\0';
      return kStoreSuccess;
    default:
      data->clear();
      return kStoreUnsupportedType;
  }
}

// True when a value is there that is read as `text` though it is stored as something else.
bool ReadsAs(HKEY key, const std::string& name, const std::string& text) {
  DWORD type = REG_NONE;
  std::string data(kLongestKept, '\0');
  DWORD length = static_cast<DWORD>(data.size());
  if (RegQueryValueExA(key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(data.data()),
                       &length) != kStoreSuccess ||
      type == REG_SZ) {
    return false;
  }
  data.resize(length);
  return ToText(type, &data) == kStoreSuccess && data.c_str() == text;
}

class Registry : public SettingsStore {
 public:
  Result OpenKey(const std::string& path, Key* key) override {
    HKEY handle = nullptr;
    const Result result =
        RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_ALL_ACCESS, &handle);
    *key = result == kStoreSuccess ? reinterpret_cast<Key>(handle) : 0;
    return result;
  }

  Result CreateKey(const std::string& path, Key* key) override {
    HKEY handle = nullptr;
    const Result result =
        RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &handle, nullptr);
    *key = result == kStoreSuccess ? reinterpret_cast<Key>(handle) : 0;
    return result;
  }

  void CloseKey(Key key) override {
    if (key != 0) RegCloseKey(Handle(key));
  }

  std::string PlaceOf(const std::string& /*path*/) override { return {}; }
  std::string PlaceOf(Key /*key*/) override { return {}; }

  Result QueryInfo(Key key, std::uint32_t* subkeys, std::uint32_t* values) override {
    DWORD subkey_count = 0;
    DWORD value_count = 0;
    const Result result =
        RegQueryInfoKeyA(Handle(key), nullptr, nullptr, nullptr, &subkey_count, nullptr, nullptr,
                         &value_count, nullptr, nullptr, nullptr, nullptr);
    *subkeys = subkey_count;
    *values = value_count;
    return result;
  }

  Result EnumKey(Key key, std::uint32_t index, std::string* name) override {
    std::array<char, kKeyNameCapacity> buffer = {};
    DWORD length = static_cast<DWORD>(buffer.size());
    const Result result = RegEnumKeyExA(Handle(key), index, buffer.data(), &length, nullptr,
                                        nullptr, nullptr, nullptr);
    name->assign(buffer.data(), result == kStoreSuccess ? length : 0);
    return result;
  }

  Result EnumValue(Key key, std::uint32_t index, std::size_t data_capacity, std::string* name,
                   std::string* data) override {
    std::array<char, kValueNameCapacity> name_buffer = {};
    DWORD name_length = static_cast<DWORD>(name_buffer.size());
    data->assign(data_capacity, '\0');
    DWORD data_length = static_cast<DWORD>(data_capacity);
    DWORD type = REG_NONE;
    const Result result =
        RegEnumValueA(Handle(key), index, name_buffer.data(), &name_length, nullptr, &type,
                      reinterpret_cast<BYTE*>(data->data()), &data_length);
    const bool read = result == kStoreSuccess;
    name->assign(name_buffer.data(), read ? name_length : 0);
    data->resize(read ? data_length : 0);
    return read ? ToText(type, data) : result;
  }

  std::string PlaceOfValue(Key, const std::string&) override { return {}; }

  Result SetValue(Key key, const std::string& name, std::string_view text) override {
    const std::string terminated(text);
    if (ReadsAs(Handle(key), name, terminated)) return kStoreSuccess;
    return RegSetValueExA(Handle(key), name.c_str(), 0, REG_SZ,
                          reinterpret_cast<const BYTE*>(terminated.c_str()),
                          static_cast<DWORD>(terminated.size() + 1));
  }

  Result DeleteValue(Key key, const std::string& name) override {
    return RegDeleteValueA(Handle(key), name.c_str());
  }

  Result DeleteKey(Key parent, const std::string& name) override {
    return RegDeleteKeyA(Handle(parent), name.c_str());
  }
};

}  // namespace

SettingsStore& TheSettingsStore() {
  static Registry registry;
  return InUse<SettingsStore>(registry);
}

}  // namespace platform
