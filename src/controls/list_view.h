#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/control.h"
#include "controls/look.h"

namespace quarnel {

struct ListRow {
  std::string text;
  std::vector<std::string> subItems;  // SubItem 1 is subItems[0]
  std::string key;
  std::string tag;
  bool checked = false;
  bool selected = false;
  Look look;

  // SubItem `number` from 1; empty when the row has no such column.
  std::string_view SubItem(size_t number) const {
    return number >= 1 && number <= subItems.size() ? std::string_view(subItems[number - 1])
                                                    : std::string_view();
  }
};

// A list of rows with columns. Rows are counted from 0 here and from 1 wherever a user counts them.
// A row's reference is good until the list's next change of length.
class ListView : public Control {
 public:
  ListView(Form& form, std::string name, std::vector<std::string> columnHeaders)
      : Control(form, std::move(name)), columnHeaders_(std::move(columnHeaders)) {}
  std::string_view Type() const override { return "ListView"; }

  const std::vector<std::string>& ColumnHeaders() const { return columnHeaders_; }
  const std::vector<ListRow>& Rows() const { return rows_; }
  size_t Count() const { return rows_.size(); }
  bool Empty() const { return rows_.empty(); }

  // Access by index raises kIndexOutOfBounds outside the list.
  const ListRow& At(size_t index) const;
  size_t Add(
      ListRow row);  // the new row's index; kKeyNotUnique when a non-empty key stands already
  void Remove(size_t index);
  void Clear();
  void SetChecked(size_t index, bool checked);
  void SetText(size_t index, std::string_view text);
  void SetSubItem(size_t index, size_t number, std::string_view text);
  void SetTag(size_t index, std::string_view tag);
  void SetLook(size_t index, const Look& look);
  using Control::SetTag;
  void Select(size_t index);  // and no other row
  std::optional<size_t> SelectedRow() const;

  // FindItem: the first row whose text, or one of whose SubItems, is `text` as a whole, letter case
  // folded.
  std::optional<size_t> FindText(std::string_view text) const;
  std::optional<size_t> FindSubItem(std::string_view text) const;

  std::string ValueText() const override { return std::to_string(rows_.size()); }
  std::optional<std::string> Property(std::string_view name) const override;

  // A user's tick and choice: the events follow.
  void CheckByUser(size_t index, bool checked);
  void SelectByUser(size_t index);

  std::function<void(size_t index)> ItemCheck;
  std::function<void(size_t index)> ItemClick;

 private:
  ListRow& Mutable(size_t index);

  std::vector<std::string> columnHeaders_;
  std::vector<ListRow> rows_;
};

}  // namespace quarnel
