#pragma once

#include <string>

namespace quarnel {

struct MemoryAlert;

// The pages of the main window, by their tabs from left to right.
enum class Tab { kScan, kDefender, kConfiguration, kSchedule, kLiveUpdate, kTools, kNews };

// What the subsystems ask of the window that holds their pages. Whatever lies on the pages
// themselves they set there.
class MainWindow {
 public:
  virtual ~MainWindow() = default;

  // Brings a page to the front and leaves the tabs as they are.
  virtual void ShowPage(Tab tab) = 0;
  // The same, with the page's tab marked. Nothing is asked, and no scan is touched.
  virtual void SelectPage(Tab tab) = 0;
  // As a click on the tab: a running scan is stopped if the user agrees, and the page does what it
  // does when it is opened.
  virtual void OpenTab(Tab tab) = 0;

  // Whether the window stands on the screen in its normal state.
  virtual bool Showing() const = 0;
  // Lays the pages out for the window's size.
  virtual void LayOut() = 0;
  // Paints the system summary anew. Raises what Summary::RefreshSystemSummary raises.
  virtual void RefreshSummary() = 0;

  // Shows the window as it stands, or in the state that it had before it went to the tray.
  virtual void BringToFront() = 0;
  virtual void RestoreFromTray() = 0;
  // Minimises the window and names its icon anew.
  virtual void RestInTray() = 0;
  // Ends the program at once, icon and all.
  virtual void EndProgram() = 0;

  // Prompts, each of which returns when the user has closed it.
  virtual void AskToCloseBrowser() = 0;
  virtual void AskToRestart() = 0;
  virtual void ShowSafeList() = 0;
  // Apply the ActiveX shield, or take it away. One that is asked for while its own work goes on is
  // ignored.
  virtual void Immunize() = 0;
  virtual void DeImmunize() = 0;
  // The stem of the restore point that the user chose; empty when he chose none.
  virtual std::string ChooseRestorePoint() = 0;

  // Tells of a listed program that runs, and returns when the user has answered.
  virtual void Alert(const MemoryAlert& alert) = 0;
  // Asks about the change of a browser's setting that is pending; returns at once.
  virtual void AlertBrowserChange() = 0;
  // Asks about the program that now starts with the system and is pending; returns at once.
  virtual void AlertStartup() = 0;
  // Takes that off the screen unanswered, if it is there.
  virtual void EndAlert() = 0;
};

}  // namespace quarnel
