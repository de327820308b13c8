// The text of settings.ini: keys and values on the outside, lines that keep their bytes inside.
//
//     [web1]
//     UsageDir=/srv/www/usage
//
// A section is a key, its name the key's path below the settings branch, parts joined by `\`. A
// line `name=value` is one value of the section above it, or of the branch itself when it stands
// before the first section. Blanks around the name, right after the `=` and at the end of the line
// do not count. In a value `\\`, `\r` and `\n` stand for a backslash, a carriage return and a line
// feed, and `\s` at either end for a blank; any other backslash stands for itself. Lines that begin
// with `;` or `#`, blanks before them or not, and blank lines say nothing.
//
// Names compare without regard to case (A to Z). Sections of one name are one key. Of a value name
// that occurs twice in a key the first one counts. A key exists as soon as a key below it does.
// Subkeys and values are in the order in which they first appear.
//
// A line of any other form is broken and says nothing either. When it begins with `[`, the values
// below it, up to the next section, belong to no key: they were never meant for the section above.
//
// A change touches the lines concerned; all other lines keep every byte, their line ends included.
// Nothing here knows files: `settings_store_linux.cpp` reads and writes them.
#ifndef HITWICK_PLATFORM_SETTINGS_FILE_LINUX_H_
#define HITWICK_PLATFORM_SETTINGS_FILE_LINUX_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace platform {

class SettingsFile {
 public:
  struct Value {
    std::string name;
    std::string text;
    int line = 0;  // 1 is the first line
  };
  struct BrokenLine {
    int number = 0;  // 1 is the first line
    std::string text;
  };

  // Understands every text, the empty one included.
  explicit SettingsFile(std::string_view text = {});

  // The file as it is to be written.
  std::string Text() const;
  std::vector<BrokenLine> BrokenLines() const;

  // Keys are named by their path below the branch; the empty path is the branch, which always
  // exists. The pointers and values are good until the next change.
  bool HasKey(std::string_view path) const { return Find(path) != nullptr; }
  // The number of subkeys and values directly below an existing key, and one of them (`index`
  // below that number).
  std::size_t SubkeyCount(std::string_view path) const;
  std::size_t ValueCount(std::string_view path) const;
  const std::string& Subkey(std::string_view path, std::size_t index) const;
  Value ValueAt(std::string_view path, std::size_t index) const;

  // Whether a name can be written: a path has no empty part, a value name none of the characters
  // that would make its line something else, and no blank at its ends; neither holds a line break
  // or a zero byte.
  static bool IsValidPath(std::string_view path);
  static bool IsValidValueName(std::string_view name);

  // Each returns whether the text has changed.
  //
  // Creates a key (and so those above it). `path` is valid.
  bool CreateKey(std::string_view path);
  // Writes a value of an existing key. `name` is valid; `text` holds no zero byte.
  bool SetValue(std::string_view path, std::string_view name, std::string_view text);
  // Deletes a value of an existing key; no change when it is missing.
  bool DeleteValue(std::string_view path, std::string_view name);
  // Deletes an existing key that has no subkeys, with its values. Comments and broken lines among
  // them stay, and so does the key above.
  bool DeleteKey(std::string_view path);

 private:
  enum class Kind { kBlank, kComment, kSection, kValue, kBroken, kBrokenSection };
  struct Line {
    std::string bytes;  // with its line end
    Kind kind = Kind::kBlank;
    std::string name;  // of a section: its path; of a value: its name
    std::string text;  // of a value, escapes resolved
  };
  struct Key {
    std::vector<std::string> subkeys;
    std::vector<std::size_t> sections;  // line numbers
    std::vector<std::size_t> values;    // line numbers, one for each name
    std::vector<std::size_t> hidden;    // line numbers of values that do not count
  };

  static Line ReadLine(std::string_view bytes);
  static void ReadContent(std::string_view content, Line* line);
  Line NewLine(std::string_view content) const;

  void Index();
  Key& Touch(std::string_view path);
  const Key* Find(std::string_view path) const;
  std::optional<std::size_t> FindValue(const Key& key, std::string_view name) const;

  std::vector<Line> SectionLines(std::size_t position, std::string_view path) const;
  void Insert(std::size_t position, std::vector<Line> lines);
  void RemoveLines(const std::vector<bool>& removed);
  std::size_t EndOfSection(std::size_t first) const;
  std::size_t SectionPosition(std::string_view path) const;
  std::size_t ValuePosition(const Key& key) const;

  std::vector<Line> lines_;
  std::unordered_map<std::string, Key> keys_;  // by path in lower case; the branch included
  std::string line_end_ = "\n";                // of new lines
};

}  // namespace platform

#endif  // HITWICK_PLATFORM_SETTINGS_FILE_LINUX_H_
