#include "ui/wx/boxes.h"

#include <wx/dcbuffer.h>
#include <wx/graphics.h>

#include <memory>

#include "ui/wx/metrics.h"
#include "ui/wx/theme.h"

namespace quarnel {

void GapBox::Put(wxWindow* window, int share, int flags) {
  AddGap();
  Add(window, share, flags);
}

void GapBox::Put(wxSizer* box, int share, int flags) {
  AddGap();
  Add(box, share, flags);
}

void GapBox::AddGap() {
  if (!IsEmpty()) AddSpacer(gap_);
}

// Between any two things that show stands one gap: before each but the first.
wxSize GapBox::CalcMin() {
  wxSizerItem* gap = nullptr;
  bool shown = false;
  for (wxSizerItem* item : GetChildren()) {
    if (item->IsSpacer() && item->GetProportion() == 0) {
      gap = item;
      gap->Show(false);
    } else if (item->IsShown()) {
      if (gap != nullptr) gap->Show(shown);
      shown = true;
    }
  }
  return wxBoxSizer::CalcMin();
}

CardPanel::CardPanel(wxWindow* parent)
    : GroupPanel(parent, wxTAB_TRAVERSAL | wxFULL_REPAINT_ON_RESIZE) {
  SetBackgroundStyle(wxBG_STYLE_PAINT);
  SetBackgroundColour(theme::Surface());
  Bind(wxEVT_PAINT, [this](wxPaintEvent&) { Paint(); });
}

void CardPanel::Paint() {
  wxAutoBufferedPaintDC surface(this);
  surface.SetBackground(wxBrush(GetParent()->GetBackgroundColour()));
  surface.Clear();
  const std::unique_ptr<wxGraphicsContext> drawing(wxGraphicsContext::Create(surface));
  if (!drawing) return;
  const int line = metrics::Scaled(*this, metrics::kCardBorder);
  const wxSize size = GetClientSize();
  drawing->SetPen(wxPen(theme::Border(), line));
  drawing->SetBrush(wxBrush(theme::Surface()));
  drawing->DrawRoundedRectangle(line / 2.0, line / 2.0, size.x - line, size.y - line,
                                metrics::Scaled(*this, metrics::kCardRadius));
}

}  // namespace quarnel
