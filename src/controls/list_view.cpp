#include "controls/list_view.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "base/text.h"

namespace quarnel {

const ListRow& ListView::At(size_t index) const {
  if (index >= rows_.size()) throw RuntimeError(ErrorNumber::kIndexOutOfBounds);
  return rows_[index];
}

ListRow& ListView::Mutable(size_t index) {
  if (index >= rows_.size()) throw RuntimeError(ErrorNumber::kIndexOutOfBounds);
  return rows_[index];
}

size_t ListView::Add(ListRow row) {
  if (!row.key.empty() && std::any_of(rows_.begin(), rows_.end(), [&](const ListRow& other) {
        return EqualText(other.key, row.key);
      })) {
    throw RuntimeError(ErrorNumber::kKeyNotUnique);
  }
  rows_.push_back(std::move(row));
  Changed();
  return rows_.size() - 1;
}

void ListView::Remove(size_t index) {
  Mutable(index);
  rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(index));
  Changed();
}

void ListView::Clear() {
  if (rows_.empty()) return;
  rows_.clear();
  Changed();
}

void ListView::SetChecked(size_t index, bool checked) { Assign(Mutable(index).checked, checked); }

void ListView::SetText(size_t index, std::string_view text) { Assign(Mutable(index).text, text); }

void ListView::SetSubItem(size_t index, size_t number, std::string_view text) {
  ListRow& row = Mutable(index);
  if (number < 1 || number >= std::max<size_t>(columnHeaders_.size(), 2)) {
    throw RuntimeError(ErrorNumber::kInvalidPropertyValue);
  }
  if (row.subItems.size() < number) row.subItems.resize(number);
  Assign(row.subItems[number - 1], text);
}

void ListView::SetTag(size_t index, std::string_view tag) { Assign(Mutable(index).tag, tag); }

void ListView::SetLook(size_t index, const Look& look) { Assign(Mutable(index).look, look); }

void ListView::Select(size_t index) {
  Mutable(index);
  for (size_t i = 0; i < rows_.size(); ++i) Assign(rows_[i].selected, i == index);
}

std::optional<size_t> ListView::SelectedRow() const {
  for (size_t i = 0; i < rows_.size(); ++i) {
    if (rows_[i].selected) return i;
  }
  return std::nullopt;
}

std::optional<size_t> ListView::FindText(std::string_view text) const {
  for (size_t i = 0; i < rows_.size(); ++i) {
    if (EqualText(rows_[i].text, text)) return i;
  }
  return std::nullopt;
}

std::optional<size_t> ListView::FindSubItem(std::string_view text) const {
  for (size_t i = 0; i < rows_.size(); ++i) {
    for (const std::string& subItem : rows_[i].subItems) {
      if (EqualText(subItem, text)) return i;
    }
  }
  return std::nullopt;
}

std::optional<std::string> ListView::Property(std::string_view name) const {
  if (name == "count") return std::to_string(rows_.size());
  return Control::Property(name);
}

void ListView::CheckByUser(size_t index, bool checked) {
  SetChecked(index, checked);
  if (ItemCheck) ItemCheck(index);
}

void ListView::SelectByUser(size_t index) {
  Select(index);
  if (ItemClick) ItemClick(index);
}

}  // namespace quarnel
