#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ui/wx/wx.h"

namespace quarnel {

// The system's pictures for types of files, for lists of files. A type is told by the ending of a
// name alone: the file itself, which may have been made to harm, is not looked into.
class cVBALSysImageList {
 public:
  static constexpr int kNone = -1;

  // Pictures with an edge of `size` pixels at 96 dots per inch, none of them asked for yet.
  void Create(int size);
  // Gives up the pictures. From then on no file has one, until Create.
  void Destroy();
  // Forgets the pictures, which the system may have changed; their numbers begin anew.
  void Clear();

  // The number of the picture for a file, which its type shares. kNone for an empty path.
  int ItemIndex(std::string_view path);
  size_t Count() const { return types_.size(); }

  // Each of these takes a number that ItemIndex gave.
  wxBitmap ItemPicture(int index) const;
  wxIcon ItemCopyOfIcon(int index) const;
  void DrawImage(int index, wxDC& target, const wxPoint& place) const;

  int IconSizeX() const { return size_; }
  int IconSizeY() const { return size_; }
  // The pictures by their numbers, as a list control takes them.
  const wxVector<wxBitmapBundle>& hIml() const { return pictures_; }

 private:
  const wxBitmapBundle& At(int index) const { return pictures_.at(static_cast<size_t>(index)); }

  int size_ = 0;
  std::vector<std::string> types_;  // the endings
  wxVector<wxBitmapBundle> pictures_;
};

}  // namespace quarnel
