// Windows on a real display, which is started for the test.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "support/platform_fixture.h"

namespace quarnel {
namespace {

// A display without any window manager; gone with this object.
class DisplayServer {
 public:
  DisplayServer() {
    int ready[2];
    if (pipe(ready) != 0) return;
    server_ = fork();
    if (server_ == 0) {
      const std::string command = "exec Xvfb -screen 0 640x480x24 -nolisten tcp -displayfd " +
                                  std::to_string(ready[1]) + " >/dev/null 2>&1";
      execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
      _exit(127);
    }
    close(ready[1]);
    char number[16] = {};
    if (read(ready[0], number, sizeof number - 1) > 0) {
      name_ = ":" + std::to_string(std::strtol(number, nullptr, 10));
    }
    close(ready[0]);
    if (!name_.empty()) setenv("DISPLAY", name_.c_str(), 1);
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

class PosixDisplayTest : public PlatformTest {};

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
