// Trees with check boxes and columns, such as the results of a scan.

#include <algorithm>

#include "controls/tree_view.h"
#include "ui/wx/bindings/binding.h"
#include "ui/wx/bindings/data_view.h"
#include "ui/wx/bindings/tree_model.h"
#include "ui/wx/metrics.h"
#include "ui/wx/text.h"

namespace quarnel {
namespace {

class TreeBinding : public Binding {
 public:
  TreeBinding(wxWindow* parent, TreeView& tree, const Layout& layout, const Front& front)
      : Binding(tree, front), layout_(layout), tree_(tree), ticks_(layout.ticks || tree.NodeCheck) {
    const long header = tree.Columns().empty() ? wxDV_NO_HEADER : 0;
    widget_ = new wxDataViewCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                 wxDV_SINGLE | wxDV_ROW_LINES | wxBORDER_THEME | header);
    widget_->SetMinSize(metrics::Scaled(
        *widget_, wxSize(layout.width > 0 ? layout.width : metrics::kFieldWidth,
                         layout.height > 0 ? layout.height : metrics::kTreeHeight)));
    model_ = new TreeModel(tree);
    widget_->AssociateModel(model_.get());
    model_->ticked = [this](const TreeNodeRef& node, bool checked) {
      Act([this, node, checked] {
        if (node->tree == &tree_) tree_.CheckByUser(node, checked);
      });
    };
    if (ticks_) data_view::OnTickKey(*widget_, [this] { TickChosen(); });
    widget_->Bind(wxEVT_DATAVIEW_SELECTION_CHANGED, [this](wxDataViewEvent& event) {
      const TreeNodeRef node = model_->NodeOf(event.GetItem());
      if (selecting_ || !node || tree_.Selected() == node) return;
      Act([this, node] {
        if (node->tree == &tree_) tree_.ClickByUser(node);
      });
    });
    const auto expand = [this](bool expanded) {
      return [this, expanded](wxDataViewEvent& event) {
        if (const TreeNodeRef node = model_->NodeOf(event.GetItem())) node->expanded = expanded;
      };
    };
    widget_->Bind(wxEVT_DATAVIEW_ITEM_EXPANDED, expand(true));
    widget_->Bind(wxEVT_DATAVIEW_ITEM_COLLAPSED, expand(false));
    OnResize(*widget_, [this] { FitColumns(); });
    Attach(widget_, NameInWords(tree, layout));
  }

  std::string Shown() const override { return std::to_string(model_->Count()); }
  wxPoint MenuPlace() const override { return data_view::MenuPlace(*widget_, ticks_); }

 protected:
  bool Update() override {
    MakeColumns();
    const std::vector<TreeNodeRef> added = model_->Follow();
    for (const TreeNodeRef& node : added) {
      if (node->expanded) widget_->Expand(TreeModel::ItemOf(node.get()));
      // A parent that was added without children could not be opened then.
      if (node->parent != nullptr && node->parent->expanded) {
        const wxDataViewItem parent = TreeModel::ItemOf(node->parent);
        if (!widget_->IsExpanded(parent)) widget_->Expand(parent);
      }
    }
    const TreeNodeRef selected = tree_.Selected();
    const TreeNodeRef shown = model_->NodeOf(widget_->GetSelection());
    if (selected != shown) {
      selecting_ = true;
      if (selected) {
        widget_->Select(TreeModel::ItemOf(selected.get()));
      } else {
        widget_->UnselectAll();
      }
      selecting_ = false;
    }
    return false;
  }

 private:
  void MakeColumns() {
    std::vector<std::string> headers;
    for (const TreeView::Column& column : tree_.Columns()) {
      const std::string own = column.visible ? column.header : std::string();
      headers.push_back(HeadingOf(layout_, headers.size(), own));
    }
    if (headers.empty()) headers.emplace_back(" ");
    if (headers == headers_) return;
    headers_ = headers;
    widget_->ClearColumns();
    if (ticks_) data_view::AppendTicks(*widget_);
    for (unsigned i = 0; i < headers_.size(); ++i) {
      if (headers_[i].empty()) continue;
      const int width = i == 0 ? metrics::kNameColumn : WidthOf(i);
      wxDataViewRenderer* renderer = nullptr;
      if (i == 0) {
        renderer = new wxDataViewIconTextRenderer();
      } else {
        renderer = new wxDataViewTextRenderer();
      }
      data_view::AppendTexts(*widget_, renderer, ToWx(headers_[i]), i, width);
    }
    widget_->SetExpanderColumn(&data_view::TextColumn(*widget_, ticks_, 0));
    fittedWidth_ = 0;
    FitColumns();
  }
  // The first column takes what the others leave, and beside others never less than one of them.
  void FitColumns() {
    const int count = static_cast<int>(widget_->GetColumnCount()) - (ticks_ ? 1 : 0);
    const int width = data_view::RoomForTexts(*widget_, ticks_);
    if (count <= 0 || width == fittedWidth_) return;
    fittedWidth_ = width;
    int others = 0;
    for (unsigned i = 1; i < headers_.size(); ++i) {
      if (!headers_[i].empty()) others += metrics::Scaled(*widget_, WidthOf(i));
    }
    const int least = count > 1 ? metrics::Scaled(*widget_, metrics::kTextColumn) : 1;
    data_view::TextColumn(*widget_, ticks_, 0)
        .SetWidth(std::max(width - others - metrics::Scaled(*widget_, metrics::kWideGap), least));
  }
  // Of a column beside the first. What has its title from the layout is a short one.
  int WidthOf(unsigned column) const {
    return tree_.Columns().at(column).visible ? metrics::kTextColumn : metrics::kLevelColumn;
  }
  void TickChosen() {
    const TreeNodeRef node = model_->NodeOf(widget_->GetSelection());
    if (!node || !node->hasCheckBox) return;
    Act([this, node] {
      if (node->tree == &tree_) tree_.CheckByUser(node, !node->checked);
    });
  }

  const Layout layout_;
  TreeView& tree_;
  bool ticks_;
  wxDataViewCtrl* widget_;
  wxObjectDataPtr<TreeModel> model_;
  std::vector<std::string> headers_;
  int fittedWidth_ = 0;
  bool selecting_ = false;
};

}  // namespace

std::unique_ptr<Binding> BindTree(wxWindow* parent, Control& control, const Layout& layout,
                                  const Front& front) {
  auto* tree = dynamic_cast<TreeView*>(&control);
  if (tree == nullptr) return nullptr;
  return std::make_unique<TreeBinding>(parent, *tree, layout, front);
}

}  // namespace quarnel
