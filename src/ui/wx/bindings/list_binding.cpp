// Lists of rows with columns.

#include <algorithm>
#include <numeric>

#include "controls/list_view.h"
#include "ui/wx/bindings/binding.h"
#include "ui/wx/bindings/data_view.h"
#include "ui/wx/bindings/list_model.h"
#include "ui/wx/metrics.h"
#include "ui/wx/text.h"

namespace quarnel {
namespace {

class ListBinding : public Binding {
 public:
  ListBinding(wxWindow* parent, ListView& list, const Layout& layout, const Front& front)
      : Binding(list, front),
        list_(list),
        headers_(list.ColumnHeaders()),
        ticks_(layout.ticks || list.ItemCheck) {
    for (size_t i = 0; i < headers_.size(); ++i) headers_[i] = HeadingOf(layout, i, headers_[i]);
    if (!layout.states.empty()) headers_.emplace_back("State");
    widget_ = new wxDataViewCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                 wxDV_SINGLE | wxBORDER_THEME);
    widget_->SetMinSize(metrics::Scaled(
        *widget_, wxSize(layout.width > 0 ? layout.width : metrics::kFieldWidth,
                         layout.height > 0 ? layout.height : metrics::kListHeight)));
    model_ = new ListModel(list, layout);
    widget_->AssociateModel(model_.get());
    MakeColumns();
    model_->ticked = [this](size_t row, bool checked) {
      Act([this, row, checked] { list_.CheckByUser(row, checked); });
    };
    if (ticks_) data_view::OnTickKey(*widget_, [this] { TickChosen(); });
    widget_->Bind(wxEVT_DATAVIEW_COLUMN_SORTED, [this](wxDataViewEvent&) { Sort(); });
    widget_->Bind(wxEVT_DATAVIEW_SELECTION_CHANGED, [this](wxDataViewEvent&) { TakeSelection(); });
    // The keyboard comes to the widget, or to its part that shows the rows.
    const auto comes = [this](wxEvent& event) {
      event.Skip();
      // After the click that may have brought the keyboard here, and chosen a row.
      widget_->CallAfter([this] { SelectOne(); });
    };
    widget_->Bind(wxEVT_SET_FOCUS, comes);
    widget_->Bind(wxEVT_CHILD_FOCUS, comes);
    OnResize(*widget_, [this] { FitColumns(); });
    Attach(widget_, NameInWords(list, layout));
  }

  std::string Shown() const override { return std::to_string(model_->GetCount()); }
  wxPoint MenuPlace() const override { return data_view::MenuPlace(*widget_, ticks_); }
  void Release() override {
    Binding::Release();
    model_->Release();
  }

 protected:
  bool Update() override {
    const bool before = std::exchange(selecting_, true);
    const int bottom = BottomPlace();
    const bool anew = !model_->Follow();
    FitColumns();
    const bool chosen = ShowSelection();
    if (anew && !chosen) ShowDownTo(bottom);
    selecting_ = before;
    return false;
  }

 private:
  void MakeColumns() {
    if (ticks_) data_view::AppendTicks(*widget_);
    unsigned column = 0;
    for (const std::string& header : headers_) {
      wxDataViewRenderer* renderer = nullptr;
      if (column == 0 && model_->HasPictures()) {
        renderer = new wxDataViewIconTextRenderer();
      } else {
        renderer = new wxDataViewTextRenderer();
      }
      data_view::AppendTexts(*widget_, renderer, ToWx(header), column++, metrics::kListColumn);
    }
  }
  wxDataViewColumn& Column(int place) const {
    return data_view::TextColumn(*widget_, ticks_, place);
  }
  int Columns() const { return static_cast<int>(headers_.size()); }

  void Sort() {
    for (int place = 0; place < Columns(); ++place) {
      if (Column(place).IsSortKey()) model_->SortBy(place, Column(place).IsSortOrderAscending());
    }
    Update();
  }

  // ---- the chosen row
  std::optional<size_t> ChosenRow() const {
    const wxDataViewItem item = widget_->GetSelection();
    return item.IsOk() ? model_->RowAt(model_->GetRow(item)) : std::nullopt;
  }
  void TakeSelection() {
    const std::optional<size_t> row = ChosenRow();
    if (selecting_ || !row || list_.At(*row).selected) return;
    Act([this, row] { list_.SelectByUser(*row); });
  }
  void TickChosen() {
    const std::optional<size_t> row = ChosenRow();
    if (row) Act([this, row] { list_.CheckByUser(*row, !list_.At(*row).checked); });
  }
  // A user at the keyboard sees which row the list's buttons are about.
  void SelectOne() {
    if (list_.Empty() || list_.SelectedRow() || !data_view::HasKeyboard(*widget_)) return;
    Act([this] {
      if (const auto first = model_->RowAt(0)) list_.SelectByUser(*first);
    });
  }
  // True when another row was chosen than the one that was shown so far.
  bool ShowSelection() {
    const std::optional<size_t> selected = list_.SelectedRow();
    const bool changed = std::exchange(shownRow_, selected) != selected;
    if (selected == ChosenRow()) return false;
    const std::optional<unsigned> place = selected ? model_->PlaceOf(*selected) : std::nullopt;
    if (!place) {
      widget_->UnselectAll();
      return false;
    }
    const wxDataViewItem item = model_->GetItem(*place);
    // From there the keyboard goes on.
    widget_->SetCurrentItem(item);
    widget_->Select(item);
    if (changed) widget_->EnsureVisible(item);
    return changed;
  }

  // ---- what is in view
  // The last place in view; none of a list that stands at its beginning.
  int BottomPlace() const {
    const wxDataViewItem top = model_->GetCount() > 0 ? widget_->GetTopItem() : wxDataViewItem();
    const int place = top.IsOk() ? static_cast<int>(model_->GetRow(top)) : 0;
    return place == 0 ? -1 : place + std::max(widget_->GetCountPerPage() - 1, 0);
  }
  void ShowDownTo(int bottom) {
    const int last = std::min(bottom, static_cast<int>(model_->GetCount()) - 1);
    if (last >= 0) widget_->EnsureVisible(model_->GetItem(static_cast<unsigned>(last)));
  }

  // ---- the widths of the columns
  // What a column needs for its title and for the first of its texts.
  int WidthOf(int column) const {
    constexpr size_t kRowsLookedAt = 30;
    const auto place = static_cast<size_t>(column);
    int width = widget_->GetTextExtent(ToWx(headers_.at(place))).x;
    for (size_t row = 0; row < std::min(list_.Count(), kRowsLookedAt); ++row) {
      const wxString text = ToWxLine(model_->TextAt(row, static_cast<unsigned>(column)));
      width = std::max(width, widget_->GetTextExtent(text).x);
    }
    if (column == 0 && model_->HasPictures()) {
      width += metrics::Scaled(*widget_, metrics::kSmallIcon + metrics::kGap);
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
    const int count = Columns();
    const int room = data_view::RoomForTexts(*widget_, ticks_);
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
      Column(i).SetWidth(i + 1 < count ? share : left);
      left -= share;
    }
  }

  ListView& list_;
  std::vector<std::string> headers_;
  bool ticks_;
  wxDataViewCtrl* widget_;
  wxObjectDataPtr<ListModel> model_;
  std::optional<size_t> shownRow_;
  int fittedWidth_ = 0;
  bool fittedToRows_ = false;
  bool selecting_ = false;
};

}  // namespace

std::unique_ptr<Binding> BindList(wxWindow* parent, Control& control, const Layout& layout,
                                  const Front& front) {
  auto* list = dynamic_cast<ListView*>(&control);
  if (list == nullptr) return nullptr;
  return std::make_unique<ListBinding>(parent, *list, layout, front);
}

}  // namespace quarnel
