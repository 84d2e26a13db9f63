#include "ui/wx/layout.h"

#include "base/text.h"
#include "ui/wx/layouts/layouts.h"
#include "ui/wx/metrics.h"

namespace quarnel {
namespace {

Layout Box(Layout::Kind kind, std::vector<Layout> items) {
  return {.kind = kind, .gap = metrics::kGap, .items = std::move(items)};
}

FormLayout PlainLayout() {
  return {.kind = WindowKind::kSheet, .content = Column({Rest()}).Padding(metrics::kDialogPadding)};
}

void AddNames(const Layout& layout, std::vector<std::string>& names) {
  if (!layout.name.empty()) names.push_back(layout.name);
  if (!layout.state.empty()) names.push_back(layout.state);
  for (const ShownWhile& shown : layout.shownWhile) names.push_back(shown.control);
  for (const auto& [control, text] : layout.menu) names.push_back(control);
  for (const Layout& item : layout.items) AddNames(item, names);
}

}  // namespace

std::vector<std::string> NamesIn(const FormLayout& layout) {
  std::vector<std::string> names;
  AddNames(layout.content, names);
  for (const MenuLayout& menu : layout.menus) {
    names.push_back(menu.title);
    names.insert(names.end(), menu.entries.begin(), menu.entries.end());
  }
  names.insert(names.end(), layout.keyboard.begin(), layout.keyboard.end());
  names.insert(names.end(), layout.behind.begin(), layout.behind.end());
  names.emplace_back(layout.defaultButton);
  names.emplace_back(layout.cancelButton);
  std::erase(names, "");
  return names;
}

std::string HeadingOf(const Layout& layout, size_t column, const std::string& own) {
  for (const auto& [place, title] : layout.headings) {
    if (place == column) return title;
  }
  return own;
}

Layout Put(std::string_view control) { return {.name = std::string(control)}; }

Layout Text(std::string_view text) {
  return {.kind = Layout::Kind::kText, .text = std::string(text)};
}

Layout Picture(std::string_view icon, int size) {
  return {.kind = Layout::Kind::kPicture, .icon = icon, .iconSize = size, .narrow = true};
}

Layout Column(std::vector<Layout> items) { return Box(Layout::Kind::kColumn, std::move(items)); }

Layout Row(std::vector<Layout> items) { return Box(Layout::Kind::kRow, std::move(items)); }

Layout Grid(int columns, std::vector<Layout> items) {
  Layout grid = Box(Layout::Kind::kGrid, std::move(items));
  grid.columns = columns;
  return grid;
}

Layout Card(std::string_view heading, std::vector<Layout> items) {
  if (!heading.empty()) items.insert(items.begin(), Text(heading).As(Role::kHeading));
  return Box(Layout::Kind::kCard, std::move(items)).Padding(metrics::kCardPadding);
}

Layout Scroll(std::vector<Layout> items) { return Box(Layout::Kind::kScroll, std::move(items)); }

Layout Split(Layout above, Layout below) {
  std::vector<Layout> halves;
  halves.push_back(std::move(above));
  halves.push_back(std::move(below));
  return Box(Layout::Kind::kSplit, std::move(halves));
}

Layout Spring() { return {.kind = Layout::Kind::kSpring}; }

Layout Rest() { return Box(Layout::Kind::kRest, {}); }

std::span<const FormLayout> WrittenLayouts() {
  static const std::vector<FormLayout> layouts = [] {
    std::vector<FormLayout> all;
    all.push_back(MainLayout());
    for (FormLayout& dialog : DialogLayouts()) all.push_back(std::move(dialog));
    return all;
  }();
  return layouts;
}

const FormLayout& LayoutOf(std::string_view form) {
  for (const FormLayout& layout : WrittenLayouts()) {
    if (EqualText(layout.form, form)) return layout;
  }
  static const FormLayout plain = PlainLayout();
  return plain;
}

}  // namespace quarnel
