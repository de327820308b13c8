// A settings store in memory that follows the rules of the real one, fails on demand and counts
// the keys left open.
#ifndef HITWICK_TESTS_FAKES_FAKE_SETTINGS_STORE_H_
#define HITWICK_TESTS_FAKES_FAKE_SETTINGS_STORE_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/names.h"
#include "platform/settings_store.h"

namespace fakes {

class FakeSettingsStore : public platform::SettingsStore {
 public:
  enum class Operation {
    kOpenKey,
    kCreateKey,
    kQueryInfo,
    kEnumKey,
    kEnumValue,
    kSetValue,
    kDeleteValue,
    kDeleteKey
  };
  // Makes calls of one operation fail. `name` (empty: any) is the path for kOpenKey and
  // kCreateKey, the key's path for kQueryInfo, kEnumKey and kEnumValue, and the value's or
  // subkey's name for the rest.
  struct Failure {
    Operation operation;
    Result code = 0;
    std::string name = {};
    int skip = 0;    // calls that still succeed first
    int times = -1;  // calls that fail then; -1 is all
  };
  void Fail(const Failure& failure) { failures_.push_back(failure); }
  void StopFailing() { failures_.clear(); }

  // Writes a value below kSettingsBranch + "\" + `section`, creating what is missing.
  void Put(const std::string& section, const std::string& name, const std::string& text) {
    SetIn(Create(BranchPath(section)), name, text);
  }
  // The same with a value that is no text.
  void PutNoText(const std::string& section, const std::string& name) {
    Node* node = Create(BranchPath(section));
    SetIn(node, name, "");
    node->no_texts.push_back(name);
  }
  void PutKey(const std::string& section) { Create(BranchPath(section)); }
  // A value below the branch; nothing when it is missing.
  std::optional<std::string> Get(const std::string& section, std::string_view name) const {
    const Node* node = Find(BranchPath(section));
    if (node == nullptr) return std::nullopt;
    for (const auto& value : node->values) {
      if (platform::SameName(value.first, name)) return value.second;
    }
    return std::nullopt;
  }
  bool HasKey(const std::string& section) const { return Find(BranchPath(section)) != nullptr; }

  // Whether values have places: "Line N" for the value number N of its key.
  bool has_lines = false;

  std::size_t open_keys() const { return open_.size(); }
  int changes() const { return changes_; }  // calls that were to change the store

  Result OpenKey(const std::string& path, Key* key) override {
    *key = 0;
    if (const Result code = Scripted(Operation::kOpenKey, path)) return code;
    if (!ValidPath(path)) return platform::kStoreInvalidParameter;
    if (Find(path) == nullptr) return platform::kStoreNotFound;
    *key = Opened(path);
    return platform::kStoreSuccess;
  }

  Result CreateKey(const std::string& path, Key* key) override {
    *key = 0;
    ++changes_;
    if (const Result code = Scripted(Operation::kCreateKey, path)) return code;
    if (!ValidPath(path)) return platform::kStoreInvalidParameter;
    Create(path);
    *key = Opened(path);
    return platform::kStoreSuccess;
  }

  void CloseKey(Key key) override { open_.erase(key); }

  // Empty unless the test says where the store is.
  std::string PlaceOf(const std::string& path) override {
    return place.empty() ? place : place + path;
  }
  std::string PlaceOf(Key key) override { return PlaceOf(PathOf(key)); }
  std::string place;

  Result QueryInfo(Key key, std::uint32_t* subkeys, std::uint32_t* values) override {
    Node* node = nullptr;
    if (const Result code = Begin(Operation::kQueryInfo, key, PathOf(key), &node)) return code;
    *subkeys = static_cast<std::uint32_t>(node->subkeys.size());
    *values = static_cast<std::uint32_t>(node->values.size());
    return platform::kStoreSuccess;
  }

  Result EnumKey(Key key, std::uint32_t index, std::string* name) override {
    Node* node = nullptr;
    if (const Result code = Begin(Operation::kEnumKey, key, PathOf(key), &node)) return code;
    if (index >= node->subkeys.size()) return platform::kStoreNoMoreItems;
    *name = node->subkeys[index]->name;
    return platform::kStoreSuccess;
  }

  Result EnumValue(Key key, std::uint32_t index, std::size_t data_capacity, std::string* name,
                   std::string* data) override {
    Node* node = nullptr;
    if (const Result code = Begin(Operation::kEnumValue, key, PathOf(key), &node)) return code;
    if (index >= node->values.size()) return platform::kStoreNoMoreItems;
    const auto& [value_name, text] = node->values[index];
    if (value_name.size() > 254 || text.size() + 1 > data_capacity) {
      return platform::kStoreMoreData;
    }
    *name = value_name;
    if (std::count(node->no_texts.begin(), node->no_texts.end(), value_name) != 0) {
      data->clear();
      return platform::kStoreUnsupportedType;
    }
    *data = text + '\0';
    return platform::kStoreSuccess;
  }

  std::string PlaceOfValue(Key key, const std::string& name) override {
    const Node* node = has_lines ? Find(PathOf(key)) : nullptr;
    if (node == nullptr) return {};
    for (std::size_t i = 0; i < node->values.size(); ++i) {
      if (platform::SameName(node->values[i].first, name)) return "Line " + std::to_string(i + 1);
    }
    return {};
  }

  Result SetValue(Key key, const std::string& name, std::string_view text) override {
    ++changes_;
    Node* node = nullptr;
    if (const Result code = Begin(Operation::kSetValue, key, name, &node)) return code;
    if (!ValidValueName(name) || text.find('\0') != std::string_view::npos) {
      return platform::kStoreInvalidParameter;
    }
    SetIn(node, name, std::string(text));
    return platform::kStoreSuccess;
  }

  Result DeleteValue(Key key, const std::string& name) override {
    ++changes_;
    Node* node = nullptr;
    if (const Result code = Begin(Operation::kDeleteValue, key, name, &node)) return code;
    for (auto value = node->values.begin(); value != node->values.end(); ++value) {
      if (!platform::SameName(value->first, name)) continue;
      node->values.erase(value);
      return platform::kStoreSuccess;
    }
    return platform::kStoreNotFound;
  }

  Result DeleteKey(Key parent, const std::string& name) override {
    ++changes_;
    Node* node = nullptr;
    if (const Result code = Begin(Operation::kDeleteKey, parent, name, &node)) return code;
    for (auto subkey = node->subkeys.begin(); subkey != node->subkeys.end(); ++subkey) {
      if (!platform::SameName((*subkey)->name, name)) continue;
      if (!(*subkey)->subkeys.empty()) return platform::kStoreAccessDenied;
      node->subkeys.erase(subkey);
      return platform::kStoreSuccess;
    }
    return platform::kStoreNotFound;
  }

 private:
  static constexpr Result kInvalidHandle = 6;

  struct Node {
    std::string name;
    std::vector<std::pair<std::string, std::string>> values;
    std::vector<std::string> no_texts;  // names of values that are no text
    std::vector<std::unique_ptr<Node>> subkeys;
  };

  static std::string BranchPath(const std::string& section) {
    const std::string branch(platform::kSettingsBranch);
    return section.empty() ? branch : branch + "\\" + section;
  }
  static std::vector<std::string> Parts(const std::string& path) {
    std::vector<std::string> parts(1);
    for (const char c : path) {
      if (c == '\\') {
        parts.emplace_back();
      } else {
        parts.back() += c;
      }
    }
    return parts;
  }
  static bool ValidPath(const std::string& path) {
    for (const std::string& part : Parts(path)) {
      if (part.empty() || part.find_first_of(std::string_view("\r\n\0", 3)) != std::string::npos) {
        return false;
      }
    }
    return true;
  }
  static bool ValidValueName(const std::string& name) {
    return !name.empty() && name.find_first_of(" ;#[") != 0 && name.back() != ' ' &&
           name.find_first_of(std::string_view("\r\n=\0", 4)) == std::string::npos;
  }
  static Node* Subkey(const Node* node, std::string_view name) {
    for (const auto& subkey : node->subkeys) {
      if (platform::SameName(subkey->name, name)) return subkey.get();
    }
    return nullptr;
  }
  static void SetIn(Node* node, const std::string& name, const std::string& text) {
    for (auto& value : node->values) {
      if (platform::SameName(value.first, name)) {
        value.second = text;
        std::erase(node->no_texts, value.first);
        return;
      }
    }
    node->values.emplace_back(name, text);
  }

  const Node* Find(const std::string& path) const {
    const Node* node = &root_;
    for (const std::string& part : Parts(path)) {
      node = Subkey(node, part);
      if (node == nullptr) return nullptr;
    }
    return node;
  }
  Node* Create(const std::string& path) {
    Node* node = &root_;
    for (const std::string& part : Parts(path)) {
      Node* next = Subkey(node, part);
      if (next == nullptr) {
        node->subkeys.push_back(std::make_unique<Node>());
        next = node->subkeys.back().get();
        next->name = part;
      }
      node = next;
    }
    return node;
  }

  Key Opened(const std::string& path) {
    open_[++last_key_] = path;
    return last_key_;
  }
  std::string PathOf(Key key) const {
    const auto open = open_.find(key);
    return open == open_.end() ? std::string() : open->second;
  }
  // What every operation on an open key starts with; success sets `node`.
  Result Begin(Operation operation, Key key, const std::string& name, Node** node) {
    if (open_.count(key) == 0) return kInvalidHandle;
    if (const Result code = Scripted(operation, name)) return code;
    *node = const_cast<Node*>(Find(open_[key]));
    return *node == nullptr ? platform::kStoreNotFound : platform::kStoreSuccess;
  }
  Result Scripted(Operation operation, const std::string& name) {
    for (Failure& failure : failures_) {
      if (failure.operation != operation || failure.times == 0) continue;
      if (!failure.name.empty() && !platform::SameName(failure.name, name)) continue;
      if (failure.skip > 0) {
        --failure.skip;
        continue;
      }
      if (failure.times > 0) --failure.times;
      return failure.code;
    }
    return platform::kStoreSuccess;
  }

  Node root_;
  std::map<Key, std::string> open_;
  Key last_key_ = 0;
  std::vector<Failure> failures_;
  int changes_ = 0;
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_FAKE_SETTINGS_STORE_H_
