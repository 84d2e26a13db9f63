#include "platform/posix/desktop/display_windows.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "base/text.h"

namespace quarnel {
namespace {

// The second name of WM_CLASS, as these programs set it.
constexpr std::array<std::string_view, 28> kBrowserClasses = {
    // Browsers.
    "firefox", "firefox-esr", "Navigator", "Chromium", "Chromium-browser", "Google-chrome",
    "Brave-browser", "Vivaldi-stable", "Opera", "Microsoft-edge", "Epiphany", "org.gnome.Epiphany",
    "Falkon", "konqueror", "Midori", "qutebrowser", "LibreWolf", "Seamonkey",
    // File managers.
    "Nautilus", "org.gnome.Nautilus", "Thunar", "dolphin", "Nemo", "Caja", "Pcmanfm", "pcmanfm-qt",
    "Io.elementary.files", "krusader"};

// No program has more windows than this, nor a longer class.
constexpr uint32_t kMostUnits = 16384;

struct Free {
  void operator()(void* reply) const { std::free(reply); }
};
struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

class Display {
 public:
  Display() {
    if (std::getenv("DISPLAY") == nullptr) return;
    int number = 0;
    connection_.reset(xcb_connect(nullptr, &number));
    if (xcb_connection_has_error(connection_.get()) != 0) {
      connection_.reset();
      return;
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_.get()));
    for (; number > 0 && screens.rem > 1; --number) xcb_screen_next(&screens);
    root_ = screens.data->root;
  }

  bool Valid() const { return connection_ != nullptr; }
  xcb_window_t Root() const { return root_; }

  // The windows that the window manager manages; without one, those that stand on the root.
  std::vector<uint32_t> Windows() const {
    std::vector<uint32_t> windows = Numbers(root_, Atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW);
    if (!windows.empty()) return windows;
    const std::unique_ptr<xcb_query_tree_reply_t, Free> tree(
        xcb_query_tree_reply(connection_.get(), xcb_query_tree(connection_.get(), root_), nullptr));
    if (!tree) return windows;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    windows.assign(children, children + xcb_query_tree_children_length(tree.get()));
    return windows;
  }

  std::string ClassOf(xcb_window_t window) const {
    // Two texts, each with a NUL behind it: the instance's name and the class.
    const std::string names = Property(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8);
    const size_t end = names.find('\0');
    if (end == std::string::npos) return {};
    const std::string_view className = std::string_view(names).substr(end + 1);
    return std::string(CutAtNul(className));
  }

  bool Lists(xcb_window_t window, const char* property, const char* entry) const {
    const std::vector<uint32_t> atoms = Numbers(window, Atom(property), XCB_ATOM_ATOM);
    return std::find(atoms.begin(), atoms.end(), Atom(entry)) != atoms.end();
  }

  void Send(xcb_window_t to, uint32_t mask, xcb_window_t about, const char* type,
            std::array<uint32_t, 5> data) const {
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = about;
    event.type = Atom(type);
    std::copy(data.begin(), data.end(), event.data.data32);
    xcb_send_event(connection_.get(), 0, to, mask, reinterpret_cast<const char*>(&event));
    xcb_flush(connection_.get());
    // A reply to anything means that the server has taken what came before.
    Atom(type);
  }

  xcb_atom_t Atom(std::string_view name) const {
    const auto length = static_cast<uint16_t>(name.size());
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(xcb_intern_atom_reply(
        connection_.get(), xcb_intern_atom(connection_.get(), 0, length, name.data()), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

 private:
  // The bytes of a property of this type and width; empty when there is none.
  std::string Property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type, uint8_t bits) const {
    const std::unique_ptr<xcb_get_property_reply_t, Free> reply(xcb_get_property_reply(
        connection_.get(),
        xcb_get_property(connection_.get(), 0, window, name, type, 0, kMostUnits), nullptr));
    if (!reply || reply->type != type || reply->format != bits) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<size_t>(xcb_get_property_value_length(reply.get()))};
  }

  std::vector<uint32_t> Numbers(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const {
    const std::string bytes = Property(window, name, type, 32);
    std::vector<uint32_t> numbers(bytes.size() / sizeof(uint32_t));
    std::copy_n(bytes.data(), numbers.size() * sizeof(uint32_t),
                reinterpret_cast<char*>(numbers.data()));
    return numbers;
  }

  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  xcb_window_t root_ = 0;
};

}  // namespace

void EnumDisplayWindows(
    const std::function<bool(WindowId window, std::string_view className)>& visit) {
  const Display display;
  if (!display.Valid()) return;
  for (const uint32_t window : display.Windows()) {
    const std::string className = display.ClassOf(window);
    if (!className.empty() && !visit(window, className)) return;
  }
}

void CloseDisplayWindow(WindowId window) {
  const Display display;
  if (!display.Valid()) return;
  const auto id = static_cast<xcb_window_t>(window);
  if (display.Lists(display.Root(), "_NET_SUPPORTED", "_NET_CLOSE_WINDOW")) {
    constexpr uint32_t kFromUser = 2;
    display.Send(display.Root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, id,
                 "_NET_CLOSE_WINDOW", {XCB_CURRENT_TIME, kFromUser});
  } else if (display.Lists(id, "WM_PROTOCOLS", "WM_DELETE_WINDOW")) {
    display.Send(id, XCB_EVENT_MASK_NO_EVENT, id, "WM_PROTOCOLS",
                 {display.Atom("WM_DELETE_WINDOW"), XCB_CURRENT_TIME});
  }
}

bool IsDisplayBrowserClass(std::string_view className) {
  return std::any_of(kBrowserClasses.begin(), kBrowserClasses.end(),
                     [className](std::string_view known) { return EqualText(className, known); });
}

}  // namespace quarnel
