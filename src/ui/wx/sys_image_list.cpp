#include "ui/wx/sys_image_list.h"

#include <algorithm>

#include "core/paths.h"
#include "platform/held_folders.h"
#include "ui/wx/icons.h"
#include "ui/wx/native.h"
#include "ui/wx/text.h"

namespace quarnel {
namespace {

// With its dot; empty when the name has none.
std::string EndingOf(std::string_view path) {
  const std::string ending = GetFileExtension(PartsOf(std::string(path)).name);
  return ending.empty() ? ending : "." + ending;
}

}  // namespace

void cVBALSysImageList::Create(int size) {
  Destroy();
  size_ = size;
}

void cVBALSysImageList::Destroy() {
  Clear();
  size_ = 0;
}

void cVBALSysImageList::Clear() {
  types_.clear();
  pictures_.clear();
}

int cVBALSysImageList::ItemIndex(std::string_view path) {
  if (path.empty() || size_ == 0) return kNone;
  const std::string type = EndingOf(path);
  const auto known = std::find(types_.begin(), types_.end(), type);
  if (known != types_.end()) return static_cast<int>(known - types_.begin());
  wxBitmapBundle picture = native::PictureOfType(ToWx(type));
  // A desktop may have no pictures of types.
  if (!picture.IsOk()) picture = icons::Get(icons::NameOfType(path), size_);
  types_.push_back(type);
  pictures_.push_back(picture);
  return static_cast<int>(types_.size()) - 1;
}

wxBitmap cVBALSysImageList::ItemPicture(int index) const {
  return At(index).GetBitmap({size_, size_});
}

wxIcon cVBALSysImageList::ItemCopyOfIcon(int index) const {
  return At(index).GetIcon({size_, size_});
}

void cVBALSysImageList::DrawImage(int index, wxDC& target, const wxPoint& place) const {
  target.DrawBitmap(ItemPicture(index), place, true);
}

}  // namespace quarnel
