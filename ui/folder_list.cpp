#include "ui/folder_list.h"

#include "platform/file_system.h"
#include "platform/folder_path.h"
#include "platform/names.h"

namespace ui {

FolderList::FolderList() : path_(platform::NormalisedFolder("")) { Refresh(); }

void FolderList::Show(const std::string& path) {
  path_ = platform::NormalisedFolder(path);
  Refresh();
}

bool FolderList::GoIn(std::size_t line) {
  return line < entries_.size() && MoveTo(std::string(entries_[line].path));
}

bool FolderList::GoUp() {
  for (std::size_t line = present_; line-- > 0;) {
    if (GoIn(line)) return true;
  }
  return false;
}

void FolderList::Refresh() {
  std::vector<std::string> names;
  platform::TheFileSystem().ListFolders(path_, &names);  // one that cannot be listed has none
  Build(names);
}

bool FolderList::MoveTo(const std::string& path) {
  std::vector<std::string> names;
  if (platform::TheFileSystem().ListFolders(path, &names) != 0) return false;
  path_ = path;
  Build(names);
  return true;
}

void FolderList::Build(const std::vector<std::string>& names) {
  entries_.clear();
  int depth = 0;
  for (const std::string& folder : platform::FolderChain(path_)) {
    entries_.push_back({platform::FolderName(folder), folder, depth++});
  }
  present_ = entries_.size() - 1;
  for (const std::string& name : names) {
    entries_.push_back({name, platform::FolderInside(path_, name), depth});
  }
}

std::vector<std::string> Drives() { return platform::DriveRoots(); }

int DriveOf(const std::string& path, const std::vector<std::string>& drives) {
  for (std::size_t drive = 0; drive < drives.size(); ++drive) {
    if (platform::NameFits(path, drives[drive], "")) return static_cast<int>(drive);
  }
  return -1;
}

}  // namespace ui
