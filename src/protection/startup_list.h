#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "controls/list_view.h"
#include "controls/tree_view.h"
#include "protection/startup_locations.h"
#include "protection/startup_verdicts.h"

// How the entries stand in the tree, which is the working model, and in the list that is shown.
namespace quarnel::startup {

// The columns of the tree, unless it has them.
void SetUpColumns(TreeView& tree);

// Adds an entry below the node of its location, with its path. Raises kKeyNotUnique for an entry
// without a name, whose key is that of the location.
TreeNodeRef AddEntry(TreeView& tree, const TreeNodeRef& parent, const StartupEntry& entry);

// What the user has decided about a node's entry.
void ShowVerdict(TreeView& tree, TreeNode& node, std::string_view text, Colour colour);

// The colour of a verdict.
Colour ColourOf(std::string_view text);

// Makes sure that the tree has what the file of verdicts has, each with its verdict.
void AddVerdicts(TreeView& tree, const std::vector<StartupEntry>& verdicts);

// Makes the list show what the tree has: a bold row for each location that has entries, and behind
// it one for each of them. The chosen entry stays chosen.
void ShowTree(const TreeView& tree, ListView& list);

// The entry of a row, and the row of an entry.
StartupEntry EntryOf(const ListRow& row);
std::optional<size_t> RowOf(const ListView& list, const StartupEntry& entry);

}  // namespace quarnel::startup
