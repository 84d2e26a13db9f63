// Pickers of a date or a time of day.

#include "controls/date_picker.h"
#include "ui/wx/bindings/binding.h"
#include "ui/wx/boxes.h"
#include "ui/wx/metrics.h"
#include "ui/wx/native.h"
#include "ui/wx/text.h"

namespace quarnel {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

// A field behind a check box, without whose tick there is no value. A picker that must hold one has
// no box.
class DateBinding : public Binding {
 public:
  DateBinding(wxWindow* parent, DatePicker& picker, const Layout& layout, const Front& front)
      : Binding(picker, front), picker_(picker) {
    auto* both = new GroupPanel(parent);
    both->SetBackgroundColour(parent->GetBackgroundColour());
    const std::string name = NameInWords(picker, layout);
    has_ = new wxCheckBox(both, wxID_ANY, "");
    has_->SetName(ToWx(name));
    if (picker.GetKind() == DatePicker::Kind::kDate) {
      date_ = new wxDatePickerCtrl(both, wxID_ANY, wxDefaultDateTime, wxDefaultPosition,
                                   wxDefaultSize, wxDP_DROPDOWN | wxDP_SHOWCENTURY);
      date_->Bind(wxEVT_DATE_CHANGED, [this](wxDateEvent&) { Take(); });
    } else {
      time_ = new wxTimePickerCtrl(both, wxID_ANY);
      time_->Bind(wxEVT_TIME_CHANGED, [this](wxDateEvent&) { Take(); });
    }
    Field()->SetName(ToWx(name));
    has_->Bind(wxEVT_CHECKBOX, [this](wxCommandEvent&) { Take(); });
    auto* row = new wxBoxSizer(wxHORIZONTAL);
    row->Add(has_, 0, wxALIGN_CENTRE_VERTICAL | wxRIGHT,
             metrics::Scaled(*both, metrics::kTightGap));
    row->Add(Field(), 1, wxALIGN_CENTRE_VERTICAL);
    both->SetSizer(row);
    both->SetMinSize(metrics::Scaled(*both, wxSize(metrics::kFieldWidth, -1)));
    native::SetAccessibleName(*has_, ToWx(name));
    native::SetAccessibleName(*Field(), ToWx(name));
    // Its parts, one of which has the keyboard.
    for (wxWindow* part : Field()->GetChildren()) {
      native::SetAccessibleName(*part, ToWx(name));
      for (wxWindow* inner : part->GetChildren()) native::SetAccessibleName(*inner, ToWx(name));
    }
    Attach(both, name);
  }

  std::string Shown() const override {
    return has_->GetValue() ? picker_.TextOf(Picked()) : std::string();
  }

 protected:
  bool Update() override {
    const std::optional<DateTime> value = picker_.Value();
    has_->Show(picker_.GetMode().checkBox);
    has_->SetValue(value.has_value());
    Field()->Enable(value.has_value());
    if (value) Show(*value);
    return false;
  }

 private:
  wxControl* Field() const {
    return date_ != nullptr ? static_cast<wxControl*>(date_) : static_cast<wxControl*>(time_);
  }
  void Show(DateTime value) {
    const auto day = std::chrono::floor<std::chrono::days>(value);
    if (date_ != nullptr) {
      const std::chrono::year_month_day date(day);
      date_->SetValue(
          wxDateTime(static_cast<wxDateTime::wxDateTime_t>(static_cast<unsigned>(date.day())),
                     static_cast<wxDateTime::Month>(static_cast<unsigned>(date.month()) - 1),
                     static_cast<int>(date.year())));
      return;
    }
    const std::chrono::hh_mm_ss time(std::chrono::floor<seconds>(value - day));
    time_->SetTime(static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                   static_cast<int>(time.seconds().count()));
  }
  // What the field holds; of a time alone, on the day of the value.
  DateTime Picked() const {
    const DateTime before = picker_.Value().value_or(DateTime());
    const auto day = std::chrono::floor<std::chrono::days>(before);
    if (date_ != nullptr) {
      const wxDateTime date = date_->GetValue();
      const std::chrono::year_month_day picked(
          std::chrono::year(date.GetYear()),
          std::chrono::month(static_cast<unsigned>(date.GetMonth()) + 1),
          std::chrono::day(date.GetDay()));
      return std::chrono::local_days(picked) + (before - day);
    }
    int hour = 0;
    int minute = 0;
    int second = 0;
    time_->GetTime(&hour, &minute, &second);
    return day + hours(hour) + minutes(minute) + seconds(second);
  }
  void Take() {
    const std::string typed = !has_->GetValue()  ? std::string()
                              : picker_.Value()  ? GeneralDateText(Picked())
                              : date_ != nullptr ? DateText(Picked())
                                                 : TimeText(Picked());
    Act([this, typed] { picker_.SetByUser(typed); });
  }

  DatePicker& picker_;
  wxCheckBox* has_ = nullptr;
  wxDatePickerCtrl* date_ = nullptr;
  wxTimePickerCtrl* time_ = nullptr;
};

}  // namespace

std::unique_ptr<Binding> BindDate(wxWindow* parent, Control& control, const Layout& layout,
                                  const Front& front) {
  auto* picker = dynamic_cast<DatePicker*>(&control);
  if (picker == nullptr) return nullptr;
  return std::make_unique<DateBinding>(parent, *picker, layout, front);
}

}  // namespace quarnel
