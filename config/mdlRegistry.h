// Keys and values of the settings store: text values by name, whole branches, site removal.
//
// No state. Called by the settings (one value at a time), by the record filters (logread/) and,
// for the site list, by the site window. Results are the store's 32-bit error codes.
#ifndef HITWICK_CONFIG_MDLREGISTRY_H_
#define HITWICK_CONFIG_MDLREGISTRY_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/settings_store.h"

namespace mdlRegistry {

using Key = platform::SettingsStore::Key;

// An open key that is closed at the end of its scope; `key` is 0 when `result` is not success.
class OpenedKey {
 public:
  OpenedKey() = default;
  OpenedKey(std::int32_t result, Key key) : result_(result), key_(key) {}
  ~OpenedKey();
  OpenedKey(OpenedKey&& other) noexcept;
  OpenedKey& operator=(OpenedKey&& other) noexcept;
  OpenedKey(const OpenedKey&) = delete;
  OpenedKey& operator=(const OpenedKey&) = delete;

  std::int32_t result() const { return result_; }
  Key key() const { return key_; }
  explicit operator bool() const { return result_ == platform::kStoreSuccess; }

 private:
  std::int32_t result_ = platform::kStoreNotFound;
  Key key_ = 0;
};

// branch + "\" + name.
std::string KeyPath(std::string_view branch, std::string_view name);

// Opens (`OpenKey`) or opens or creates (`CreateKey`) branch + "\" + name.
OpenedKey OpenKey(const std::string& branch, const std::string& name);
std::int32_t CreateKey(const std::string& branch, const std::string& name);

// Writes a text value below an open key.
void SetStringValue(Key key, const std::string& name, std::string_view value);

// The text value of that exact name (letter case counts), without its bytes below 32. Only the
// first seven values of the key are looked at; a value that lies further on reads as missing.
std::string GetStringValue(Key key, std::string_view name, const std::string& fallback);

// The names of the subkeys or values of an open key, in the store's order; one that cannot be read
// is left out.
std::vector<std::string> SubkeyNames(Key key);
std::vector<std::string> ValueNames(Key key);

// Deletes every subkey (recursively) and every value of branch + "\" + name, leaving the key.
// Goes on past single failures and returns the last error code; a missing key is a success.
std::int32_t DeleteSiteValues(const std::string& branch, const std::string& name);
// The same, and then the key itself.
std::int32_t DeleteSiteKey(const std::string& branch, const std::string& name);

// One setting of a site's section, as the settings read and write them: names compare without
// regard to case, any number of values is looked at. A missing section or value gives `fallback`.
std::string ReadSetting(const std::string& site, std::string_view name,
                        const std::string& fallback);
// Creates the section when it is missing. Returns the store's error code.
std::int32_t SaveSetting(const std::string& site, const std::string& name, std::string_view value);

// The names of all sites that have a section, in the store's order.
std::vector<std::string> SiteNames();

// Asks the user and removes a site's settings. True when they were removed.
bool RemoveSite(const std::string& site);

}  // namespace mdlRegistry

#endif  // HITWICK_CONFIG_MDLREGISTRY_H_
