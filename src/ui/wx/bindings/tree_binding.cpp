// Trees with check boxes and columns, such as the results of a scan.

#include <algorithm>

#include "controls/tree_view.h"
#include "ui/wx/bindings/binding.h"
#include "ui/wx/bindings/tree_model.h"
#include "ui/wx/metrics.h"
#include "ui/wx/text.h"

namespace quarnel {
namespace {

class TreeBinding : public Binding {
 public:
  TreeBinding(wxWindow* parent, TreeView& tree, const Layout& layout, const Front& front)
      : Binding(tree, front), tree_(tree), ticks_(layout.ticks || tree.NodeCheck) {
    const long header = tree.Columns().empty() ? wxDV_NO_HEADER : 0;
    widget_ = new wxDataViewCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                 wxDV_SINGLE | wxDV_ROW_LINES | wxBORDER_THEME | header);
    widget_->SetMinSize(metrics::Scaled(
        *widget_, wxSize(layout.width > 0 ? layout.width : metrics::kFieldWidth,
                         layout.height > 0 ? layout.height : metrics::kTreeHeight)));
    model_ = new TreeModel(tree, ticks_);
    widget_->AssociateModel(model_.get());
    model_->ticked = [this](const TreeNodeRef& node, bool checked) {
      Act([this, node, checked] {
        if (node->tree == &tree_) tree_.CheckByUser(node, checked);
      });
    };
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
  // Under the text of the selected row.
  wxPoint MenuPlace() const override {
    const wxDataViewItem selected = widget_->GetSelection();
    if (!selected.IsOk()) return Binding::MenuPlace();
    const wxRect row = widget_->GetItemRect(selected, widget_->GetColumn(0));
    return row.IsEmpty() ? Binding::MenuPlace() : row.GetBottomLeft();
  }

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
      headers.push_back(column.visible ? column.header : std::string());
    }
    if (headers.empty()) headers.emplace_back(" ");
    if (headers == headers_) return;
    headers_ = headers;
    widget_->ClearColumns();
    for (unsigned i = 0; i < headers_.size(); ++i) {
      if (headers_[i].empty()) continue;
      const int width = i == 0 ? metrics::kNameColumn : metrics::kTextColumn;
      constexpr int kFlags = wxDATAVIEW_COL_RESIZABLE | wxDATAVIEW_COL_SORTABLE;
      wxDataViewRenderer* renderer = nullptr;
      if (i > 0) {
        renderer = new wxDataViewTextRenderer();
      } else if (ticks_) {
        renderer = new wxDataViewCheckIconTextRenderer(wxDATAVIEW_CELL_ACTIVATABLE);
      } else {
        renderer = new wxDataViewIconTextRenderer();
      }
      // Of a long path the end tells more than what follows its beginning.
      renderer->EnableEllipsize(wxELLIPSIZE_MIDDLE);
      widget_->AppendColumn(new wxDataViewColumn(
          ToWx(headers_[i]), renderer, i, metrics::Scaled(*widget_, width), wxALIGN_LEFT, kFlags));
    }
    fittedWidth_ = 0;
    FitColumns();
  }
  // The first column takes what the others leave, and beside others never less than one of them.
  void FitColumns() {
    const unsigned count = widget_->GetColumnCount();
    const int width = widget_->GetClientSize().x;
    if (count == 0 || width == fittedWidth_) return;
    fittedWidth_ = width;
    const int others =
        metrics::Scaled(*widget_, metrics::kTextColumn) * static_cast<int>(count - 1);
    const int least = count > 1 ? metrics::Scaled(*widget_, metrics::kTextColumn) : 1;
    widget_->GetColumn(0)->SetWidth(
        std::max(width - others - metrics::Scaled(*widget_, metrics::kWideGap), least));
  }

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
