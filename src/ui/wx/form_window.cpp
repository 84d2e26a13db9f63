#include "ui/wx/form_window.h"

#include <wx/display.h>
#include <wx/splitter.h>

#include <algorithm>

#include "base/runtime_error.h"
#include "base/text.h"
#include "ui/wx/boxes.h"
#include "ui/wx/icons.h"
#include "ui/wx/metrics.h"
#include "ui/wx/native.h"
#include "ui/wx/text.h"
#include "ui/wx/theme.h"

namespace quarnel {
namespace {

long StyleOf(WindowKind kind) {
  constexpr long kBorderless = wxFRAME_NO_TASKBAR | wxBORDER_NONE | wxSTAY_ON_TOP;
  switch (kind) {
    case WindowKind::kMain:
      return wxDEFAULT_FRAME_STYLE;
    case WindowKind::kSheet:
      return wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER;
    case WindowKind::kPopup:
      return kBorderless | wxFRAME_TOOL_WINDOW;
    case WindowKind::kSplash:
      return kBorderless;
    case WindowKind::kDialog:
      break;
  }
  return wxDEFAULT_DIALOG_STYLE;
}

bool IsBox(const Layout& layout) {
  using Kind = Layout::Kind;
  return layout.kind != Kind::kControl && layout.kind != Kind::kText &&
         layout.kind != Kind::kPicture;
}

// A box that needs a window of its own: it has a surface, or comes and goes as a whole.
bool NeedsWindow(const Layout& layout) {
  using Kind = Layout::Kind;
  return !layout.shownWhile.empty() || layout.kind == Kind::kCard || layout.kind == Kind::kScroll ||
         layout.kind == Kind::kSplit;
}

// Whether the widget is on the screen when its window is.
bool ShowsInItsWindow(const wxWindow& widget) {
  const wxWindow* part = &widget;
  while (!part->IsTopLevel() && part->IsShown()) part = part->GetParent();
  return part->IsTopLevel();
}

}  // namespace

FormWindow::FormWindow(Form& form, const FormLayout& layout, wxWindow* parent, const Front& front)
    : form_(&form), layout_(layout), front_(front), named_(NamesIn(layout)) {
  for (const std::string& name : named_) {
    if (form.Find(name) != nullptr) continue;
    throw RuntimeError(ErrorNumber::kElementNotFound, form.Name() + "." + name);
  }
  MakeWindow(parent);
  page_ = new GroupPanel(window_);
  page_->SetBackgroundColour(theme::Page());
  auto* outer = new wxBoxSizer(wxVERTICAL);
  Fill(page_, *outer, layout_.content);
  page_->SetSizer(outer);
  if (auto* frame = dynamic_cast<wxFrame*>(window_); frame != nullptr && !layout_.menus.empty()) {
    menuBar_ = std::make_unique<MenuBar>(*frame, form, layout_.menus, front_);
  }
  SyncContent();
  FitWindow();
  BindWindow();
  // Only now: on the screen it would get its first size and place from the toolkit.
  Sync();
}

FormWindow::~FormWindow() {
  Release();
  bindings_.clear();
  // The toolkit keeps it for a while, and its events would come to what has gone.
  window_->SetEvtHandlerEnabled(false);
  window_->Destroy();
}

void FormWindow::MakeWindow(wxWindow* parent) {
  const wxString caption = ToWx(form_->Caption());
  const long style = StyleOf(layout_.kind);
  const bool dialog = layout_.kind == WindowKind::kDialog || layout_.kind == WindowKind::kSheet;
  if (dialog) {
    window_ = new wxDialog(parent, wxID_ANY, caption, wxDefaultPosition, wxDefaultSize, style);
  } else {
    window_ = new wxFrame(nullptr, wxID_ANY, caption, wxDefaultPosition, wxDefaultSize, style);
  }
  window_->SetName(ToWx(form_->Name()));
  window_->SetIcons(icons::ProgramIcons());
  native::KeepPlace(*window_);
  if (layout_.kind == WindowKind::kPopup) native::StayInReach(*window_);
}

void FormWindow::FitWindow() {
  auto* outer = new wxBoxSizer(wxVERTICAL);
  const bool framed = layout_.kind == WindowKind::kPopup;
  // What has no frame of the system's has a line around it.
  if (framed) window_->SetBackgroundColour(theme::Border());
  const int line = framed ? metrics::Scaled(*window_, metrics::kPopupBorder) : 0;
  outer->Add(page_, 1, wxEXPAND | wxALL, line);
  window_->SetSizer(outer);
  if (layout_.kind == WindowKind::kMain) {
    window_->SetMinClientSize(metrics::Scaled(
        *window_, wxSize(metrics::kMainSmallestWidth, metrics::kMainSmallestHeight)));
    wxSize size = metrics::Scaled(*window_, wxSize(metrics::kMainWidth, metrics::kMainHeight));
    const wxSize room = wxGetClientDisplayRect().GetSize();
    size.DecTo(room);
    window_->SetSize(size);
    if (size == room) window_->Maximize();
  } else {
    outer->SetSizeHints(window_);
  }
  window_->Centre();
  window_->Layout();
}

void FormWindow::BindWindow() {
  window_->Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent& event) {
    if (event.CanVeto()) event.Veto();
    front_.run([this] {
      if (form_ != nullptr) form_->Close(UnloadMode::kUser);
    });
  });
  window_->Bind(wxEVT_ACTIVATE, [this](wxActivateEvent& event) {
    event.Skip();
    if (!event.GetActive() || syncing_ || form_ == nullptr || !form_->Visible()) return;
    front_.run([this] {
      if (form_ != nullptr) form_->Activate();
    });
  });
  window_->Bind(wxEVT_ICONIZE, [this](wxIconizeEvent& event) {
    event.Skip();
    if (syncing_ || form_ == nullptr) return;
    const bool minimised = event.IsIconized();
    front_.run([this, minimised] {
      if (form_ == nullptr) return;
      if (minimised == (form_->StateOfWindow() == WindowState::kMinimised)) return;
      form_->SetWindowState(minimised ? WindowState::kMinimised : WindowState::kNormal);
    });
  });
  window_->Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
    // The system takes letters for those of the buttons, also without Alt.
    const int key = event.GetKeyCode();
    const bool letter = key > WXK_SPACE && key < WXK_DELETE && !event.HasAnyModifiers();
    if (layout_.unasked && letter) return;
    const std::string_view name = ButtonFor(event.GetKeyCode());
    Control* control = name.empty() || form_ == nullptr ? nullptr : form_->Find(name);
    if (control == nullptr || !control->Visible() || !control->Enabled()) {
      event.Skip();
      return;
    }
    front_.run([control] { control->ClickByUser(); });
  });
}

std::string_view FormWindow::ButtonFor(int key) const {
  if (key == WXK_ESCAPE) return layout_.cancelButton;
  if (key != WXK_RETURN && key != WXK_NUMPAD_ENTER) return {};
  // The toolkit sees to what else may have the keyboard.
  const wxWindow* focused = wxWindow::FindFocus();
  const bool list =
      focused != nullptr && (dynamic_cast<const wxDataViewCtrl*>(focused) != nullptr ||
                             dynamic_cast<const wxDataViewCtrl*>(focused->GetParent()) != nullptr);
  return list ? layout_.defaultButton : std::string_view();
}

bool FormWindow::IsField(const Layout& layout) const {
  const Control* control = form_->Find(layout.name);
  if (control == nullptr) return false;
  const std::string_view type = control->Type();
  return layout.height > 0 || type == "ListView" || type == "TreeView" || type == "Browser";
}

bool FormWindow::Places(const Control& control) const {
  return std::any_of(named_.begin(), named_.end(),
                     [&](const std::string& name) { return EqualText(name, control.Name()); });
}

// ---- building ----------------------------------------------------------------------------------

void FormWindow::Fill(wxWindow* parent, wxSizer& outer, const Layout& layout) {
  using Kind = Layout::Kind;
  const int padding = metrics::Scaled(*parent, layout.padding);
  if (layout.kind == Kind::kGrid) {
    FillGrid(parent, outer, layout);
    return;
  }
  const bool vertical = layout.kind != Kind::kRow;
  auto* box =
      new GapBox(vertical ? wxVERTICAL : wxHORIZONTAL, metrics::Scaled(*parent, layout.gap));
  for (const Layout& item : layout.items) Build(parent, *box, item, vertical);
  if (layout.kind == Kind::kRest) AddRest(parent, *box);
  outer.Add(box, 1, wxEXPAND | wxALL, padding);
}

void FormWindow::FillGrid(wxWindow* parent, wxSizer& outer, const Layout& layout) {
  const int gap = metrics::Scaled(*parent, layout.gap);
  auto* grid = new wxFlexGridSizer(layout.columns, gap, gap);
  int place = 0;
  for (const Layout& item : layout.items) {
    auto* cell = new GapBox(wxVERTICAL, 0);
    Build(parent, *cell, item, true);
    grid->Add(cell, 0, wxALIGN_CENTRE_VERTICAL | wxEXPAND);
    const auto column = static_cast<size_t>(place % layout.columns);
    if (item.grow > 0 && !grid->IsColGrowable(column)) grid->AddGrowableCol(column, item.grow);
    ++place;
  }
  outer.Add(grid, 1, wxEXPAND | wxALL, metrics::Scaled(*parent, layout.padding));
}

void FormWindow::Build(wxWindow* parent, GapBox& box, const Layout& layout, bool vertical) {
  if (layout.kind == Layout::Kind::kSpring) {
    box.PutSpring();
    return;
  }
  // Across the box things fill it, or stand in its middle in a row.
  int flags = wxEXPAND;
  if (!vertical && !IsBox(layout) && !IsField(layout)) flags = wxALIGN_CENTRE_VERTICAL;
  if (layout.narrow) flags = vertical ? wxALIGN_LEFT : wxALIGN_CENTRE_VERTICAL;
  if (layout.centred) flags = vertical ? wxALIGN_CENTRE_HORIZONTAL : wxALIGN_CENTRE_VERTICAL;
  if (!IsBox(layout)) {
    if (wxWindow* leaf = BuildLeaf(parent, layout)) box.Put(leaf, layout.grow, flags);
    return;
  }
  if (NeedsWindow(layout)) {
    box.Put(BuildBox(parent, layout), layout.grow, flags);
    return;
  }
  auto* inner = new wxBoxSizer(wxVERTICAL);
  Fill(parent, *inner, layout);
  if (layout.width > 0 || layout.height > 0) {
    inner->SetMinSize(metrics::Scaled(*parent, wxSize(layout.width, layout.height)));
  }
  box.Put(inner, layout.grow, flags);
}

wxWindow* FormWindow::BuildBox(wxWindow* parent, const Layout& layout) {
  using Kind = Layout::Kind;
  wxWindow* window = nullptr;
  if (layout.kind == Kind::kCard) {
    window = new CardPanel(parent);
  } else if (layout.kind == Kind::kScroll) {
    auto* scroll = new wxScrolledWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                        wxVSCROLL | wxTAB_TRAVERSAL);
    const int step = metrics::Scaled(*scroll, metrics::kScrollStep);
    scroll->SetScrollRate(0, step);
    window = scroll;
  } else if (layout.kind == Kind::kSplit) {
    auto* split = new wxSplitterWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                       wxSP_LIVE_UPDATE | wxSP_NOBORDER);
    window = split;
  } else {
    window = new GroupPanel(parent);
  }
  if (layout.kind != Kind::kCard) window->SetBackgroundColour(parent->GetBackgroundColour());
  auto* outer = new wxBoxSizer(wxVERTICAL);
  Fill(window, *outer, layout);
  window->SetSizer(outer);
  Condition condition{window, {}};
  for (const ShownWhile& shown : layout.shownWhile) {
    condition.controls.emplace_back(form_->Find(shown.control), shown.visible);
  }
  if (!condition.controls.empty()) conditions_.push_back(std::move(condition));
  return window;
}

wxWindow* FormWindow::BuildLeaf(wxWindow* parent, const Layout& layout) {
  if (layout.kind == Layout::Kind::kText) {
    auto* text = native::NewText(parent, ToWx(layout.text), 0);
    text->SetFont(theme::FontOf(parent->GetFont(), layout.role));
    if (layout.role == Role::kMuted) text->SetForegroundColour(theme::MutedText());
    if (layout.role != Role::kWrapped && layout.width > 0) {
      text->SetMinSize({metrics::Scaled(*text, layout.width), -1});
    }
    if (layout.role == Role::kWrapped) {
      const int width = layout.width > 0 ? layout.width : metrics::kReadableWidth;
      text->Wrap(metrics::Scaled(*text, width));
    }
    return text;
  }
  if (layout.kind == Layout::Kind::kPicture) {
    return new wxStaticBitmap(parent, wxID_ANY, icons::Get(layout.icon, layout.iconSize));
  }
  Control* control = form_->Find(layout.name);
  std::unique_ptr<Binding> binding = Bind(parent, *control, layout, front_);
  if (!binding) return nullptr;
  BindContextMenu(*binding, *form_, layout, front_);
  BindDrag(*control, *binding->Widget());
  if (const Control* state = form_->Find(layout.state)) states_.emplace_back(binding.get(), state);
  wxWindow* widget = binding->Widget();
  if (layout_.defaultButton == layout.name) {
    if (auto* button = dynamic_cast<wxButton*>(widget)) button->SetDefault();
    // Enter presses the button that has the keyboard, before any default.
    if (layout_.kind == WindowKind::kDialog) widget->SetFocus();
  }
  bindings_.push_back(std::move(binding));
  return widget;
}

void FormWindow::AddRest(wxWindow* parent, GapBox& box) {
  for (Control* control : form_->Controls()) {
    if (Places(*control)) continue;
    Layout plain = Put(control->Name());
    if (control->Type() == "Panel") continue;
    if (control->Type() == "Image") plain.text = NameInWords(*control, plain);
    if (control->Type() == "Label") plain.role = Role::kWrapped;
    if (wxWindow* leaf = BuildLeaf(parent, plain)) {
      const bool field = IsField(plain);
      const int flags = field ? int{wxEXPAND} : int{wxALIGN_LEFT};
      box.Put(leaf, field ? 1 : 0, flags);
    }
  }
}

// ---- showing -----------------------------------------------------------------------------------

void FormWindow::Sync() {
  if (form_ == nullptr || syncing_) return;
  syncing_ = true;
  SyncContent();
  SyncWindow();
  syncing_ = false;
}

void FormWindow::SyncContent() {
  bool moved = SyncConditions();
  for (const auto& binding : bindings_) moved = binding->Sync() || moved;
  if (menuBar_) menuBar_->Sync();
  for (const auto& [binding, state] : states_) binding->SpeakState(state->ValueText());
  ShareKeys();
  if (!moved) return;
  page_->Layout();
  for (const Condition& condition : conditions_) condition.box->Layout();
  if (shown_ && layout_.kind == WindowKind::kDialog) window_->Fit();
  PassKeyboard();
}

bool FormWindow::Condition::Holds() const {
  return std::all_of(controls.begin(), controls.end(), [](const auto& control) {
    return control.first->Visible() == control.second;
  });
}

void FormWindow::PassKeyboard() {
  const Binding* place = nullptr;
  for (const std::string_view name : layout_.keyboard) {
    const Binding* binding = Find(name);
    if (binding != nullptr && ShowsInItsWindow(*binding->Widget())) place = binding;
  }
  const bool isNew = place != keyboardPlace_;
  keyboardPlace_ = place;
  if (place == nullptr || (shown_ && !window_->IsActive())) return;
  const wxWindow* focused = wxWindow::FindFocus();
  if (isNew || focused == nullptr || !ShowsInItsWindow(*focused)) place->Widget()->SetFocus();
}

bool FormWindow::SyncConditions() {
  bool moved = false;
  for (const Condition& condition : conditions_) {
    const bool shown = condition.Holds();
    if (condition.box->IsShown() == shown) continue;
    condition.box->Show(shown);
    moved = true;
  }
  return moved;
}

// No two things that show are reached by the same letter, or none would be.
void FormWindow::ShareKeys() {
  std::vector<Keyed> keyed;
  std::vector<std::string> captions;
  if (menuBar_) captions = menuBar_->Titles();
  const size_t titles = captions.size();
  for (const auto& binding : bindings_) {
    const std::string_view caption = binding->KeyCaption();
    if (caption.empty() || !ShowsInItsWindow(*binding->Widget())) continue;
    keyed.push_back({binding.get(), std::string(caption)});
  }
  // Where letters run out, a box is still reached by Tab; what a button does is wanted at once.
  std::stable_partition(keyed.begin(), keyed.end(), [](const Keyed& key) {
    return dynamic_cast<wxAnyButton*>(key.binding->Widget()) != nullptr;
  });
  if (keyed_ == keyed) return;
  for (const Keyed& key : keyed) captions.push_back(key.caption);
  keyed_ = std::move(keyed);
  const std::vector<CaptionText> shared = ShareMnemonics(captions);
  for (size_t i = 0; i < keyed_.size(); ++i) {
    keyed_[i].binding->SetKey(shared[titles + i].mnemonic);
  }
}

void FormWindow::SyncWindow() {
  if (revision_ == form_->Revision()) return;
  revision_ = form_->Revision();
  const wxString caption = ToWx(form_->Caption());
  if (window_->GetTitle() != caption) window_->SetTitle(caption);
  const ScreenArea& place = form_->Place();
  if (layout_.kind == WindowKind::kPopup && place != ScreenArea()) {
    window_->SetPosition(wxPoint(place.left / kTwipsPerPixel, place.top / kTwipsPerPixel) -
                         Overgrown());
  }
  SyncState();
  if (frontRequests_ != form_->FrontRequests()) {
    frontRequests_ = form_->FrontRequests();
    window_->Raise();
  }
}

// A form that slides in is placed by the size of its design, at the screen's lower edge. A window
// that came out larger, as with large letters, must reach further up and to the left instead.
wxPoint FormWindow::Overgrown() const {
  const ScreenArea& place = form_->Place();
  const wxSize size = window_->GetSize();
  const int right = wxDisplay(0U).GetGeometry().GetRight();
  return {std::max(place.left / kTwipsPerPixel + size.x - right, 0),
          std::max(size.y - place.height / kTwipsPerPixel, 0)};
}

void FormWindow::SyncState() {
  const WindowState state = form_->StateOfWindow();
  if (form_->Visible() != shown_) {
    shown_ = form_->Visible();
    const bool popup = shown_ && layout_.kind == WindowKind::kPopup;
    if (popup && layout_.keyboard.empty()) {
      window_->ShowWithoutActivating();
    } else {
      window_->Show(shown_);
      // Such windows are kept out of the way unless they ask.
      if (popup) window_->Raise();
    }
  }
  if (!shown_) return;
  if (window_->IsIconized() != (state == WindowState::kMinimised)) {
    window_->Iconize(state == WindowState::kMinimised);
  }
  if (state != WindowState::kMinimised && state_ != state) {
    if (window_->IsMaximized() != (state == WindowState::kMaximised)) {
      window_->Maximize(state == WindowState::kMaximised);
    }
    window_->Raise();
  }
  state_ = state;
}

void FormWindow::BindDrag(Control& control, wxWindow& widget) {
  if (!control.DragsWindow()) return;
  widget.Bind(wxEVT_LEFT_DOWN, [this, &widget](wxMouseEvent& event) {
    dragFrom_ = widget.ClientToScreen(event.GetPosition()) - window_->GetPosition();
    widget.CaptureMouse();
  });
  widget.Bind(wxEVT_MOTION, [this, &widget](wxMouseEvent& event) {
    if (!widget.HasCapture() || form_ == nullptr) return;
    const wxPoint place = widget.ClientToScreen(event.GetPosition()) - dragFrom_;
    window_->SetPosition(place);
    ScreenArea area = form_->Place();
    area.left = place.x * kTwipsPerPixel;
    area.top = (place.y + Overgrown().y) * kTwipsPerPixel;
    form_->SetPlace(area);
  });
  widget.Bind(wxEVT_LEFT_UP, [&widget](wxMouseEvent&) {
    if (widget.HasCapture()) widget.ReleaseMouse();
  });
  widget.Bind(wxEVT_MOUSE_CAPTURE_LOST, [](wxMouseCaptureLostEvent&) {});
}

void FormWindow::Release() {
  form_ = nullptr;
  // One of these widgets may be what called; it ends later, but hands on nothing more, also of what
  // waits in its queue.
  for (const auto& binding : bindings_) binding->Release();
  window_->Hide();
}

const Binding* FormWindow::Find(std::string_view control) const {
  for (const auto& binding : bindings_) {
    if (EqualText(binding->control().Name(), control)) return binding.get();
  }
  return nullptr;
}

}  // namespace quarnel
