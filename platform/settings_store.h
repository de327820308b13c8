// The per-user settings store: a registry of keys that hold subkeys and ordered text values.
//
// Windows: the registry below HKEY_CURRENT_USER. Linux: `$XDG_CONFIG_HOME/hitwick/settings.ini`
// (default `~/.config`), which mirrors the branch `kSettingsBranch`: a section is a key's path
// below the branch, a line `name=value` one text value.
//
// Key and value names compare without regard to case (A to Z) and keep the spelling and the order
// in which they were first written. Results are the registry's error codes, of which these matter
// to callers: 0 success, 2 not found, 5 access denied, 234 more data, 259 no more items, 1630 not a
// text. A name that the store cannot hold gives 87. On Linux that is, for any name, an empty one or
// one with a line break or a zero byte; for a value name also one that holds a "=", begins with
// "[", ";" or "#" or has a blank at its ends.
#ifndef HITWICK_PLATFORM_SETTINGS_STORE_H_
#define HITWICK_PLATFORM_SETTINGS_STORE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

// The settings application name, and the branch below which every site has its key.
inline constexpr std::string_view kSettingsApplication = "Hitwick";
inline constexpr std::string_view kSettingsBranch =
    "Software\\VB and VBA Program Settings\\Hitwick";

inline constexpr std::int32_t kStoreSuccess = 0;
inline constexpr std::int32_t kStoreNotFound = 2;
inline constexpr std::int32_t kStoreAccessDenied = 5;
inline constexpr std::int32_t kStoreInvalidParameter = 87;
inline constexpr std::int32_t kStoreMoreData = 234;
inline constexpr std::int32_t kStoreNoMoreItems = 259;
inline constexpr std::int32_t kStoreUnsupportedType = 1630;

class SettingsStore {
 public:
  using Key = std::uintptr_t;  // an open key; 0 is none
  using Result = std::int32_t;

  virtual ~SettingsStore() = default;

  // Opens an existing key with full access / opens or creates a key and those above it.
  // `path` is relative to the current user's root, its parts joined by `\`.
  virtual Result OpenKey(const std::string& path, Key* key) = 0;
  virtual Result CreateKey(const std::string& path, Key* key) = 0;
  // Closes an open key; 0 is ignored.
  virtual void CloseKey(Key key) = 0;

  // Where a person finds the key at `path` (as above) when messages name the registry and the store
  // is another one: a line for a box, naming file and section. Empty on Windows.
  virtual std::string PlaceOf(const std::string& path) = 0;
  virtual std::string PlaceOf(Key key) = 0;  // of an open key

  // The numbers of subkeys and of values directly below an open key.
  virtual Result QueryInfo(Key key, std::uint32_t* subkeys, std::uint32_t* values) = 0;
  // Subkey number `index` (0-based); kStoreNoMoreItems past the last one.
  virtual Result EnumKey(Key key, std::uint32_t index, std::string* name) = 0;
  // Value number `index` (0-based); kStoreNoMoreItems past the last one. A name longer than 254
  // characters, or data (terminating zero included) longer than `data_capacity` bytes, gives
  // kStoreMoreData. `data` receives the text with its terminating zero, as it is stored.
  // The registry also holds values that were never text: one with variables of the environment
  // (REG_EXPAND_SZ) is read with their values in place, a number (REG_DWORD) as its decimal
  // digits; any other gives kStoreUnsupportedType, and `name` all the same.
  virtual Result EnumValue(Key key, std::uint32_t index, std::size_t data_capacity,
                           std::string* name, std::string* data) = 0;

  // Where a person finds a value, to begin a sentence with: "Line 3 of the settings file 'PATH'".
  // Empty for a missing value, and in a store without lines (Windows).
  virtual std::string PlaceOfValue(Key key, const std::string& name) = 0;

  // Writes a text value. `text` may hold any byte but zero. A value of the registry that already
  // reads as `text` stays what it is, so that writing back does not put text in the place of
  // variables.
  virtual Result SetValue(Key key, const std::string& name, std::string_view text) = 0;
  virtual Result DeleteValue(Key key, const std::string& name) = 0;
  // Deletes the subkey `name` of an open key, its values included; kStoreAccessDenied while it
  // has subkeys of its own.
  virtual Result DeleteKey(Key parent, const std::string& name) = 0;
};

SettingsStore& TheSettingsStore();

}  // namespace platform

#endif  // HITWICK_PLATFORM_SETTINGS_STORE_H_
