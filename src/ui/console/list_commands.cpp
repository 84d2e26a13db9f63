#include <algorithm>
#include <string>
#include <vector>

#include "base/hex.h"
#include "controls/list_view.h"
#include "controls/tree_view.h"
#include "ui/console/command_error.h"
#include "ui/console/commands.h"
#include "ui/console/display_text.h"

// The commands that show lists and trees and act on their rows and nodes.
namespace quarnel::command {
namespace {

constexpr std::string_view kList = "list";
constexpr std::string_view kTree = "tree with nodes to click";

// Takes a number from 1 to `count`.
size_t TakeNumber(Words& words, const Target& target, size_t count) {
  const std::string& word = words.Next();
  const std::optional<size_t> number = ParseCount(word);
  if (!number || *number < 1 || *number > count) {
    throw CommandError{target.Name() + " has " + std::to_string(count) + ", none numbered " +
                       Quoted(word)};
  }
  return *number;
}

// Writes a record, and behind its fields how it stands out, if it does.
void WriteLook(Session& session, std::vector<Field> fields, const Look& look) {
  std::vector<std::string> words;
  if (look.bold) words.emplace_back("bold");
  if (look.colour != Colour::kBlack) {
    const auto part = [&](int shift) {
      return static_cast<char>(static_cast<uint32_t>(look.colour) >> shift & 0xFF);
    };
    words.push_back("colour=#" + HexText(std::string{part(16), part(8), part(0)}));
  }
  if (look.picture != 0) words.push_back("picture=" + std::to_string(look.picture));
  if (!words.empty()) fields.push_back({"look", std::move(words)});
  session.records.Write(fields);
}

void WriteNode(Session& session, const TreeView& tree, const TreeNode& node, size_t depth,
               size_t& number) {
  // As many columns as the tree has headers for, and those that a node has beyond them.
  std::vector<std::string> columns = node.columns;
  if (!tree.Columns().empty()) {
    columns.resize(std::max(columns.size(), tree.Columns().size() - 1));
  }
  WriteLook(session,
            {{"index", Number(++number)},
             {"depth", Number(depth)},
             {"checked", node.checked},
             {"key", node.key},
             {"text", node.text},
             {"columns", std::move(columns)}},
            node.LookOf());
  for (const TreeNodeRef& child : node.children) {
    WriteNode(session, tree, *child, depth + 1, number);
  }
}

void WriteItems(Session& session, const ItemTree& tree) {
  size_t number = 0;
  for (const TreeItem& item : tree.Items()) {
    std::vector<std::string> further;
    if (!item.cells.empty()) further.assign(item.cells.begin() + 1, item.cells.end());
    WriteLook(session,
              {{"index", Number(++number)},
               {"depth", int64_t{item.level}},
               {"checked", item.checked},
               {"key", std::string()},
               {"text", std::string(item.Cell(0))},
               {"columns", std::move(further)}},
              {.bold = item.bold});
  }
}

}  // namespace

void Rows(Session& session, Words& words) {
  const ListView& list = TakeKind<ListView>(session.host, words, kList).control;
  words.End();
  const size_t columns = list.ColumnHeaders().size();
  size_t number = 0;
  for (const ListRow& row : list.Rows()) {
    std::vector<std::string> subItems = row.subItems;
    subItems.resize(columns > 0 ? columns - 1 : 0);
    WriteLook(session,
              {{"row", Number(++number)},
               {"checked", row.checked},
               {"text", row.text},
               {"subitems", std::move(subItems)}},
              row.look);
  }
}

void Select(Session& session, Words& words) {
  const auto [target, list] = TakeKind<ListView>(session.host, words, kList);
  const size_t row = TakeNumber(words, target, list.Count());
  words.End();
  if (TakesActions(session, target)) list.SelectByUser(row - 1);
}

void Check(Session& session, Words& words) {
  const auto [target, list] = TakeKind<ListView>(session.host, words, kList);
  const size_t row = TakeNumber(words, target, list.Count());
  const bool checked = ParseFlag(words.Next());
  words.End();
  if (TakesActions(session, target)) list.CheckByUser(row - 1, checked);
}

void Tree(Session& session, Words& words) {
  const Target target = TakeControl(session.host, words);
  words.End();
  if (const auto* tree = dynamic_cast<const TreeView*>(target.control)) {
    size_t number = 0;
    for (const TreeNodeRef& root : tree->Roots()) WriteNode(session, *tree, *root, 0, number);
  } else if (const auto* items = dynamic_cast<const ItemTree*>(target.control)) {
    WriteItems(session, *items);
  } else {
    ThrowWrongKind(target, "tree");
  }
}

void CheckNode(Session& session, Words& words) {
  const auto [target, tree] = TakeKind<TreeView>(session.host, words, kTree);
  const TreeNodeRef node = tree.At(TakeNumber(words, target, tree.Count()));
  const bool checked = ParseFlag(words.Next());
  words.End();
  if (!TakesActions(session, target)) return;
  if (!node->hasCheckBox) {
    session.host.Notice("node " + Quoted(node->text) + " has no check box: nothing done");
    return;
  }
  tree.CheckByUser(node, checked);
}

void ClickNode(Session& session, Words& words) {
  const auto [target, tree] = TakeKind<TreeView>(session.host, words, kTree);
  const TreeNodeRef node = tree.At(TakeNumber(words, target, tree.Count()));
  words.End();
  if (TakesActions(session, target)) tree.ClickByUser(node);
}

}  // namespace quarnel::command
