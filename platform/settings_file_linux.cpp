#include "platform/settings_file_linux.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "platform/names.h"

namespace platform {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r";

bool HoldsLineBreakOrZero(std::string_view name) {
  return name.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

std::string_view ParentOf(std::string_view path) {
  const std::size_t separator = path.rfind('\\');
  return separator == std::string_view::npos ? std::string_view() : path.substr(0, separator);
}

std::string_view LastPartOf(std::string_view path) { return path.substr(path.rfind('\\') + 1); }

// The line break (LF or CR LF) that ends `bytes`; empty on a last line without one.
std::string_view LineEndOf(std::string_view bytes) {
  if (bytes.ends_with("\r\n")) return bytes.substr(bytes.size() - 2);
  return bytes.ends_with('\n') ? bytes.substr(bytes.size() - 1) : std::string_view();
}

constexpr char kBlank = ' ';
constexpr std::string_view kEscapedBlank = "\\s";

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool at_end = i == 0 || i + 1 == text.size();
    if (text[i] == '\\') {
      escaped += "\\\\";
    } else if (text[i] == '\r') {
      escaped += "\\r";
    } else if (text[i] == '\n') {
      escaped += "\\n";
    } else if (text[i] == kBlank && at_end) {
      escaped += kEscapedBlank;
    } else {
      escaped += text[i];
    }
  }
  return escaped;
}

// What `\` and the character behind it stand for; zero where the backslash stands for itself.
char Meaning(char escape) {
  switch (escape) {
    case '\\':
      return '\\';
    case 'r':
      return '\r';
    case 'n':
      return '\n';
    default:
      return '\0';
  }
}

// A run of blanks at either end, in which `\s` is one of them, belongs to the text. Further inside
// `\s` is no escape, since people write `C:\srv`.
std::string Unescaped(std::string_view escaped) {
  std::string text;
  std::string run;     // of blanks and `\s`, as it is written,
  std::string blanks;  // and as it counts at an end
  for (std::size_t i = 0; i < escaped.size(); ++i) {
    const std::string_view rest = escaped.substr(i);
    if (rest[0] == kBlank || rest.starts_with(kEscapedBlank)) {
      const std::string_view piece = rest.substr(0, rest[0] == kBlank ? 1 : kEscapedBlank.size());
      run += piece;
      blanks += kBlank;
      i += piece.size() - 1;
      continue;
    }
    text += text.empty() ? blanks : run;
    run.clear();
    blanks.clear();
    const char meaning = rest.size() > 1 && rest[0] == '\\' ? Meaning(rest[1]) : '\0';
    text += meaning != '\0' ? meaning : rest[0];
    if (meaning != '\0') ++i;
  }
  return text + blanks;
}

// Where the value of a line `name=value` begins: behind the "=" and the blanks that follow it.
std::size_t ValueStart(std::string_view bytes) {
  const std::size_t start = bytes.find_first_not_of(kBlank, bytes.find('=') + 1);
  return std::min(start, bytes.size());
}

}  // namespace

SettingsFile::SettingsFile(std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    lines_.push_back(ReadLine(text.substr(0, end)));
    text.remove_prefix(end);
  }
  if (!lines_.empty() && LineEndOf(lines_.front().bytes).size() == 2) line_end_ = "\r\n";
  Index();
}

std::string SettingsFile::Text() const {
  std::string text;
  for (const Line& line : lines_) text += line.bytes;
  return text;
}

std::vector<SettingsFile::BrokenLine> SettingsFile::BrokenLines() const {
  std::vector<BrokenLine> broken;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    if (lines_[i].kind == Kind::kBroken || lines_[i].kind == Kind::kBrokenSection) {
      broken.push_back({static_cast<int>(i) + 1, lines_[i].bytes});
    }
  }
  return broken;
}

std::size_t SettingsFile::SubkeyCount(std::string_view path) const {
  return Find(path)->subkeys.size();
}

std::size_t SettingsFile::ValueCount(std::string_view path) const {
  return Find(path)->values.size();
}

const std::string& SettingsFile::Subkey(std::string_view path, std::size_t index) const {
  return Find(path)->subkeys[index];
}

SettingsFile::Value SettingsFile::ValueAt(std::string_view path, std::size_t index) const {
  const std::size_t number = Find(path)->values[index];
  return {lines_[number].name, lines_[number].text, static_cast<int>(number) + 1};
}

bool SettingsFile::IsValidPath(std::string_view path) {
  return !path.empty() && path.front() != '\\' && path.back() != '\\' &&
         path.find("\\\\") == std::string_view::npos && !HoldsLineBreakOrZero(path);
}

bool SettingsFile::IsValidValueName(std::string_view name) {
  return !name.empty() && Trimmed(name, kBlanks) == name &&
         std::string_view("[;#").find(name.front()) == std::string_view::npos &&
         name.find('=') == std::string_view::npos && !HoldsLineBreakOrZero(name) &&
         !name.starts_with(kByteOrderMark);
}

bool SettingsFile::CreateKey(std::string_view path) {
  if (HasKey(path)) return false;
  const std::size_t position = SectionPosition(path);
  Insert(position, SectionLines(position, path));
  return true;
}

bool SettingsFile::SetValue(std::string_view path, std::string_view name, std::string_view text) {
  if (const auto found = FindValue(*Find(path), name)) {
    Line& line = lines_[*found];
    if (line.text == text) return false;
    const std::string end(LineEndOf(line.bytes));
    line = ReadLine(line.bytes.substr(0, ValueStart(line.bytes)) + Escaped(text) + end);
    return true;
  }
  const bool only_implied = !path.empty() && Find(path)->sections.empty();
  const std::size_t position = only_implied ? SectionPosition(path) : ValuePosition(*Find(path));
  std::vector<Line> lines;
  if (only_implied) lines = SectionLines(position, path);
  lines.push_back(NewLine(std::string(name) + "=" + Escaped(text)));
  Insert(position, std::move(lines));
  return true;
}

bool SettingsFile::DeleteValue(std::string_view path, std::string_view name) {
  const Key& key = *Find(path);
  if (!FindValue(key, name)) return false;
  std::vector<std::size_t> numbers = key.values;
  numbers.insert(numbers.end(), key.hidden.begin(), key.hidden.end());
  std::sort(numbers.rbegin(), numbers.rend());
  for (const std::size_t number : numbers) {
    if (!SameName(lines_[number].name, name)) continue;
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(number));
  }
  Index();
  return true;
}

bool SettingsFile::DeleteKey(std::string_view path) {
  const Key key = *Find(path);
  std::vector<bool> removed(lines_.size());
  for (const auto* numbers : {&key.sections, &key.values, &key.hidden}) {
    for (const std::size_t number : *numbers) removed[number] = true;
  }
  const std::size_t first = key.sections.front();
  const std::string parent(ParentOf(lines_[first].name));
  if (!parent.empty() && Find(parent)->sections.empty() && Find(parent)->subkeys.size() == 1) {
    // The key above exists only through this one: from now on it has a section of its own.
    lines_[first] = NewLine("[" + parent + "]");
    removed[first] = false;
  }
  RemoveLines(removed);
  Index();
  return true;
}

SettingsFile::Line SettingsFile::ReadLine(std::string_view bytes) {
  Line line;
  line.bytes = bytes;
  std::string_view content = bytes.substr(0, bytes.size() - LineEndOf(bytes).size());
  if (content.starts_with(kByteOrderMark)) content.remove_prefix(kByteOrderMark.size());
  ReadContent(content, &line);
  return line;
}

void SettingsFile::ReadContent(std::string_view content, Line* line) {
  const std::string_view trimmed = Trimmed(content, kBlanks);
  if (trimmed.empty()) {
    line->kind = Kind::kBlank;
  } else if (trimmed.front() == ';' || trimmed.front() == '#') {
    line->kind = Kind::kComment;
  } else if (content.front() == '[') {
    const bool closed = trimmed.size() > 1 && trimmed.back() == ']';
    const std::string_view path = closed ? trimmed.substr(1, trimmed.size() - 2) : "";
    const bool valid = IsValidPath(path);
    line->kind = valid ? Kind::kSection : Kind::kBrokenSection;
    line->name = path;
  } else if (const std::size_t equals = content.find('=');
             equals != std::string_view::npos &&
             !Trimmed(content.substr(0, equals), kBlanks).empty() &&
             content.find('\0') == std::string_view::npos) {
    line->kind = Kind::kValue;
    line->name = Trimmed(content.substr(0, equals), kBlanks);
    const std::string_view value = content.substr(ValueStart(content));
    // A carriage return that is meant is written `\r`.
    line->text = Unescaped(value.substr(0, value.find_last_not_of(" \r") + 1));
  } else {
    line->kind = trimmed.front() == '[' ? Kind::kBrokenSection : Kind::kBroken;
  }
}

SettingsFile::Line SettingsFile::NewLine(std::string_view content) const {
  return ReadLine(std::string(content) + line_end_);
}

void SettingsFile::Index() {
  keys_.clear();
  std::unordered_set<std::string> seen;
  std::string path;
  Key* key = &keys_[path];
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const Line& line = lines_[i];
    if (line.kind == Kind::kSection) {
      path = LowerCased(line.name);
      key = &Touch(line.name);
      key->sections.push_back(i);
    } else if (line.kind == Kind::kBrokenSection) {
      key = nullptr;
    } else if (line.kind == Kind::kValue && key != nullptr) {
      // A line feed can stand in neither part.
      const bool first = seen.insert(path + "\n" + LowerCased(line.name)).second;
      (first ? key->values : key->hidden).push_back(i);
    }
  }
}

SettingsFile::Key& SettingsFile::Touch(std::string_view path) {
  const auto [position, is_new] = keys_.try_emplace(LowerCased(path));
  Key& key = position->second;
  if (is_new) Touch(ParentOf(path)).subkeys.emplace_back(LastPartOf(path));
  return key;
}

const SettingsFile::Key* SettingsFile::Find(std::string_view path) const {
  const auto key = keys_.find(LowerCased(path));
  return key == keys_.end() ? nullptr : &key->second;
}

std::optional<std::size_t> SettingsFile::FindValue(const Key& key, std::string_view name) const {
  for (const std::size_t number : key.values) {
    if (SameName(lines_[number].name, name)) return number;
  }
  return std::nullopt;
}

// The header of a new section at `position`, a blank line apart from what stands above it.
std::vector<SettingsFile::Line> SettingsFile::SectionLines(std::size_t position,
                                                           std::string_view path) const {
  std::vector<Line> lines;
  if (position > 0 && lines_[position - 1].kind != Kind::kBlank) lines.push_back(NewLine(""));
  lines.push_back(NewLine("[" + std::string(path) + "]"));
  return lines;
}

void SettingsFile::Insert(std::size_t position, std::vector<Line> lines) {
  if (position > 0 && LineEndOf(lines_[position - 1].bytes).empty()) {
    lines_[position - 1].bytes += line_end_;
  }
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(position),
                std::make_move_iterator(lines.begin()), std::make_move_iterator(lines.end()));
  Index();
}

// Drops lines, and with a section the blank lines that would then stand doubled.
void SettingsFile::RemoveLines(const std::vector<bool>& removed) {
  std::vector<Line> kept;
  const auto ends_blank = [&kept] { return kept.empty() || kept.back().kind == Kind::kBlank; };
  bool after_section = false;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    if (removed[i]) {
      after_section = after_section || lines_[i].kind == Kind::kSection;
      continue;
    }
    const bool doubled = after_section && lines_[i].kind == Kind::kBlank && ends_blank();
    after_section = after_section && doubled;
    if (!doubled) kept.push_back(std::move(lines_[i]));
  }
  if (after_section && !kept.empty() && ends_blank()) kept.pop_back();
  lines_ = std::move(kept);
}

// Where a new section goes behind the one whose lines begin at `first`: before the next section,
// the comment that stands directly above it and the blank lines above that.
std::size_t SettingsFile::EndOfSection(std::size_t first) const {
  std::size_t end = first;
  while (end < lines_.size() && lines_[end].kind != Kind::kSection &&
         lines_[end].kind != Kind::kBrokenSection) {
    ++end;
  }
  if (end == lines_.size()) return end;
  std::size_t comment = end;
  while (comment > first && lines_[comment - 1].kind == Kind::kComment) --comment;
  // Without a blank line above it the comment belongs to what stands before it.
  if (comment > first && lines_[comment - 1].kind == Kind::kBlank) end = comment;
  while (end > first && lines_[end - 1].kind == Kind::kBlank) --end;
  return end;
}

// Where the section of a new key goes: behind the last one of its family, so that the keys of a
// site stay together; at the end of the file when it is the first of its family.
std::size_t SettingsFile::SectionPosition(std::string_view path) const {
  for (std::string family = LowerCased(path); !family.empty(); family = ParentOf(family)) {
    for (std::size_t i = lines_.size(); i > 0; --i) {
      if (lines_[i - 1].kind != Kind::kSection) continue;
      const std::string section = LowerCased(lines_[i - 1].name);
      if (section == family || section.starts_with(family + "\\")) return EndOfSection(i);
    }
  }
  return lines_.size();
}

// Where a new value of a key goes: behind its last one.
std::size_t SettingsFile::ValuePosition(const Key& key) const {
  std::size_t position = 0;
  for (const auto* numbers : {&key.values, &key.hidden}) {
    if (!numbers->empty()) position = std::max(position, numbers->back() + 1);
  }
  if (position > 0) return position;
  return key.sections.empty() ? EndOfSection(0) : key.sections.front() + 1;
}

}  // namespace platform
