#include "ui/main/frm_main.h"

#include "core/existing_files.h"
#include "core/messages.h"
#include "core/own_files.h"
#include "core/paths.h"
#include "signatures/signature_files.h"
#include "ui/forms.h"

namespace quarnel {

frmMain::frmMain(Services services, Forms& forms, StartOptions startOptions)
    : Form(services.host, "frmMain"),
      Pages{static_cast<Form&>(*this)},
      s_(services),
      forms_(forms),
      startOptions_(startOptions),
      engine_(services, *this, *this),
      newsLogic_(services, news) {
  SetBorder(BorderStyle::kSizable);
  for (size_t i = 0; i < TabStrip::kCount; ++i) {
    tabs.imgMainTab[i]->Click = [this, i] { imgMainTab_Click(static_cast<int>(i)); };
  }
  WireMenu();
  WireTray();
  if (!startOptions_.keepsGuard) engine_.TakeGuardsOff();
}

void frmMain::AskToCloseBrowser() { forms_.closeIE.Touch().ShowModal(); }
void frmMain::AskToRestart() { forms_.reBootMachine.Touch().ShowModal(); }
void frmMain::ShowSafeList() { forms_.ingnoredSpywares.Touch().ShowModal(); }
void frmMain::Immunize() { ShowModalOnce(forms_.immunize); }
void frmMain::DeImmunize() { ShowModalOnce(forms_.deImmunize); }
std::string frmMain::ChooseRestorePoint() { return forms_.restore.Touch().Choose(); }

void frmMain::Alert(const MemoryAlert& alert) {
  forms_.spywareFoundAlert.Touch().Tell(alert);
  const MemoryShield& shield = engine_.memoryShield();
  // Nobody may be left who could answer, as at the end of a script.
  if (!s_.host.WaitUntil([&] { return shield.AlertIsAnswered(); })) EndAlert();
}

void frmMain::EndAlert() { forms_.spywareFoundAlert.Unload(); }

void frmMain::AlertBrowserChange() { forms_.bhr.Touch().Show(); }
void frmMain::AlertStartup() { forms_.starUpAlert.Touch().Show(); }

void frmMain::Form_Resize() {
  if (StateOfWindow() == WindowState::kMinimised) {
    bMainWindowShowing_ = false;
    return;
  }
  // The desktop minimises windows, too, and tells nobody what they were before.
  KeepWindowState();
  if (StateOfWindow() == WindowState::kNormal) {
    SetShowInTaskbar(true);
    bMainWindowShowing_ = true;
    Form_Activate();
  }
}

void frmMain::Form_QueryUnload(bool& cancel, UnloadMode mode) {
  if (mode == UnloadMode::kSessionEnd) return;
  Reporting(s_.log, "ImgCloseApplication_Click in frmMain", [&] {
    cancel = true;
    if (s_.settings.Get(setting::kSkipMessages) == 0) {
      forms_.close.Touch().ShowModal();
      engine_.options().SynchroniseCloseOptions();
    }
    const auto answer = static_cast<Answer>(s_.settings.Get(setting::kClosingButton));
    if (answer == Answer::kNo) {
      HideToTray();
    } else if (answer == Answer::kCancel) {
      return;
    } else if (ScanRuns(scan)) {
      Messages(s_.host, s_.settings)
          .Inform("Scanning is in progress...! Please stop the scan first.");
    } else if (DownloadRuns(update)) {
      Messages(s_.host, s_.settings)
          .Inform(s_.settings.ApplicationName() +
                  " is downloading latest signature. However if you wish to close the application, "
                  "please click on Cancel to stop downloading.");
    } else {
      EndProgram();
    }
  });
}

void frmMain::Form_Unload() {
  IgnoringErrors([&] {
    Files& files = s_.platform.files();
    Machine& machine = s_.platform.machine();
    const std::string declined = SignaturePath(machine, signature_file::kDeclined);
    if (FileExists(files, OwnFileToRead(files, machine, declined))) {
      DeleteOwnFile(files, machine, declined);
    }
  });
}

}  // namespace quarnel
