#include "ui/wx/bindings/list_model.h"

#include <algorithm>
#include <numeric>

#include "ui/wx/bindings/data_view.h"
#include "ui/wx/icons.h"
#include "ui/wx/metrics.h"
#include "ui/wx/text.h"

namespace quarnel {

ListModel::ListModel(const ListView& list, const Layout& layout)
    : list_(list), fileColumn_(layout.fileColumn), states_(layout.states) {
  icons_.reserve(layout.pictures.size());
  for (const std::string_view name : layout.pictures) {
    icons_.push_back(icons::Get(name, metrics::kSmallIcon));
  }
  if (fileColumn_ >= 0) pictures_.Create(metrics::kSmallIcon);
}

void ListModel::SortBy(int column, bool ascending) {
  column_ = column;
  ascending_ = ascending;
}

void ListModel::Sort() {
  order_.resize(list_.Count());
  std::iota(order_.begin(), order_.end(), size_t{0});
  if (column_ < 0) return;
  const auto text = [this](size_t row) { return TextAt(row, static_cast<unsigned>(column_)); };
  std::stable_sort(order_.begin(), order_.end(), [&](size_t left, size_t right) {
    return ascending_ ? text(left) < text(right) : text(right) < text(left);
  });
}

size_t ListModel::LookOf(const ListRow& row) {
  size_t look = row.checked ? 1 : 0;
  const auto mix = [&look](size_t part) {
    constexpr size_t kOdd = 0x9E3779B1;
    look = (look ^ part) * kOdd + (look >> 7);
  };
  mix(std::hash<std::string>()(row.text));
  for (const std::string& text : row.subItems) mix(std::hash<std::string>()(text));
  mix(static_cast<size_t>(row.look.colour));
  mix(static_cast<size_t>(row.look.picture) * 2 + (row.look.bold ? 1 : 0));
  return look;
}

bool ListModel::Follow() {
  // Beyond this the toolkit reads everything anew faster than it takes single steps.
  constexpr size_t kManySteps = 400;
  Sort();
  const std::vector<size_t> known = std::move(looks_);
  looks_.clear();
  looks_.reserve(order_.size());
  for (const size_t row : order_) looks_.push_back(LookOf(list_.At(row)));
  // Rows come and go at one place: what stands before and behind it stays.
  const size_t shorter = std::min(known.size(), looks_.size());
  size_t behind = 0;
  while (behind < shorter && known.rbegin()[static_cast<ptrdiff_t>(behind)] ==
                                 looks_.rbegin()[static_cast<ptrdiff_t>(behind)]) {
    ++behind;
  }
  const size_t place = shorter - behind;
  std::vector<unsigned> changed;
  for (size_t i = 0; i < place; ++i) {
    if (known[i] != looks_[i]) changed.push_back(static_cast<unsigned>(i));
  }
  if (changed.size() + known.size() + looks_.size() - 2 * shorter > kManySteps) {
    Reset(static_cast<unsigned>(looks_.size()));
    return false;
  }
  for (size_t i = known.size(); i > shorter; --i) RowDeleted(static_cast<unsigned>(place));
  for (size_t i = looks_.size(); i > shorter; --i) RowInserted(static_cast<unsigned>(place));
  for (const unsigned row : changed) RowChanged(row);
  return true;
}

std::optional<size_t> ListModel::RowAt(unsigned place) const {
  if (place >= order_.size() || order_[place] >= list_.Count()) return std::nullopt;
  return order_[place];
}

std::optional<unsigned> ListModel::PlaceOf(size_t row) const {
  const auto place = std::find(order_.begin(), order_.end(), row);
  if (place == order_.end()) return std::nullopt;
  return static_cast<unsigned>(place - order_.begin());
}

std::string_view ListModel::TextAt(size_t row, unsigned column) const {
  const ListRow& shown = list_.At(row);
  if (column == list_.ColumnHeaders().size()) {
    const auto state = std::find_if(states_.begin(), states_.end(),
                                    [&](const auto& known) { return known.first == shown.look; });
    return state == states_.end() ? std::string_view() : state->second;
  }
  return column == 0 ? std::string_view(shown.text) : shown.SubItem(column);
}

void ListModel::GetValueByRow(wxVariant& value, unsigned place, unsigned column) const {
  const std::optional<size_t> row = RowAt(place);
  if (column == data_view::kTickColumn) {
    value = row && list_.At(*row).checked;
    return;
  }
  const wxString text = row ? ToWxLine(TextAt(*row, column)) : wxString();
  if (column > 0 || !HasPictures()) {
    value = text;
    return;
  }
  value << wxDataViewIconText(text, row ? PictureOf(*row) : wxBitmapBundle());
}

wxBitmapBundle ListModel::PictureOf(size_t row) const {
  if (const auto icon = static_cast<size_t>(list_.At(row).look.picture); icon < icons_.size()) {
    return icons_[icon];
  }
  if (fileColumn_ < 0) return {};
  const int picture = pictures_.ItemIndex(TextAt(row, static_cast<unsigned>(fileColumn_)));
  return picture < 0 ? wxBitmapBundle() : pictures_.hIml()[static_cast<size_t>(picture)];
}

bool ListModel::GetAttrByRow(unsigned place, unsigned, wxDataViewItemAttr& attributes) const {
  const std::optional<size_t> row = RowAt(place);
  return row && data_view::Show(list_.At(*row).look, attributes);
}

bool ListModel::SetValueByRow(const wxVariant& value, unsigned place, unsigned column) {
  const std::optional<size_t> row = RowAt(place);
  if (!row || column != data_view::kTickColumn || !ticked) return false;
  ticked(*row, value.GetBool());
  return true;
}

}  // namespace quarnel
