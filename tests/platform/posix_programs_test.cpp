// What only a machine folder has to care for: a running program may be deleted or renamed, numbers
// of processes are given out again, and most processes of the system are none of the machine's.
// Instances find each other by locked files, and windows stand on a display started for the test.

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "support/platform_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

class PosixProcessesTest : public PlatformTest {
 protected:
  Processes& processes() { return platform().processes(); }
};

TEST_F(PosixProcessesTest, KnowsProgramsThatWereDeletedOrAreCalledSo) {
  const Victim deleted(platform(), Path("deleted.exe"));
  const Victim renamed(platform(), Path("renamed.exe"));
  const Victim called(platform(), Path("called.exe (deleted)"));
  const Victim both(platform(), Path("both.exe (deleted)"));
  files().Delete(deleted.Path());
  files().Delete(both.Path());
  files().Move(renamed.Path(), Path("new name.exe"));
  const std::pair<uint32_t, std::string> expected[] = {{deleted.Id(), deleted.Path()},
                                                       {renamed.Id(), Path("new name.exe")},
                                                       {called.Id(), called.Path()},
                                                       {both.Id(), both.Path()}};
  for (const auto& [id, path] : expected) {
    ASSERT_NE(id, 0U) << path;
    EXPECT_EQ(processes().MainModulePath(id), path);
  }
}

TEST_F(PosixProcessesTest, LeavesOtherProgramsOfTheSystemAlone) {
  const pid_t child = fork();
  if (child == 0) {
    for (;;) pause();
  }
  const auto id = static_cast<uint32_t>(child);
  EXPECT_FALSE(processes().MainModulePath(id));
  EXPECT_FALSE(KillProcess(processes(), id, 0));
  EXPECT_FALSE(processes().WaitForEnd(id, std::chrono::milliseconds(20)));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
}

TEST_F(PosixProcessesTest, NeverEndsAnotherProcessOfTheSameNumber) {
  uint32_t id = 0;
  {
    const Victim first(platform(), Path("first.exe"));
    id = first.Id();
    usleep(50000);  // processes are told apart by their start, in steps of some 10 ms
  }
  ASSERT_NE(id, 0U);
  platform().shell().Run("C:\\none.exe", "");  // lets the shell see its end, which frees the number
  // Only a privileged process may say which number comes next.
  const auto asksForNumber = [id] { std::ofstream("/proc/sys/kernel/ns_last_pid") << id - 1; };
  WriteWholeFile(files(), Path("second.exe"), EmbeddedBytes("quarnel-sample-program"));
  asksForNumber();
  ASSERT_TRUE(platform().shell().Run(Path("second.exe"), "60"));
  const auto other = OpenPlatform(machineFolder());
  ASSERT_TRUE(
      Eventually([&] { return !RunningCopies(other->processes(), Path("second.exe")).empty(); }));
  if (RunningCopies(other->processes(), Path("second.exe")) == std::vector<uint32_t>{id}) {
    EXPECT_FALSE(processes().Terminate(id, 0));
    EXPECT_TRUE(processes().WaitForEnd(id, std::chrono::milliseconds(0)));
    EXPECT_EQ(RunningCopies(other->processes(), Path("second.exe")).size(), 1U);
  }
  for (const uint32_t running : RunningCopies(other->processes(), Path("second.exe"))) {
    EXPECT_TRUE(other->processes().Terminate(running, 0));
    if (running != id) GTEST_SKIP() << "the system does not give a process number on demand";
  }
}

namespace fs = std::filesystem;

class PosixDesktopTest : public PlatformTest {
 protected:
  fs::path Instances() { return fs::path(machineFolder()) / "instances"; }
  std::ptrdiff_t FilesLeft() {
    return std::distance(fs::directory_iterator(Instances()), fs::directory_iterator());
  }
};

TEST_F(PosixDesktopTest, ForgetsAProcessThatDied) {
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = fork();
  if (child == 0) {
    const auto own = OpenPlatform(machineFolder());
    own->desktop().Announce("TestClass", "A title");
    if (write(ready[1], "", 1) != 1) _exit(1);
    for (;;) pause();
  }
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  EXPECT_TRUE(platform().desktop().FindWindow("TestClass", "A title"));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  EXPECT_EQ(FilesLeft(), 1);
  EXPECT_FALSE(platform().desktop().FindWindow("TestClass", "A title"));
  EXPECT_EQ(FilesLeft(), 0);
  close(ready[0]);
  close(ready[1]);
}

TEST_F(PosixDesktopTest, LeavesEverythingElseInTheFolderAlone) {
  fs::create_directory(Instances());
  std::ofstream(Instances() / "notes") << "text";
  std::ofstream(Instances() / "12x") << "text";
  fs::create_directory(Instances() / "1");
  ASSERT_EQ(mkfifo((Instances() / "2").c_str(), 0600), 0);
  fs::create_symlink(Instances() / "notes", Instances() / "3");
  EXPECT_FALSE(platform().desktop().FindWindow("TestClass", "A title"));
  for (const WindowId id : {2U, 77U}) platform().desktop().BringForward(id);
  EXPECT_EQ(FilesLeft(), 5);

  // A link in the place of the folder leads nowhere.
  const fs::path elsewhere = fs::path(machineFolder()) / "elsewhere";
  fs::rename(Instances(), elsewhere);
  std::ofstream(elsewhere / "4") << "text";
  fs::create_symlink(elsewhere, Instances());
  EXPECT_FALSE(platform().desktop().FindWindow("TestClass", "A title"));
  platform().desktop().Announce("TestClass", "A title");
  EXPECT_FALSE(platform().desktop().FindWindow("TestClass", "A title"));
  EXPECT_EQ(FilesLeft(), 6);
}

// A display without any window manager; gone with this object.
class DisplayServer {
 public:
  DisplayServer() {
    int ready[2];
    if (pipe(ready) != 0) return;
    server_ = fork();
    if (server_ == 0) {
      dup2(ready[1], STDOUT_FILENO);
      execlp("Xvfb", "Xvfb", "-screen", "0", "640x480x24", "-displayfd", "1", nullptr);
      _exit(127);
    }
    close(ready[1]);
    char number[16] = {};
    if (read(ready[0], number, sizeof number - 1) > 0) {
      name_ = ":" + std::to_string(std::strtol(number, nullptr, 10));
      setenv("DISPLAY", name_.c_str(), 1);
    }
    close(ready[0]);
  }
  ~DisplayServer() {
    unsetenv("DISPLAY");
    kill(server_, SIGTERM);
    waitpid(server_, nullptr, 0);
  }
  DisplayServer(const DisplayServer&) = delete;
  DisplayServer& operator=(const DisplayServer&) = delete;
  bool Started() const { return !name_.empty(); }

 private:
  pid_t server_ = 0;
  std::string name_;
};

// A program with windows, which can play the window manager too.
class Client {
 public:
  Client() : connection_(xcb_connect(nullptr, nullptr)) {
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
  }
  ~Client() { xcb_disconnect(connection_); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  xcb_window_t Open(std::string_view className) {
    const xcb_window_t window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const std::string names = std::string("instance") + '\0' + std::string(className) + '\0';
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, static_cast<uint32_t>(names.size()), names.data());
    SetAtoms(window, "WM_PROTOCOLS", XCB_ATOM_ATOM, {Atom("WM_DELETE_WINDOW")});
    return window;
  }
  void Manage(const std::vector<xcb_window_t>& windows) {
    const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &mask);
    SetAtoms(root_, "_NET_SUPPORTED", XCB_ATOM_ATOM, {Atom("_NET_CLOSE_WINDOW")});
    SetAtoms(root_, "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, windows);
  }
  void Sync() { Atom("sync"); }
  // The windows that were asked to close by a message of this type, as far as it is here.
  std::vector<xcb_window_t> Asked(const char* type) {
    Sync();
    std::vector<xcb_window_t> windows;
    while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
      const auto* message = reinterpret_cast<xcb_client_message_event_t*>(event);
      if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE && message->type == Atom(type)) {
        windows.push_back(message->window);
      }
      free(event);
    }
    return windows;
  }

 private:
  xcb_atom_t Atom(const char* name) {
    const auto length = static_cast<uint16_t>(strlen(name));
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection_, xcb_intern_atom(connection_, 0, length, name), nullptr),
        &std::free);
    return reply->atom;
  }
  void SetAtoms(xcb_window_t window, const char* name, xcb_atom_t type,
                const std::vector<uint32_t>& values) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, Atom(name), type, 32,
                        static_cast<uint32_t>(values.size()), values.data());
  }

  xcb_connection_t* connection_;
  xcb_window_t root_ = 0;
};

using PosixDisplayTest = PlatformTest;

TEST_F(PosixDisplayTest, BrowsersAndFileManagersAreAskedToClose) {
  const DisplayServer server;
  if (!server.Started()) GTEST_SKIP() << "Xvfb cannot be started";
  Client client;
  const xcb_window_t browser = client.Open("firefox");
  const xcb_window_t folder = client.Open("THUNAR");
  const xcb_window_t editor = client.Open("editor");
  client.Sync();
  std::vector<std::string> classes;
  platform().desktop().EnumWindows([&](WindowId, std::string_view className) {
    classes.emplace_back(className);
    return classes.size() < 2;
  });
  EXPECT_EQ(classes, (Strings{"firefox", "THUNAR"}));

  CloseBrowserWindows(platform().desktop());
  EXPECT_EQ(client.Asked("WM_PROTOCOLS"), (std::vector<xcb_window_t>{browser, folder}));
  // A window manager is asked in their place, and tells which windows there are.
  client.Manage({editor, folder});
  client.Sync();
  CloseBrowserWindows(platform().desktop());
  EXPECT_EQ(client.Asked("_NET_CLOSE_WINDOW"), (std::vector<xcb_window_t>{folder}));
}

TEST_F(PosixDisplayTest, WithoutADisplayNothingHappens) {
  for (const char* display : {"", ":99999", "nowhere:1"}) {
    if (*display != '\0') setenv("DISPLAY", display, 1);
    CloseBrowserWindows(platform().desktop());
    platform().desktop().EnumWindows([](WindowId, std::string_view) {
      ADD_FAILURE();
      return false;
    });
    unsetenv("DISPLAY");
  }
}

}  // namespace
}  // namespace quarnel
