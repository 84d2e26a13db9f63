#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "controls/host.h"
#include "platform/terminal.h"
#include "ui/console/message_desk.h"
#include "ui/console/names.h"
#include "ui/console/progress_line.h"

namespace quarnel {

// Who plays the user in front of a ConsoleHost.
class CommandPlayer {
 public:
  virtual ~CommandPlayer() = default;
  // Reads the next command and runs it; false at the end of input. A person is asked by `prompt`.
  virtual bool RunNext(std::string_view prompt) = 0;
  // Runs one command that stands on line `line` of the script.
  virtual void RunCommand(std::string_view command, size_t line) = 0;
};

// The front without a window. The user is played by a script, or by a person at a terminal who
// types the same commands.
class ConsoleHost : public Host {
 public:
  struct Options {
    // Where boxes without a queued answer are asked; nothing when nobody can be asked, which makes
    // such a box an error that ends the process.
    Terminal* person = nullptr;
    // Whether a box that is answered by itself is told on the error stream: in a script its author
    // can ask for it by a command.
    bool tellsBoxes = false;
  };
  // Notices and questions go to `err`.
  ConsoleHost(std::ostream& err, Options options);

  Answer MsgBox(const MessageBox& box) override;
  std::optional<std::string> InputBox(std::string_view prompt, std::string_view title,
                                      std::string_view initial) override;
  // The next commands are the user's, until the form was hidden or unloaded; the end of input
  // closes it. While the program starts nobody is there to use a form, so it is closed at once.
  void RunModal(Form& form) override;
  // The same while a handler waits.
  bool WaitUntil(const std::function<bool()>& condition) override;
  void SetClipboardText(std::string_view) override {}  // a console has none
  // A screen of the usual size that nobody sees, with the mouse where a script has put it.
  ScreenFacts Screen() const override { return screen_; }
  void PlaceMouse(ScreenFacts::Point place) { screen_.mouse = place; }

  // The program has started, and commands follow from this player.
  void Play(CommandPlayer& player) { player_ = &player; }

  MessageDesk& messages() { return messages_; }

  // One line on the error stream, with the number of the script's line before it.
  void Notice(std::string_view text);
  // The number of the line whose command runs; 0 when there is none.
  size_t Line() const { return line_; }
  void SetLine(size_t line) { line_ = line; }
  // Reports an error that ends a script, and ends the process.
  [[noreturn]] void Fail(std::string_view text);
  bool HasFailed() const { return failed_; }

  // Runs `command` inside event processing when the target's revision has grown by `count`.
  struct Watch {
    Target target;
    uint64_t count = 0;
    std::string command;
  };
  void Add(Watch watch);

  // Goes over to a virtual clock, or sets the one that runs already.
  void SetVirtualTime(DateTime now);
  bool HasVirtualClock() const { return virtualClock_.has_value(); }

  // One of the everyday jobs runs: boxes with nothing but an OK button are answered by themselves.
  // Where it opens forms that nobody asked for, they may be closed at once.
  class Job {
   public:
    enum class Forms { kPlayed, kClosed };
    explicit Job(ConsoleHost& host, Forms forms = Forms::kPlayed)
        : host_(host), closes_(forms == Forms::kClosed ? 1 : 0) {
      ++host_.jobs_;
      host_.closingJobs_ += closes_;
    }
    ~Job() {
      --host_.jobs_;
      host_.closingJobs_ -= closes_;
    }
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;

   private:
    ConsoleHost& host_;
    int closes_;
  };

  // A line that is kept up to date inside event processing, as long as this object lives.
  class Progress {
   public:
    Progress(ConsoleHost& host, std::ostream& out, Terminal& terminal, ProgressControls controls);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

   private:
    ConsoleHost& host_;
    ProgressLine line_;
    ProgressLine* outer_;
  };

 protected:
  void ProcessFrontEvents(Milliseconds /*now*/) override {
    if (listens_) Listen();
  }

 private:
  struct PlacedWatch {
    Watch watch;
    uint64_t start = 0;
    size_t line = 0;
  };

  void Listen();
  void RunDueWatches();
  void UpdateListening() { listens_ = progress_ != nullptr || !watches_.empty(); }
  bool Starts() const { return player_ == nullptr; }
  // Lets the user play until `condition` holds; false at the end of the input.
  bool PlayUntil(const std::function<bool()>& condition, std::string_view prompt);
  // The word that answers a box; `fits` tells whether a queued answer is one for it.
  std::string TakeAnswer(const MessageBox& box);
  std::optional<std::string> TakeQueued(std::string_view text,
                                        const std::function<bool(std::string_view)>& fits);
  std::string AskForButton(const MessageBox& box);
  void PrintBox(const MessageBox& box);

  std::ostream& err_;
  Options options_;
  RealClock realClock_;
  std::optional<VirtualClock> virtualClock_;
  MessageDesk messages_;
  CommandPlayer* player_ = nullptr;
  std::vector<PlacedWatch> watches_;
  ProgressLine* progress_ = nullptr;
  bool listens_ = false;
  ScreenFacts screen_;
  size_t line_ = 0;
  int jobs_ = 0;
  int closingJobs_ = 0;  // those of them that close forms
  bool failed_ = false;
};

}  // namespace quarnel
