// The small windows.

#include <utility>

#include "ui/wx/layouts/layouts.h"
#include "ui/wx/metrics.h"

namespace quarnel {
namespace {

using namespace metrics;

FormLayout CloseLayout() {
  return {.form = "frmClose",
          .content = Column({
                                Row({Picture("message-question", kLargeIcon),
                                     Put("lblMessage").As(Role::kWrapped).Wide(kMessageWidth)})
                                    .Gap(kWideGap),
                                Put("chkSkipMessages"),
                                Row({Spring(), Put("cmdYes"), Put("cmdNo"), Put("cmdCancel")}),
                            })
                         .Gap(kWideGap)
                         .Padding(kDialogPadding),
          .defaultButton = "cmdYes",
          .cancelButton = "cmdCancel"};
}

FormLayout SplashLayout() {
  constexpr int kShapes = 6;
  std::vector<Layout> shapes;
  shapes.reserve(kShapes);
  for (int i = 0; i < kShapes; ++i) shapes.push_back(Put("shpProgress(" + std::to_string(i) + ")"));
  return {.form = "frmSplash",
          .kind = WindowKind::kSplash,
          .content = Column({
                                Picture("quarnel", kHeroIcon).Centred(),
                                Text("Quarnel").As(Role::kTitle).Centred(),
                                Row(std::move(shapes)).Gap(kTightGap).Centred(),
                                Put("lblWebSite").As(Role::kLink).Centred(),
                            })
                         .Gap(kWideGap)
                         .Padding(kDialogPadding * 2),
          .behind = {"lblCount"}};
}

// A page of the wizard: its text above, its answers in the middle, its buttons at the bottom.
FormLayout WizardLayout(std::string_view form, std::vector<Layout> answers, bool last = false) {
  std::vector<Layout> text;
  text.push_back(Put("Label1").As(Role::kTitle));
  text.push_back(Put("Label2").As(Role::kWrapped).Wide(kMessageWidth));
  for (Layout& answer : answers) text.push_back(std::move(answer));
  text.push_back(Spring());
  Layout buttons = Row({Put("cmdExit"), Put("cmdSkip"), Spring(), Put("cmdBack"),
                        Put("cmdNext").As(Role::kPrimary)});
  if (last) buttons.items.push_back(Put("cmdEnterapplicationNow").As(Role::kPrimary));
  return {.form = form,
          .content = Column({
                                Row({Column({Picture("quarnel", kHeroIcon), Spring()}),
                                     Column(std::move(text)).Gap(kWideGap).Grow()})
                                    .Gap(kDialogPadding)
                                    .Wide(kWizardWidth)
                                    .High(kWizardHeight)
                                    .Grow(),
                                std::move(buttons),
                            })
                         .Gap(kWideGap)
                         .Padding(kDialogPadding),
          .defaultButton = last ? "cmdEnterapplicationNow" : "cmdNext"};
}

FormLayout QuestionLayout(std::string_view form) {
  std::vector<Layout> answers = {Put("optYesNo(0)"), Put("optYesNo(1)")};
  if (form == "frmWizard7") answers.push_back(Put("lblReportingPage").As(Role::kLink).Narrow());
  answers.push_back(Put("lblLearnMore").As(Role::kLink).Narrow());
  return WizardLayout(form, std::move(answers));
}

FormLayout MenuLayoutOfTray() {
  const auto row = [](std::string_view item, std::string_view icon) {
    return Put(item).With(icon);
  };
  const auto toggle = [](std::string_view item, std::string_view icon, std::string_view label,
                         std::string_view picture) {
    return Row({Put(item).With(icon).SaidWith(label).Grow(), Put(label).As(Role::kMuted),
                Put(picture).With("switch", kRowIcon)});
  };
  return {.form = "frmMenuPopUp",
          .kind = WindowKind::kPopup,
          .content =
              Column({
                         Row({Picture("quarnel", kButtonIcon), Text("Quarnel").As(Role::kHeading),
                              Spring(), Put("lblMenuClose")}),
                         row("mnuMaxmimaize", "tab-advanced"),
                         row("mnuScanNow", "tab-scan"),
                         row("MNUSchedule", "tab-schedule"),
                         row("mnuOptions", "tab-options"),
                         toggle("mnuCookieSheild", "trace-cookie", "lblMnuCookieSheild",
                                "PicMnuCookieSheild"),
                         toggle("mnuRunAtStartup", "play", "lblMenuRunAtStartUp",
                                "PicMenuRunAtStartUp"),
                         toggle("mnuMemorySheild", "tab-defender", "lblMenuMemorySheild",
                                "PicMenuMemorySheild"),
                         row("mnuHelp", "message-question"),
                         row("mnuAbout", "message-information"),
                         row("mnuReferAFriend", "next"),
                         row("mnuClose", "close"),
                     })
                  .Gap(kNoGap)
                  .Padding(kPopupPadding),
          .cancelButton = "lblMenuClose",
          .keyboard = {"mnuMaxmimaize"},
          .behind = {"imgMenuPopupAbove", "imgMenuPopupBelow"}};
}

FormLayout DefinitionsLayout() {
  return {
      .form = "frmSpywareDefinitions",
      .kind = WindowKind::kSheet,
      .content =
          Column({
                     Put("WebBrowser1").Called("Help").Wide(kSheetWidth).High(kHelpHeight).Grow(),
                     Row({Spring(), Put("imgClose").Called("&Close")}),
                 })
              .Padding(kDialogPadding),
      .cancelButton = "imgClose",
      .behind = {"imgMove"}};
}

FormLayout ApproveLayout() {
  return {.form = "frmApproveAllStartup",
          .content = Column({
                                Put("lblTitle").As(Role::kTitle),
                                Put("lblQuestion").As(Role::kWrapped),
                                Put("optStartups(0)"),
                                Put("optStartups(1)"),
                                Row({Spring(), Put("cmdOK").As(Role::kPrimary)}),
                            })
                         .Gap(kWideGap)
                         .Padding(kDialogPadding),
          .defaultButton = "cmdOK"};
}

FormLayout HomePageLayout() {
  return {.form = "frmHomePageChangedAlert",
          .content = Column({
                                Row({Picture("message-exclamation", kLargeIcon),
                                     Put("lblHomePageInfo").As(Role::kWrapped).Wide(kMessageWidth)})
                                    .Gap(kWideGap),
                                Row({Spring(), Put("cmdYes").As(Role::kPrimary), Put("cmdNo")}),
                            })
                         .Gap(kWideGap)
                         .Padding(kDialogPadding),
          .defaultButton = "cmdYes"};
}

// An alert about a change: what it tells, and below it the two answers.
FormLayout ChangeAlertLayout(std::string_view form, std::vector<Layout> tells) {
  return {.form = form,
          .kind = WindowKind::kPopup,
          .content =
              Column({
                         Row({Picture("message-exclamation", kLargeIcon), Column(std::move(tells))})
                             .Gap(kWideGap),
                         Put("chkRememberURL"),
                         Row({Spring(), Put("cmdBlock").As(Role::kPrimary), Put("cmdAllow")}),
                     })
                  .Gap(kWideGap)
                  .Padding(kDialogPadding),
          .keyboard = {"cmdBlock"},
          .unasked = true};
}

FormLayout BrowserAlertLayout() {
  return ChangeAlertLayout("frmBHR", {Put("lblApproval").As(Role::kWrapped).Wide(kMessageWidth),
                                      Put("lblChangingTo").As(Role::kWrapped).Wide(kMessageWidth),
                                      Put("lblDefault").As(Role::kWrapped).Wide(kMessageWidth),
                                      Put("lblAdvise").As(Role::kWrapped).Wide(kMessageWidth)});
}

FormLayout StartupAlertLayout() {
  return ChangeAlertLayout(
      "frmStarUpAlert",
      {Put("lblApproval").As(Role::kWrapped).Wide(kMessageWidth),
       Put("lblSection").As(Role::kStrong), Put("lblApplication").As(Role::kPath),
       Put("lblPath").As(Role::kPath), Put("lblAdvise").As(Role::kWrapped).Wide(kMessageWidth)});
}

// What an alert tells of may run on until it is answered: it takes the keyboard as it comes.
FormLayout SpywareFoundLayout() {
  const auto fact = [](std::string_view caption, std::string_view control) {
    return Row({Text(caption).As(Role::kMuted).Wide(kCaptionWidth),
                Put(control).Called(caption).As(Role::kPath).Grow()});
  };
  return {.form = "frmSpywareFoundAlert",
          .kind = WindowKind::kPopup,
          .content =
              Column({
                         Row({Picture("threat", kLargeIcon),
                              Put("lblSpywareName").As(Role::kWrapped).Wide(kMessageWidth)})
                             .Gap(kWideGap),
                         Column({fact("Company", "lblCompanyName"), fact("Hash", "lblHashCode")})
                             .Gap(kTightGap),
                         Put("chkMemorySheild"),
                         Row({Spring(),
                              Put("ImgYesMouseMove").Called("&Start Scan Now").As(Role::kPrimary),
                              Put("ImgNoMouseMove").Called("&No")}),
                     })
                  .Gap(kWideGap)
                  .Padding(kDialogPadding),
          .keyboard = {"ImgYesMouseMove"}};
}

FormLayout ShieldLayout(std::string_view form) {
  return {.form = form,
          .content = Column({
                                Row({Picture("tab-defender", kLargeIcon),
                                     Put("lblStatus").As(Role::kWrapped).Wide(kMessageWidth)})
                                    .Gap(kWideGap),
                                Row({Spring(), Put("cmdcancel").As(Role::kPrimary)}),
                            })
                         .Gap(kWideGap)
                         .Padding(kDialogPadding),
          .defaultButton = "cmdcancel",
          .cancelButton = "cmdcancel"};
}

FormLayout ConnectionLayout() {
  return {.form = "frmInternetConnection",
          .content = Column({
                                Row({Picture("message-information", kLargeIcon),
                                     Put("lblMessage").As(Role::kWrapped).Wide(kMessageWidth)})
                                    .Gap(kWideGap),
                                Row({Spring(), Put("cmdOK").As(Role::kPrimary)}),
                            })
                         .Gap(kWideGap)
                         .Padding(kDialogPadding),
          .defaultButton = "cmdOK",
          .cancelButton = "cmdOK"};
}

// A list of what is exempt, of which ticked rows can be taken out.
FormLayout ExemptLayout(std::string_view form, Layout list) {
  return {
      .form = form,
      .kind = WindowKind::kSheet,
      .content = Column({
                            Put("lblHeading").As(Role::kHeading),
                            std::move(list).Ticks().Wide(kSheetWidth).High(kHtmlHeight).Grow(),
                            Row({Put("chkSelectAll"), Put("lblCount").As(Role::kMuted), Spring(),
                                 Put("ImgRemoveMouseMove").Called("&Remove from safe list"),
                                 Put("cmdDone").As(Role::kPrimary)}),
                        })
                     .Padding(kDialogPadding),
      .defaultButton = "cmdDone",
      .cancelButton = "cmdDone"};
}

FormLayout RestoreLayout() {
  return {.form = "frmRestore",
          .kind = WindowKind::kSheet,
          .content = Column({
                                Put("lblExplanation").As(Role::kWrapped).Wide(kSheetWidth),
                                Put("lvwBackups")
                                    .Called("Restore points")
                                    .Heading(1, "Date")
                                    .High(kHtmlHeight)
                                    .Grow(),
                                Row({Put("cmdDeleteBackup").With("remove"), Spring(),
                                     Put("cmdOK").As(Role::kPrimary), Put("cmdcancel")}),
                            })
                         .Gap(kWideGap)
                         .Padding(kDialogPadding),
          .defaultButton = "cmdOK",
          .cancelButton = "cmdcancel"};
}

FormLayout CloseBrowserLayout() {
  return {
      .form = "frmCloseIE",
      .content = Column({
                            Row({Picture("message-question", kLargeIcon),
                                 Column({Put("lblQuestion").As(Role::kHeading),
                                         Put("lblExplanation").As(Role::kWrapped)})})
                                .Gap(kWideGap),
                            Column({Put("optShowAlways"), Put("optCloseAllIEAndDonotShowIfFuture"),
                                    Put("optSkipClosingAndDonotShow")}),
                            Row({Put("chkSkipInFuture"), Spring(),
                                 Put("cmdCloseIE").As(Role::kPrimary), Put("cmdcancel")}),
                        })
                     .Gap(kWideGap)
                     .Padding(kDialogPadding),
      .defaultButton = "cmdCloseIE",
      .cancelButton = "cmdcancel"};
}

FormLayout RestartLayout() {
  return {.form = "frmReBootMachine",
          .content = Column({
                                Row({Picture("message-exclamation", kLargeIcon),
                                     Column({Put("lblRebootWarning").As(Role::kWrapped),
                                             Put("lblInfected").As(Role::kWrapped)})
                                         .Gap(kWideGap)})
                                    .Gap(kWideGap),
                                Row({Put("lblCannotRestart").As(Role::kMuted), Spring(),
                                     Put("cmdRebootWindows"), Put("cmdClose").As(Role::kPrimary)}),
                            })
                         .Gap(kWideGap)
                         .Padding(kDialogPadding),
          .defaultButton = "cmdClose",
          .cancelButton = "cmdClose"};
}

}  // namespace

std::vector<FormLayout> DialogLayouts() {
  std::vector<FormLayout> layouts;
  layouts.push_back(CloseLayout());
  layouts.push_back(SplashLayout());
  layouts.push_back(WizardLayout("frmWizard1", {}));
  for (const std::string_view form : {"frmWizard2", "frmWizard3", "frmWizard7"}) {
    layouts.push_back(QuestionLayout(form));
  }
  layouts.push_back(WizardLayout(
      "frmWizard4", {Put("lblRecommended").As(Role::kHeading), Put("chkScanSchedule")}, true));
  layouts.push_back(MenuLayoutOfTray());
  layouts.push_back(DefinitionsLayout());
  layouts.push_back(ApproveLayout());
  layouts.push_back(HomePageLayout());
  layouts.push_back(BrowserAlertLayout());
  layouts.push_back(SpywareFoundLayout());
  layouts.push_back(StartupAlertLayout());
  layouts.push_back(ConnectionLayout());
  layouts.push_back(ShieldLayout("frmImmunize"));
  layouts.push_back(ShieldLayout("frmDeImmunize"));
  layouts.push_back(CloseBrowserLayout());
  layouts.push_back(RestartLayout());
  layouts.push_back(RestoreLayout());
  layouts.push_back(ExemptLayout("frmIngnoredProcesses",
                                 Put("lvwIgnoredProcesses").Called("Exempt programs").FilesIn(2)));
  layouts.push_back(
      ExemptLayout("frmIngnoredSpywares", Put("lvwIgnoredSpywares").Called("Exempt traces")));
  return layouts;
}

}  // namespace quarnel
