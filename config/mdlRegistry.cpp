#include "config/mdlRegistry.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "config/mdlConfigs.h"
#include "config/text.h"
#include "platform/message_box.h"

namespace mdlRegistry {
namespace {

using platform::kSettingsBranch;
using platform::kStoreMoreData;
using platform::kStoreNoMoreItems;
using platform::kStoreNotFound;
using platform::kStoreSuccess;
using platform::kStoreUnsupportedType;
using platform::TheSettingsStore;

constexpr std::size_t kFirstDataCapacity = 1020;
// No setting is that long: an index that still asks for more data has too long a value name.
constexpr std::size_t kLargestDataCapacity = std::size_t{1} << 24;
// The data buffer of a value that is only to be deleted.
constexpr std::size_t kDeletionDataCapacity = 1000;
// `GetStringValue` looks at no more values of a key than these.
constexpr std::uint32_t kValuesLookedAt = 7;

// Enters a failure in the event log, as `text`, " : " and the error code, and shows it in a box.
void ReportFailure(const std::string& text, std::int32_t code) {
  const std::string number = std::to_string(code);
  mdlConfigs::LogWarning(" : " + text + " : " + number);
  mdlConfigs::TellUser(text + "\n" + number);
}

// The same for a text that names the registry; `place` is where the store keeps the key.
void ReportKeyFailure(const std::string& text, const std::string& place, std::int32_t code) {
  const std::string number = std::to_string(code);
  mdlConfigs::LogWarning(" : " + text + " : " + number);
  mdlConfigs::TellUser(text + "\n" + number, place);
}

std::string UnreadableText(const std::string& path) {
  return "Unable to read from registry : " + path;
}

void TellOfUnreadable(const std::string& path, std::int32_t code) {
  mdlConfigs::TellUser(UnreadableText(path) + "\nError code : " + std::to_string(code),
                       TheSettingsStore().PlaceOf(path));
}

void ReportUnreadable(const std::string& path, std::int32_t code) {
  mdlConfigs::LogWarning(" : " + UnreadableText(path) + " : " + std::to_string(code));
  TellOfUnreadable(path, code);
}

// Enters a failure with a single value; the box has the error code as well.
void ReportValueFailure(const std::string& text, std::int32_t code) {
  mdlConfigs::LogWarning(" : " + text);
  mdlConfigs::TellUser(text + "\nError code : " + std::to_string(code));
}

// A key and its subkey as the messages name them.
std::string Branch(const std::string& path, const std::string& name) {
  return path + " \\ " + name;
}

OpenedKey Open(const std::string& path) {
  Key key = 0;
  const std::int32_t result = TheSettingsStore().OpenKey(path, &key);
  return {result, key};
}

bool Failed(std::int32_t result) { return result != kStoreSuccess && result != kStoreNotFound; }

// Empties one subkey; an error code.
std::int32_t EmptySubkey(const std::string& path, const std::string& subkey) {
  const std::int32_t result = DeleteSiteValues(path, subkey);
  if (result != kStoreSuccess) {
    const std::string code = std::to_string(result);
    mdlConfigs::LogWarning(" : Error deleting branch(" + Branch(path, subkey) + ") : " + code);
    mdlConfigs::TellUser("Error deleting subkey(" + Branch(path, subkey) + ")\n" + code);
  }
  return result;
}

// Deletes the subkeys of an open key with all that is below them; the last error code.
std::int32_t DeleteSubkeys(Key key, const std::string& path, std::uint32_t count) {
  std::int32_t last_error = kStoreSuccess;
  // The first of those left: each is deleted in turn, and one that cannot be is passed over.
  std::uint32_t first = 0;
  for (std::uint32_t n = 0; n < count; ++n) {
    std::string subkey;
    std::int32_t result = TheSettingsStore().EnumKey(key, first, &subkey);
    if (result == kStoreNoMoreItems) break;
    if (result != kStoreSuccess) {
      ReportUnreadable(path, result);
      last_error = result;
      ++first;
      continue;
    }
    result = EmptySubkey(path, subkey);
    if (result != kStoreSuccess) last_error = result;
    result = TheSettingsStore().DeleteKey(key, subkey);
    if (Failed(result)) {
      ReportFailure("Error deleting subkey(" + Branch(path, subkey) + ")", result);
      last_error = result;
      ++first;
    }
  }
  return last_error;
}

// Deletes the values of an open key; the last error code. The walk is downward so that a deletion
// does not move the values still to come. `site` is the key's name.
std::int32_t DeleteValues(Key key, const std::string& site, std::uint32_t count) {
  std::int32_t last_error = kStoreSuccess;
  for (std::uint32_t index = count; index-- > 0;) {
    std::string name;
    std::string data;
    std::int32_t result =
        TheSettingsStore().EnumValue(key, index, kDeletionDataCapacity, &name, &data);
    if (result != kStoreSuccess && result != kStoreUnsupportedType) {
      ReportValueFailure(
          "Unable to query value of site '" + site + "' value #" + std::to_string(index), result);
      last_error = result;
      continue;
    }
    result = TheSettingsStore().DeleteValue(key, name);
    if (Failed(result)) {
      ReportValueFailure("Unable to delete value of site '" + site + "' (" + name + ")", result);
      last_error = result;
    }
  }
  return last_error;
}

struct Value {
  std::string name;
  std::string data;  // with its terminating zero
};

// Reads a value of any length by its number.
std::int32_t EnumWholeValue(Key key, std::uint32_t index, Value* value) {
  std::int32_t result = kStoreMoreData;
  for (std::size_t capacity = kFirstDataCapacity;
       result == kStoreMoreData && capacity <= kLargestDataCapacity; capacity *= 2) {
    result = TheSettingsStore().EnumValue(key, index, capacity, &value->name, &value->data);
  }
  return result;
}

std::string WithoutControlBytes(const std::string& data) {
  std::string text;
  for (const char c : data) {
    if (static_cast<unsigned char>(c) >= 32) text += c;
  }
  return text;
}

void ReportNoText(std::string_view name) {
  mdlConfigs::LogWarning(": Value '" + std::string(name) +
                         "' in the registry is neither a text nor a number, and counts as missing");
}

struct KeyInfo {
  std::uint32_t subkeys = 0;
  std::uint32_t values = 0;
};

// What is directly below an open key; nothing when it cannot be read.
KeyInfo InfoOf(Key key) {
  KeyInfo info;
  if (TheSettingsStore().QueryInfo(key, &info.subkeys, &info.values) != kStoreSuccess) return {};
  return info;
}

// The text of a value of an open key, its name compared as the store does. `path` is the key's.
std::optional<std::string> FindSetting(Key key, const std::string& path, std::string_view name) {
  for (std::uint32_t index = 0, count = InfoOf(key).values; index < count; ++index) {
    Value value;
    const std::int32_t result = EnumWholeValue(key, index, &value);
    if (!text::EqualsIgnoringCase(value.name, name)) continue;
    if (result == kStoreUnsupportedType) ReportNoText(KeyPath(path, name));
    if (result == kStoreSuccess) return value.data.substr(0, value.data.find('\0'));
  }
  return std::nullopt;
}

}  // namespace

OpenedKey::~OpenedKey() {
  if (key_ != 0) TheSettingsStore().CloseKey(key_);
}

OpenedKey::OpenedKey(OpenedKey&& other) noexcept
    : result_(other.result_), key_(std::exchange(other.key_, 0)) {}

OpenedKey& OpenedKey::operator=(OpenedKey&& other) noexcept {
  std::swap(result_, other.result_);
  std::swap(key_, other.key_);
  return *this;
}

std::string KeyPath(std::string_view branch, std::string_view name) {
  return std::string(branch).append("\\").append(name);
}

OpenedKey OpenKey(const std::string& branch, const std::string& name) {
  return Open(KeyPath(branch, name));
}

std::int32_t CreateKey(const std::string& branch, const std::string& name) {
  Key key = 0;
  const std::int32_t result = TheSettingsStore().CreateKey(KeyPath(branch, name), &key);
  const OpenedKey created(result, key);
  if (result != kStoreSuccess) {
    const std::string path = KeyPath(branch, name);
    ReportKeyFailure("Unable to create key in registry : " + path, TheSettingsStore().PlaceOf(path),
                     result);
  }
  return result;
}

void SetStringValue(Key key, const std::string& name, std::string_view value) {
  const std::int32_t result = TheSettingsStore().SetValue(key, name, value);
  if (result != kStoreSuccess) {
    ReportKeyFailure("Unable to write to registry : " + name, TheSettingsStore().PlaceOf(key),
                     result);
  }
}

std::string GetStringValue(Key key, std::string_view name, const std::string& fallback) {
  for (std::uint32_t index = 0; index < kValuesLookedAt; ++index) {
    Value value;
    const std::int32_t result = EnumWholeValue(key, index, &value);
    if (result == kStoreNoMoreItems) break;
    if (value.name != name) continue;
    if (result == kStoreUnsupportedType) ReportNoText(name);
    if (result == kStoreSuccess) return WithoutControlBytes(value.data);
  }
  return fallback;
}

std::vector<std::string> SubkeyNames(Key key) {
  std::vector<std::string> names;
  for (std::uint32_t index = 0, count = InfoOf(key).subkeys; index < count; ++index) {
    std::string name;
    if (TheSettingsStore().EnumKey(key, index, &name) == kStoreSuccess) {
      names.push_back(std::move(name));
    }
  }
  return names;
}

std::vector<std::string> ValueNames(Key key) {
  std::vector<std::string> names;
  for (std::uint32_t index = 0, count = InfoOf(key).values; index < count; ++index) {
    Value value;
    if (EnumWholeValue(key, index, &value) == kStoreSuccess) names.push_back(std::move(value.name));
  }
  return names;
}

std::int32_t DeleteSiteValues(const std::string& branch, const std::string& name) {
  const std::string path = KeyPath(branch, name);
  const OpenedKey opened = Open(path);
  if (!opened) {
    if (!Failed(opened.result())) return kStoreSuccess;
    const std::string text =
        "Error removing configuration values from registry : RegOpenKeyEx(" + path + ")";
    const std::string code = std::to_string(opened.result());
    mdlConfigs::LogWarning(" :  " + text + " : " + code);
    mdlConfigs::TellUser(text + "\n" + code, TheSettingsStore().PlaceOf(path));
    return opened.result();
  }
  std::uint32_t subkeys = 0;
  std::uint32_t values = 0;
  const std::int32_t result = TheSettingsStore().QueryInfo(opened.key(), &subkeys, &values);
  if (Failed(result)) {
    ReportUnreadable(path, result);
    return result;
  }
  const std::int32_t subkeys_error = DeleteSubkeys(opened.key(), path, subkeys);
  const std::int32_t values_error = DeleteValues(opened.key(), name, values);
  return values_error != kStoreSuccess ? values_error : subkeys_error;
}

std::int32_t DeleteSiteKey(const std::string& branch, const std::string& name) {
  const OpenedKey opened = Open(branch);
  if (!opened) {
    if (!Failed(opened.result())) return kStoreSuccess;
    ReportKeyFailure(
        "Error removing branch configuration from registry : RegOpenKeyEx(" + branch + ")",
        TheSettingsStore().PlaceOf(branch), opened.result());
    return opened.result();
  }
  std::int32_t last_error = DeleteSiteValues(branch, name);
  if (last_error != kStoreSuccess) {
    ReportFailure("Error deleting subtree(" + Branch(branch, name) + ")", last_error);
  }
  const std::int32_t result = TheSettingsStore().DeleteKey(opened.key(), name);
  if (Failed(result)) {
    ReportFailure("Error deleting subkey(" + name + ")", result);
    last_error = result;
  }
  return last_error;
}

std::string ReadSetting(const std::string& site, std::string_view name,
                        const std::string& fallback) {
  const std::string path = KeyPath(kSettingsBranch, site);
  const OpenedKey opened = Open(path);
  if (Failed(opened.result())) ReportUnreadable(path, opened.result());
  if (!opened) return fallback;
  return FindSetting(opened.key(), path, name).value_or(fallback);
}

std::int32_t SaveSetting(const std::string& site, const std::string& name, std::string_view value) {
  Key key = 0;
  const std::int32_t result = TheSettingsStore().CreateKey(KeyPath(kSettingsBranch, site), &key);
  const OpenedKey opened(result, key);
  return opened ? TheSettingsStore().SetValue(opened.key(), name, value) : result;
}

std::vector<std::string> SiteNames() {
  const std::string branch(kSettingsBranch);
  const OpenedKey opened = Open(branch);
  if (!opened) {
    mdlConfigs::TellUser("Error in reading site configuration from registry : RegOpenKeyEx(" +
                             branch + ")\n" + std::to_string(opened.result()),
                         TheSettingsStore().PlaceOf(branch));
    return {};
  }
  std::uint32_t subkeys = 0;
  std::uint32_t values = 0;
  const std::int32_t result = TheSettingsStore().QueryInfo(opened.key(), &subkeys, &values);
  if (result != kStoreSuccess) {
    TellOfUnreadable(branch, result);
    return {};
  }
  return SubkeyNames(opened.key());
}

bool RemoveSite(const std::string& site) {
  const std::string quoted = "site '" + site + "'";
  if (!platform::TheMessageBoxes().AskYesNo(
          "Confirm delete of " + site,
          "Are you sure you want to delete configuration for " + quoted)) {
    return false;
  }
  const std::string branch(kSettingsBranch);
  if (DeleteSiteValues(branch, site) != kStoreSuccess) {
    mdlConfigs::LogWarning(" : Unable to delete configuration values of " + quoted);
    return false;
  }
  if (DeleteSiteKey(branch, site) != kStoreSuccess) {
    mdlConfigs::LogWarning(" : Unable to delete configuration of " + quoted);
    return false;
  }
  mdlConfigs::LogInformation(" : Deleted configuration of " + quoted);
  return true;
}

}  // namespace mdlRegistry
