// A folder list on the screen: the drives (where there are any), the path of the present folder
// with a button for the system's folder dialog, and the list itself.
//
// Which folders are shown and where a key leads is decided by `FolderList`; the box only shows that
// list and tells its owner what the user did.
#ifndef HITWICK_UI_FOLDER_BOX_H_
#define HITWICK_UI_FOLDER_BOX_H_

#include <wx/choice.h>
#include <wx/listbox.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "ui/folder_list.h"
#include "ui/window_texts.h"

namespace ui {

class FolderBox {
 public:
  struct Texts {
    const window_texts::ControlText& label;
    const window_texts::ControlText& drives;
    const window_texts::ControlText& list;
    const window_texts::ControlText& browse;
    char mnemonic;  // a letter of the label
  };
  struct Owner {
    std::function<const FolderList&()> folders;
    std::function<bool(std::size_t line)> go_in;  // false: the list stays
    std::function<bool()> go_up;
    std::function<void(const std::string& path)> show;
  };

  FolderBox(wxWindow* parent, const Texts& texts, Owner owner);
  FolderBox(const FolderBox&) = delete;
  FolderBox& operator=(const FolderBox&) = delete;

  wxSizer* sizer() const { return sizer_; }
  wxChoice* drives() const { return drives_; }
  wxListBox* list() const { return list_; }
  wxButton* browse() const { return browse_; }

  // Shows the owner's list afresh.
  void Refresh();

 private:
  void Build(wxWindow* parent, const Texts& texts);
  void BindEvents();
  void ShowDrives();
  void Moved(bool moved);
  void GoIn();
  void List_KeyDown(wxKeyEvent& event);
  void Drive_Change();
  void Browse_Click();

  const Owner owner_;
  const std::vector<std::string> drive_roots_;
  wxSizer* sizer_ = nullptr;
  wxChoice* drives_ = nullptr;
  wxStaticText* path_ = nullptr;
  wxButton* browse_ = nullptr;
  wxListBox* list_ = nullptr;
};

}  // namespace ui

#endif  // HITWICK_UI_FOLDER_BOX_H_
