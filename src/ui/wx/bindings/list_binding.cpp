// Lists of rows, also those with a level. Both are drawn from the control itself, row by row as
// they come into view, so that a list of any length costs the same.

#include <algorithm>
#include <numeric>

#include "controls/list_view.h"
#include "controls/tree_view.h"
#include "ui/wx/bindings/binding.h"
#include "ui/wx/metrics.h"
#include "ui/wx/native.h"
#include "ui/wx/sys_image_list.h"
#include "ui/wx/text.h"

namespace quarnel {
namespace {

// Rows that the program asks for as it paints.
class VirtualList : public wxListCtrl {
 public:
  VirtualList(wxWindow* parent, bool ticks)
      : wxListCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                   wxLC_REPORT | wxLC_VIRTUAL | wxLC_SINGLE_SEL | wxBORDER_THEME) {
    if (ticks) EnableCheckBoxes();
    native::FrameList(*this);
  }
  std::function<std::string(long row, long column)> cell;
  std::function<bool(long row)> ticked;
  std::function<int(long row)> picture;

 protected:
  wxString OnGetItemText(long row, long column) const override {
    return ToWxLine(cell(row, column));
  }
  bool OnGetItemIsChecked(long row) const override { return ticked && ticked(row); }
  int OnGetItemImage(long row) const override {
    return picture ? picture(row) : cVBALSysImageList::kNone;
  }
};

class ListBinding : public Binding {
 public:
  ListBinding(wxWindow* parent, ListView& list, const Layout& layout, const Front& front)
      : Binding(list, front), list_(list), fileColumn_(layout.fileColumn) {
    if (fileColumn_ >= 0) pictures_.Create(metrics::kSmallIcon);
    widget_ = new VirtualList(parent, layout.ticks || list.ItemCheck);
    widget_->SetMinSize(metrics::Scaled(
        *widget_, wxSize(layout.width > 0 ? layout.width : metrics::kFieldWidth,
                         layout.height > 0 ? layout.height : metrics::kListHeight)));
    for (const std::string& header : list.ColumnHeaders()) {
      widget_->AppendColumn(ToWx(header), wxLIST_FORMAT_LEFT,
                            metrics::Scaled(*widget_, metrics::kListColumn));
    }
    widget_->cell = [this](long row, long column) {
      return std::string(TextAt(RowAt(row), static_cast<int>(column)));
    };
    if (fileColumn_ >= 0) {
      widget_->picture = [this](long row) {
        return pictures_.ItemIndex(TextAt(RowAt(row), fileColumn_));
      };
    }
    widget_->ticked = [this](long row) {
      const size_t place = RowAt(row);
      return place < list_.Count() && list_.At(place).checked;
    };
    widget_->Bind(wxEVT_LIST_COL_CLICK, [this](wxListEvent& event) { SortBy(event.GetColumn()); });
    const auto tick = [this](wxListEvent& event) {
      const size_t row = RowAt(event.GetIndex());
      Act([this, row] { list_.CheckByUser(row, !list_.At(row).checked); });
    };
    widget_->Bind(wxEVT_LIST_ITEM_CHECKED, tick);
    widget_->Bind(wxEVT_LIST_ITEM_UNCHECKED, tick);
    widget_->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent& event) {
      const size_t row = RowAt(event.GetIndex());
      if (selecting_ || list_.At(row).selected) return;
      Act([this, row] { list_.SelectByUser(row); });
    });
    widget_->Bind(wxEVT_SET_FOCUS, [this](wxFocusEvent& event) {
      event.Skip();
      // After the click that may have brought the keyboard here, and chosen a row.
      widget_->CallAfter([this] { SelectOne(); });
    });
    OnResize(*widget_, [this] { FitColumns(); });
    Attach(widget_, NameInWords(list, layout));
  }

  std::string Shown() const override { return std::to_string(widget_->GetItemCount()); }

 protected:
  bool Update() override {
    order_.resize(list_.Count());
    std::iota(order_.begin(), order_.end(), size_t{0});
    Sort();
    const auto count = static_cast<long>(order_.size());
    if (widget_->GetItemCount() != count) widget_->SetItemCount(count);
    LoadPictures();
    FitColumns();
    ShowSelection();
    widget_->Refresh();
    return false;
  }

 private:
  size_t RowAt(long place) const {
    const auto index = static_cast<size_t>(place);
    return index < order_.size() && order_[index] < list_.Count() ? order_[index] : list_.Count();
  }
  // The system may ask for a row that the list has lost since it was last shown.
  std::string_view TextAt(size_t row, int column) const {
    if (row >= list_.Count()) return {};
    const ListRow& shown = list_.At(row);
    return column == 0 ? std::string_view(shown.text) : shown.SubItem(static_cast<size_t>(column));
  }
  // The list takes new pictures as a whole, and not while it paints.
  void LoadPictures() {
    const size_t before = pictures_.Count();
    if (fileColumn_ < 0) return;
    for (size_t row = 0; row < list_.Count(); ++row) pictures_.ItemIndex(TextAt(row, fileColumn_));
    if (pictures_.Count() != before) widget_->SetSmallImages(pictures_.hIml());
  }
  void SortBy(int column) {
    ascending_ = column != column_ || !ascending_;
    column_ = column;
    widget_->ShowSortIndicator(column, ascending_);
    Update();
  }
  void Sort() {
    if (column_ < 0) return;
    const auto text = [this](size_t row) { return TextAt(row, column_); };
    std::stable_sort(order_.begin(), order_.end(), [&](size_t left, size_t right) {
      return ascending_ ? text(left) < text(right) : text(right) < text(left);
    });
  }
  // A user at the keyboard sees which row the list's buttons are about.
  void SelectOne() {
    if (list_.Empty() || list_.SelectedRow() || !widget_->HasFocus()) return;
    Act([this] { list_.SelectByUser(RowAt(0)); });
  }
  void ShowSelection() {
    const std::optional<size_t> selected = list_.SelectedRow();
    const long shown = widget_->GetNextItem(-1, wxLIST_NEXT_ALL, wxLIST_STATE_SELECTED);
    const auto place = selected ? std::find(order_.begin(), order_.end(), *selected) : order_.end();
    const long wanted = place == order_.end() ? -1 : static_cast<long>(place - order_.begin());
    if (shown == wanted) return;
    selecting_ = true;
    if (shown >= 0) widget_->SetItemState(shown, 0, wxLIST_STATE_SELECTED);
    if (wanted >= 0) {
      widget_->SetItemState(wanted, wxLIST_STATE_SELECTED, wxLIST_STATE_SELECTED);
    }
    selecting_ = false;
  }
  // What a column needs for its title and for the first of its texts.
  int WidthOf(int column) const {
    constexpr size_t kRowsLookedAt = 30;
    const auto place = static_cast<size_t>(column);
    int width = widget_->GetTextExtent(ToWx(list_.ColumnHeaders().at(place))).x;
    for (size_t row = 0; row < std::min(list_.Count(), kRowsLookedAt); ++row) {
      const std::string text(TextAt(row, column));
      width = std::max(width, widget_->GetTextExtent(ToWxLine(text)).x);
    }
    if (column == 0 && pictures_.Count() > 0) {
      width += metrics::Scaled(*widget_, pictures_.IconSizeX() + metrics::kGap);
    }
    return std::min(width + metrics::Scaled(*widget_, metrics::kColumnPadding),
                    metrics::Scaled(*widget_, metrics::kNameColumn));
  }
  // The widest columns give way where there is too little room, as long as they can be read.
  int WidestIn(int room, std::vector<int> widths) const {
    std::sort(widths.begin(), widths.end());
    auto left = static_cast<int>(widths.size());
    for (const int width : widths) {
      if (width * left > room) {
        return std::max(room / left, metrics::Scaled(*widget_, metrics::kLeastColumn));
      }
      room -= width;
      --left;
    }
    return widths.back();
  }
  // Each column gets its share of the room; where even the narrowed ones want more, the list
  // scrolls.
  void FitColumns() {
    const int count = widget_->GetColumnCount();
    const int room = widget_->GetClientSize().x;
    if (count == 0 || (room == fittedWidth_ && fittedToRows_ == !list_.Empty())) return;
    fittedWidth_ = room;
    fittedToRows_ = !list_.Empty();
    std::vector<int> widths;
    widths.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) widths.push_back(WidthOf(i));
    const int widest = WidestIn(room, widths);
    for (int& width : widths) width = std::min(width, widest);
    const int needed = std::accumulate(widths.begin(), widths.end(), 0);
    int left = std::max(room, needed);
    for (int i = 0; i < count; ++i) {
      const int share = widths[static_cast<size_t>(i)] * std::max(room, needed) / needed;
      widget_->SetColumnWidth(i, i + 1 < count ? share : left);
      left -= share;
    }
  }

  ListView& list_;
  int fileColumn_;
  VirtualList* widget_;
  cVBALSysImageList pictures_;
  std::vector<size_t> order_;
  int column_ = -1;
  int fittedWidth_ = 0;
  bool fittedToRows_ = false;
  bool ascending_ = false;
  bool selecting_ = false;
};

// The flat tree: a list whose first column is indented by level.
class ItemsBinding : public Binding {
 public:
  ItemsBinding(wxWindow* parent, ItemTree& items, const Layout& layout, const Front& front)
      : Binding(items, front), items_(items) {
    widget_ = new VirtualList(parent, false);
    widget_->SetMinSize(
        metrics::Scaled(*widget_, wxSize(metrics::kFieldWidth, metrics::kListHeight)));
    widget_->AppendColumn("", wxLIST_FORMAT_LEFT, metrics::Scaled(*widget_, metrics::kNameColumn));
    widget_->cell = [this](long row, long) {
      const auto index = static_cast<size_t>(row);
      if (index >= items_.Count()) return std::string();
      const TreeItem& item = items_.At(index);
      constexpr size_t kIndent = 4;
      return std::string(static_cast<size_t>(item.level) * kIndent, ' ') +
             std::string(item.Cell(0));
    };
    Attach(widget_, NameInWords(items, layout));
  }
  std::string Shown() const override { return std::to_string(widget_->GetItemCount()); }

 protected:
  bool Update() override {
    widget_->SetItemCount(static_cast<long>(items_.Count()));
    widget_->Refresh();
    return false;
  }

 private:
  ItemTree& items_;
  VirtualList* widget_;
};

}  // namespace

std::unique_ptr<Binding> BindList(wxWindow* parent, Control& control, const Layout& layout,
                                  const Front& front) {
  if (auto* list = dynamic_cast<ListView*>(&control)) {
    return std::make_unique<ListBinding>(parent, *list, layout, front);
  }
  if (auto* items = dynamic_cast<ItemTree*>(&control)) {
    return std::make_unique<ItemsBinding>(parent, *items, layout, front);
  }
  return nullptr;
}

}  // namespace quarnel
