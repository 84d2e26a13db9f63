#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "controls/list_view.h"
#include "ui/wx/layout.h"
#include "ui/wx/sys_image_list.h"
#include "ui/wx/wx.h"

namespace quarnel {

// The rows of a list as the toolkit asks for them while it paints, so that a list of any length
// costs the same. They may stand in another order than in the list: a row's place is the toolkit's.
class ListModel : public wxDataViewVirtualListModel {
 public:
  // The layout tells what stands before the rows: their own pictures, or those of types of files.
  ListModel(const ListView& list, const Layout& layout);

  // The user ticked a row.
  std::function<void(size_t row, bool checked)> ticked;

  // Orders the rows by the texts of a column from the next Follow on.
  void SortBy(int column, bool ascending);

  // Tells the toolkit what has changed since the last call. False when that was so much that it
  // begins anew, and has forgotten what was chosen and where it stood.
  bool Follow();

  // The list goes: from now on there are no rows.
  void Release() { order_.clear(); }

  // The row at a place; nothing for one that the list has lost since it was last followed.
  std::optional<size_t> RowAt(unsigned place) const;
  std::optional<unsigned> PlaceOf(size_t row) const;
  // Behind the list's own columns, the words for the row's state.
  std::string_view TextAt(size_t row, unsigned column) const;
  bool HasPictures() const { return fileColumn_ >= 0 || !icons_.empty(); }

  void GetValueByRow(wxVariant& value, unsigned place, unsigned column) const override;
  bool SetValueByRow(const wxVariant& value, unsigned place, unsigned column) override;
  bool GetAttrByRow(unsigned place, unsigned column, wxDataViewItemAttr& attributes) const override;

 private:
  // What tells a row's present look from another one.
  static size_t LookOf(const ListRow& row);
  void Sort();
  wxBitmapBundle PictureOf(size_t row) const;

  const ListView& list_;
  int fileColumn_;
  std::vector<std::pair<Look, std::string_view>> states_;
  std::vector<wxBitmapBundle> icons_;  // by the number of a row's picture
  mutable cVBALSysImageList pictures_;
  std::vector<size_t> order_;  // the rows by their places
  std::vector<size_t> looks_;  // by their places, as the toolkit knows them
  int column_ = -1;
  bool ascending_ = false;
};

}  // namespace quarnel
