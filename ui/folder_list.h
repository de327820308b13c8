// What a folder list shows: the chain of folders from the root down to the present one, then the
// present one's sub-folders; and where a double click, Enter or Backspace leads.
//
// A list holds its own state and never fails: a folder that cannot be listed is shown without
// sub-folders when the list is pointed at it, and is not entered from within the list. Used by the
// configuration window for `dirLogDir` and `dirUsageDir` and by the drive lists beside them.
#ifndef HITWICK_UI_FOLDER_LIST_H_
#define HITWICK_UI_FOLDER_LIST_H_

#include <cstddef>
#include <string>
#include <vector>

namespace ui {

class FolderList {
 public:
  struct Entry {
    std::string name;  // what the list shows; a root shows as itself ("/", "C:\")
    std::string path;  // the folder, in full
    int depth = 0;     // 0 for the root; sub-folders are one deeper than the present folder
    bool operator==(const Entry&) const = default;
  };

  // The present folder is the process's own until `Show` is called.
  FolderList();

  // Points the list at a folder, whether it exists or not. An empty path is the process's present
  // folder.
  void Show(const std::string& path);

  // The present folder: absolute, without "." and "..", and without a separator at its end unless
  // it is a root.
  const std::string& path() const { return path_; }
  // The lines of the list: the chain, then the sub-folders in order of their names (letter case of
  // A to Z ignored).
  const std::vector<Entry>& entries() const { return entries_; }
  // The line of the present folder; the lines behind it are its sub-folders.
  std::size_t present() const { return present_; }

  // Double click or Enter on a line: makes its folder the present one and returns true. A folder
  // that cannot be listed leaves everything as it is and returns false; so does a line that does
  // not exist.
  bool GoIn(std::size_t line);
  // Backspace: goes to the nearest folder above that can be listed; false when there is none.
  bool GoUp();
  // Lists the present folder again.
  void Refresh();

 private:
  bool MoveTo(const std::string& path);
  void Build(const std::vector<std::string>& names);

  std::string path_;
  std::vector<Entry> entries_;
  std::size_t present_ = 0;
};

// The roots of the drives in their order ("A:\", "C:\"); none where the system has no drives (the
// drive lists are hidden then).
std::vector<std::string> Drives();
// The place of the drive that holds `path` in `drives`; -1 when it is on none of them.
int DriveOf(const std::string& path, const std::vector<std::string>& drives);

}  // namespace ui

#endif  // HITWICK_UI_FOLDER_LIST_H_
