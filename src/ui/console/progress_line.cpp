#include "ui/console/progress_line.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "ui/console/display_text.h"

namespace quarnel {
namespace {

constexpr Milliseconds kBetweenDraws(33);

std::string Bar(const ProgressBar& bar, size_t cells) {
  const double range = bar.Max() - bar.Min();
  const double part = range > 0 ? std::clamp((bar.Value() - bar.Min()) / range, 0.0, 1.0) : 0.0;
  const auto full = static_cast<size_t>(std::floor(part * static_cast<double>(cells)));
  return "[" + std::string(full, '#') + std::string(cells - full, '.') + "] ";
}

}  // namespace

// Each revision only grows, so their sum changes whenever one of them does.
uint64_t ProgressLine::Revisions() const {
  const auto revision = [](const Control* control) { return control ? control->Revision() : 0; };
  return revision(controls_.bar) + revision(controls_.percentage) + revision(controls_.status);
}

std::string ProgressLine::Text(size_t columns) const {
  constexpr size_t kNarrow = 40;
  constexpr size_t kMostCells = 30;
  std::string text;
  if (controls_.bar && columns >= kNarrow)
    text = Bar(*controls_.bar, std::min(columns / 4, kMostCells));
  for (const Control* part : {controls_.percentage, controls_.status}) {
    if (!part) continue;
    const std::string value = part->ValueText();
    const std::string_view trimmed = Trim(value);
    if (!trimmed.empty()) text += Printable(trimmed) + "  ";
  }
  return FitToWidth(text, columns);
}

void ProgressLine::Update() {
  const uint64_t revisions = Revisions();
  if (drawn_ == revisions) return;
  const Milliseconds now = clock_.Ticks();
  if (now < nextDraw_) return;
  nextDraw_ = now + kBetweenDraws;
  drawn_ = revisions;
  // The last column stays free: writing to it moves some terminals on to the next line.
  const std::string text = Text(std::max<size_t>(terminal_.Width(), 2) - 1);
  const size_t width = DisplayWidth(text);
  out_ << '\r' << text;
  if (width < width_) out_ << std::string(width_ - width, ' ');
  out_.flush();
  width_ = width;
}

void ProgressLine::Wipe() {
  if (width_ == 0) return;
  out_ << '\r' << std::string(width_, ' ') << '\r';
  out_.flush();
  width_ = 0;
  drawn_.reset();
}

}  // namespace quarnel
