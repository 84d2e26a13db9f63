#include "protection/startup_list.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace quarnel::startup {
namespace {

enum SubItem : size_t { kPath = 1, kSection };

std::string KeyOf(const StartupEntry& entry) { return entry.section + entry.name; }

// Links of the folder go by their names without the ending in the tree's text, and nowhere else.
std::string TextOf(const StartupEntry& entry) {
  return entry.section == kFolder ? Replace(entry.name, ".lnk", "") : entry.name;
}

std::string NameOf(const TreeNode& top, const TreeNode& node) {
  return node.key.starts_with(top.key) ? node.key.substr(top.key.size()) : node.text;
}

bool LooksAs(const ListRow& left, const ListRow& right) {
  return left.text == right.text && left.subItems == right.subItems && left.look == right.look;
}

}  // namespace

void SetUpColumns(TreeView& tree) {
  if (tree.Columns().size() >= 3) return;
  tree.SetColumns({{"Application"}, {"Path"}, {"Description", false}});
}

TreeNodeRef AddEntry(TreeView& tree, const TreeNodeRef& parent, const StartupEntry& entry) {
  TreeNodeRef node = tree.AddChild(parent, KeyOf(entry), TextOf(entry));
  tree.SetColumn(*node, 1, entry.path);
  return node;
}

void ShowVerdict(TreeView& tree, TreeNode& node, std::string_view text, Colour colour) {
  tree.SetColumn(node, 1, text);
  tree.SetColour(node, colour);
}

Colour ColourOf(std::string_view text) {
  if (text.find(verdict::kBlocked) != std::string_view::npos) return Colour::kRed;
  if (text.find(verdict::kAllowed) != std::string_view::npos) return Colour::kGreen;
  return Colour::kBlack;
}

void AddVerdicts(TreeView& tree, const std::vector<StartupEntry>& verdicts) {
  for (const StartupEntry& entry : verdicts) {
    TreeNodeRef top = tree.Find(entry.section);
    if (!top) top = tree.AddRoot(entry.section, entry.section);
    if (const TreeNodeRef node = tree.Find(KeyOf(entry))) {
      tree.SetColumn(*node, 1, entry.path);
    } else {
      AddEntry(tree, top, entry);
    }
  }
}

void ShowTree(const TreeView& tree, ListView& list) {
  std::vector<ListRow> rows;
  for (const TreeNodeRef& top : tree.Roots()) {
    if (top->children.empty()) continue;
    rows.push_back({.text = top->text, .look = {.bold = true}});
    for (const TreeNodeRef& node : top->children) {
      const std::string& text = node->columns.front();
      rows.push_back({.text = NameOf(*top, *node),
                      .subItems = {PathOfVerdict(text), top->text},
                      .look = {.colour = ColourOf(text)}});
    }
  }
  // A list that would come out the same keeps its place on the screen.
  if (std::equal(rows.begin(), rows.end(), list.Rows().begin(), list.Rows().end(), LooksAs)) return;
  const auto selected = list.SelectedRow();
  const StartupEntry chosen = selected ? EntryOf(list.At(*selected)) : StartupEntry();
  list.Clear();
  for (ListRow& row : rows) list.Add(std::move(row));
  if (!selected) return;
  if (const auto row = RowOf(list, chosen)) list.Select(*row);
}

StartupEntry EntryOf(const ListRow& row) {
  return {.name = row.text,
          .path = std::string(row.SubItem(kPath)),
          .section = Replace(Replace(row.SubItem(kSection), "[", ""), "]", "")};
}

std::optional<size_t> RowOf(const ListView& list, const StartupEntry& entry) {
  const auto& rows = list.Rows();
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const ListRow& row) {
    const StartupEntry other = EntryOf(row);
    return other.name == entry.name && other.section == entry.section;
  });
  if (found == rows.end()) return std::nullopt;
  return static_cast<size_t>(found - rows.begin());
}

}  // namespace quarnel::startup
