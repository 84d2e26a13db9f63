#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/main_window.h"

namespace quarnel {

// A main window without a screen, which notes what it is asked.
class RecordingWindow : public MainWindow {
 public:
  // In order; of the pages also which one.
  std::vector<std::string> asked;
  // Runs at each request, with its note.
  std::function<void(std::string_view what)> onAsk = [](std::string_view) {};
  bool showing = true;

  void ShowPage(Tab tab) override { Note("page", tab); }
  void SelectPage(Tab tab) override { Note("select", tab); }
  void OpenTab(Tab tab) override { Note("open", tab); }
  bool Showing() const override { return showing; }
  void LayOut() override {}
  void RefreshSummary() override { Note("summary"); }
  void BringToFront() override { Note("front"); }
  void RestoreFromTray() override { Note("restore"); }
  void RestInTray() override { Note("tray"); }
  void EndProgram() override { Note("end"); }
  void AskToCloseBrowser() override { Note("browser"); }
  void AskToRestart() override { Note("restart"); }
  void ShowSafeList() override { Note("safe list"); }
  void Immunize() override { Note("immunize"); }
  void DeImmunize() override { Note("deimmunize"); }
  std::string ChooseRestorePoint() override {
    Note("restore point");
    return {};
  }
  void Alert(const MemoryAlert& /*alert*/) override { Note("alert"); }
  void AlertBrowserChange() override { Note("browser alert"); }
  void AlertStartup() override { Note("startup alert"); }
  void EndAlert() override {}

 private:
  void Note(const std::string& what) {
    asked.push_back(what);
    onAsk(what);
  }
  void Note(const std::string& what, Tab tab) {
    Note(what + " " + std::to_string(static_cast<int>(tab)));
  }
};

}  // namespace quarnel
