#include "ui/wx/wx_host.h"

#include <wx/display.h>

#include <algorithm>

#include "base/runtime_error.h"
#include "core/product.h"
#include "platform/event_wait.h"
#include "ui/wx/message_dialog.h"
#include "ui/wx/native.h"
#include "ui/wx/text.h"

namespace quarnel {
namespace {

// Windows show a change at most thirty times a second.
constexpr Milliseconds kFrame(33);
// While a handler works, input is looked for at least this often: an answer to a click within a
// tenth of a second.
constexpr Milliseconds kPumpPause(30);
// Showing changes takes at most one part in this many of a working handler's time, as long as the
// window does not stand still for longer than this.
constexpr int kShowShare = 20;
constexpr Milliseconds kLongestShowPause(500);
constexpr Milliseconds kWatchPause(500);
// Of the next pump: events are being processed.
constexpr Milliseconds kNoPump = Milliseconds::max();

}  // namespace

class WxHost::Depth {
 public:
  explicit Depth(int& depth) : depth_(depth) { ++depth_; }
  ~Depth() { --depth_; }
  Depth(const Depth&) = delete;
  Depth& operator=(const Depth&) = delete;

 private:
  int& depth_;
};

class WxHost::ModalWait {
 public:
  explicit ModalWait(WxHost& host) : host_(host), depth_(host.depth_), pump_(host.nextPump_) {
    host_.nextPump_ = Milliseconds(0);
    host_.Arm();
  }
  ~ModalWait() { host_.nextPump_ = pump_; }
  ModalWait(const ModalWait&) = delete;
  ModalWait& operator=(const ModalWait&) = delete;

 private:
  WxHost& host_;
  const Depth depth_;
  const Milliseconds pump_;
};

WxHost::WxHost(std::function<std::string(const std::string&)> readPage)
    : Host(realClock_, MakeEventWait()),
      front_{.run = [this](const Handler& action) { Act(action); },
             .readPage = std::move(readPage)} {
  timer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { OnTimer(); });
  eventWatch_ = native::WatchEvents(events(), [this] { Act([this] { events().Run(); }); });
}

WxHost::~WxHost() = default;

// ---- the user's and the timers' handlers -------------------------------------------------------

void WxHost::Act(const Handler& action) {
  if (ended_) return;
  std::string failure;
  {
    const Depth depth(depth_);
    // A handler that was called by event processing may itself need some.
    const Milliseconds outerPump = nextPump_;
    const Milliseconds outerStill = stillSince_;
    nextPump_ = Now() + kPumpPause;
    stillSince_ = Now();
    try {
      action();
    } catch (const ProcessEnded&) {
      ended_ = true;
    } catch (const RuntimeError& error) {
      failure = error.Description();
    }
    nextPump_ = outerPump;
    stillSince_ = outerStill;
  }
  if (!failure.empty()) {
    Act([&] {
      MsgBox({.text = failure, .title = std::string(kProductName), .icon = MessageIcon::kCritical});
    });
  }
  Settle();
}

// After a handler: what it changed is shown, and what ended goes.
void WxHost::Settle() {
  if (ended_) return LeaveLoops();
  SyncIfDue();
  if (depth_ == 0) DropGone();
  LeaveWaits();
  Arm();
}

// Only the innermost loop can end; when it was that of another, it is looked at again after that.
void WxHost::LeaveWaits() {
  if (waits_.empty() || waits_.back().loop != wxEventLoopBase::GetActive()) return;
  if ((*waits_.back().condition)()) waits_.back().loop->ScheduleExit();
}

void WxHost::LeaveLoops() {
  timer_.Stop();
  trays_.clear();
  for (const auto& window : windows_) window->Window()->Hide();
  // The innermost loop; each handler that it comes back to unwinds in its turn.
  if (wxEventLoopBase* loop = wxEventLoopBase::GetActive()) loop->ScheduleExit();
}

void WxHost::OnTimer() {
  Act([this] {
    FireDueTimers();
    if (watch && Now() - lastWatch_ >= kWatchPause) {
      lastWatch_ = Now();
      watch();
    }
  });
}

void WxHost::Arm() {
  const Milliseconds now = clock().Ticks();
  Milliseconds pause = kWatchPause;
  if (const auto next = NextDue()) pause = std::min(pause, *next - now);
  if (stale_ && nextShow_ > Now()) pause = std::min(pause, nextShow_ - Now());
  timer_.StartOnce(static_cast<int>(std::max(pause, Milliseconds(1)).count()));
}

// ---- events inside a working handler -----------------------------------------------------------

void WxHost::ProcessFrontEvents(Milliseconds now) {
  if (now >= nextPump_) Pump();
  if (ended_) throw ProcessEnded();
}

void WxHost::Pump() {
  wxEventLoopBase* const loop = wxEventLoopBase::GetActive();
  if (loop == nullptr || syncing_) return;
  // Events that come meanwhile must not start another round.
  nextPump_ = kNoPump;
  const Milliseconds start = Now();
  const bool shows = start >= nextShow_ && start - stillSince_ >= StillPause();
  if (shows) {
    Sync();
    showCost_ = Milliseconds(0);
  }
  loop->YieldFor(wxEVT_CATEGORY_ALL);
  const Milliseconds end = Now();
  // What was shown may be painted in a later turn only.
  showCost_ += end - start;
  if (shows) stillSince_ = end;
  nextPump_ = end + kPumpPause;
}

Milliseconds WxHost::StillPause() const {
  return std::clamp(showCost_ * kShowShare, kFrame, kLongestShowPause);
}

// ---- windows -----------------------------------------------------------------------------------

void WxHost::SyncIfDue() {
  stale_ = true;
  // A working handler's event processing shows changes in its own time.
  if (nextPump_ != kNoPump && Now() >= nextShow_) Sync();
}

void WxHost::Sync() {
  if (syncing_ || ended_) return;
  syncing_ = true;
  stale_ = false;
  nextShow_ = Now() + kFrame;
  const std::vector<Form*> forms = LoadedForms();
  for (Form* form : forms) {
    if (form->Visible() && WindowOf(*form) == nullptr) {
      const FormLayout& layout = LayoutOf(form->Name());
      windows_.push_back(std::make_unique<FormWindow>(*form, layout, ActiveWindow(), front_));
    }
  }
  for (size_t i = 0; i < windows_.size(); ++i) {
    const Form* form = windows_[i]->form();
    if (form == nullptr) continue;
    if (!form->Visible()) EnableBehind(*form);
    windows_[i]->Sync();
  }
  SyncTrays();
  ShowPointer();
  syncing_ = false;
  if (!modal_.empty() && !modal_.back().form->Visible()) modal_.back().loop->ScheduleExit();
}

void WxHost::SyncTrays() {
  for (Form* form : LoadedForms()) {
    for (Control* control : form->Controls()) {
      if (control->Type() != "TrayIcon") continue;
      const bool known = std::any_of(trays_.begin(), trays_.end(),
                                     [&](const auto& tray) { return &tray->control() == control; });
      if (!known) {
        trays_.push_back(std::make_unique<Tray>(*form, static_cast<TrayIcon&>(*control), front_));
      }
    }
  }
  for (const auto& tray : trays_) tray->Sync();
}

void WxHost::FormForgotten(Form& form) {
  // The icons of a form end with it; they look at nothing of theirs any more.
  std::erase_if(trays_, [&](const auto& tray) { return tray->form() == &form; });
  for (auto window = windows_.begin(); window != windows_.end(); ++window) {
    if ((*window)->form() != &form) continue;
    EnableBehind(form);
    (*window)->Release();
    gone_.push_back(std::move(*window));
    windows_.erase(window);
    break;
  }
  for (const ModalLoop& modal : modal_) {
    if (modal.form == &form && modal.loop == wxEventLoopBase::GetActive()) {
      modal.loop->ScheduleExit();
    }
  }
}

void WxHost::DropGone() { gone_.clear(); }

// The system gives the front to none that is disabled when a modal window leaves the screen, but to
// another program's.
void WxHost::EnableBehind(const Form& form) {
  for (ModalLoop& modal : modal_) {
    if (modal.form == &form) modal.others.reset();
  }
}

FormWindow* WxHost::WindowOf(const Form& form) const {
  for (const auto& window : windows_) {
    if (window->form() == &form) return window.get();
  }
  return nullptr;
}

wxWindow* WxHost::ActiveWindow() const {
  for (auto window = windows_.rbegin(); window != windows_.rend(); ++window) {
    const WindowKind kind = (*window)->Kind();
    if (kind == WindowKind::kPopup || kind == WindowKind::kSplash) continue;
    if ((*window)->Window()->IsShown()) return (*window)->Window();
  }
  return nullptr;
}

// The window behind a message box. One that has only just been shown may still be on its way, and
// would come up in front of the box.
wxWindow* WxHost::ParentOfBox() {
  constexpr Milliseconds kLongestWay(500);
  auto* parent = dynamic_cast<wxTopLevelWindow*>(ActiveWindow());
  wxEventLoopBase* const loop = wxEventLoopBase::GetActive();
  if (parent == nullptr || loop == nullptr || parent->IsIconized()) return parent;
  const Milliseconds end = Now() + kLongestWay;
  while (!native::HasComeUp(*parent) && Now() < end) {
    loop->YieldFor(wxEVT_CATEGORY_UI);
    wxMilliSleep(1);
  }
  return ActiveWindow();
}

void WxHost::ShowPointer() {
  const bool busy = MousePointer() == Pointer::kHourglass;
  if (busy == busy_) return;
  busy_ = busy;
  if (busy) {
    wxBeginBusyCursor();
  } else {
    wxEndBusyCursor();
  }
}

void WxHost::EndSession() {
  const std::vector<Form*> forms = LoadedForms();
  for (Form* form : forms) {
    Act([form] { form->Close(UnloadMode::kSessionEnd); });
  }
}

// ---- boxes, modal forms and the rest -----------------------------------------------------------

void WxHost::RunModal(Form& form) {
  Sync();
  FormWindow* const window = WindowOf(form);
  if (window == nullptr) return;
  wxGUIEventLoop loop;
  modal_.push_back({&form, &loop, std::make_unique<wxWindowDisabler>(window->Window())});
  if (form.Visible()) {
    const ModalWait wait(*this);
    loop.Run();
  }
  modal_.pop_back();
  if (ended_) throw ProcessEnded();
}

// Nothing but a handler changes what is waited for, and each looks after itself.
bool WxHost::WaitUntil(const std::function<bool()>& condition) {
  if (condition()) return true;
  Sync();
  wxGUIEventLoop loop;
  waits_.push_back({&condition, &loop});
  {
    const ModalWait wait(*this);
    loop.Run();
  }
  waits_.pop_back();
  if (ended_) throw ProcessEnded();
  return true;
}

void WxHost::WaitForEvent() {
  int looks = 0;
  WaitUntil([&] { return looks++ > 0; });
}

Answer WxHost::MsgBox(const MessageBox& box) {
  Sync();
  Answer answer = Answer::kCancel;
  {
    const ModalWait wait(*this);
    answer = ShowMessage(ParentOfBox(), box, [&, waits = waits_.size(), forms = modal_.size()] {
      return waits_.size() == waits && modal_.size() == forms;
    });
  }
  if (ended_) throw ProcessEnded();
  return answer;
}

std::optional<std::string> WxHost::InputBox(std::string_view prompt, std::string_view title,
                                            std::string_view initial) {
  Sync();
  std::optional<std::string> typed;
  {
    const ModalWait wait(*this);
    wxTextEntryDialog dialog(ParentOfBox(), ToWx(prompt), ToWx(title), ToWx(initial));
    if (dialog.ShowModal() == wxID_OK) typed = FromWx(dialog.GetValue());
  }
  if (ended_) throw ProcessEnded();
  return typed;
}

void WxHost::SetClipboardText(std::string_view text) {
  if (!wxTheClipboard->Open()) return;
  wxTheClipboard->SetData(new wxTextDataObject(ToWx(text)));
  wxTheClipboard->Flush();
  wxTheClipboard->Close();
}

ScreenFacts WxHost::Screen() const {
  const wxDisplay display(0U);
  const wxRect whole = display.GetGeometry();
  const wxRect free = display.GetClientArea();
  const wxPoint mouse = wxGetMousePosition();
  return {.desktop = {.right = whole.width, .bottom = whole.height},
          .taskBar = {.right = whole.width, .bottom = whole.height - free.height},
          .mouse = {.x = mouse.x, .y = mouse.y}};
}

void WxHost::EndProcess() {
  ended_ = true;
  throw ProcessEnded();
}

}  // namespace quarnel
