// The pictures of the filter list's buttons: line drawings in the colour of button texts, so that
// they can be read on light and dark themes and at any scale.
#ifndef HITWICK_UI_PICTURES_H_
#define HITWICK_UI_PICTURES_H_

#include <wx/bmpbndl.h>

namespace ui {

wxBitmapBundle EditPicture();    // a pencil
wxBitmapBundle DeletePicture();  // a dustbin

}  // namespace ui

#endif  // HITWICK_UI_PICTURES_H_
