#include "ui/kit/WindowActivation.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QWidget>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/Environment.h"

namespace {

constexpr std::string_view kTimeMark = "_TIME";
constexpr std::uint32_t kFromApplication = 1;  // who asks for the window
constexpr std::size_t kMessageBytes = 20;      // of a text, in one event

/// The X server's time of the user's action, which ends the token of an X11 desktop.
std::optional<xcb_timestamp_t> FindTime(std::string_view token) {
  const std::size_t mark = token.rfind(kTimeMark);
  if (mark == std::string_view::npos) return std::nullopt;
  token.remove_prefix(mark + kTimeMark.size());
  xcb_timestamp_t time = 0;
  const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), time);
  return error == std::errc() && end == token.data() + token.size() ? std::optional(time) : std::nullopt;
}

/// Messages to the window manager of an X server, about one window.
class CWindowManager {
 public:
  CWindowManager(xcb_connection_t* connection, xcb_window_t window)
      : Connection(connection),
        Window(window),
        Root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root) {}
  ~CWindowManager() { xcb_flush(Connection); }
  CWindowManager(const CWindowManager&) = delete;
  CWindowManager& operator=(const CWindowManager&) = delete;

  void Activate(xcb_timestamp_t time) const {
    xcb_client_message_event_t event = MakeEvent("_NET_ACTIVE_WINDOW", 32);
    event.data.data32[0] = kFromApplication;
    event.data.data32[1] = time;
    Send(event, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
  }

  /// The desktop shows that a program starts until it is told of its end.
  void TellStarted(const std::string& token) const {
    const std::string text = "remove: ID=" + token;
    const char* type = "_NET_STARTUP_INFO_BEGIN";
    for (std::size_t at = 0; at <= text.size(); at += kMessageBytes) {  // with the zero at its end
      xcb_client_message_event_t event = MakeEvent(type, 8);
      const std::size_t length = std::min(kMessageBytes, text.size() - at);
      std::copy_n(text.data() + at, length, event.data.data8);
      Send(event, XCB_EVENT_MASK_PROPERTY_CHANGE);
      type = "_NET_STARTUP_INFO";
    }
  }

 private:
  xcb_client_message_event_t MakeEvent(std::string_view type, std::uint8_t format) const {
    const auto cookie = xcb_intern_atom(Connection, 0, static_cast<std::uint16_t>(type.size()), type.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&::free)> atom(
        xcb_intern_atom_reply(Connection, cookie, nullptr), &::free);
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = format;
    event.window = Window;
    event.type = atom ? atom->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    return event;
  }
  void Send(const xcb_client_message_event_t& event, std::uint32_t mask) const {
    xcb_send_event(Connection, 0, Root, mask, reinterpret_cast<const char*>(&event));
  }

  xcb_connection_t* const Connection;
  const xcb_window_t Window;
  const xcb_window_t Root;
};

}  // namespace

void ActivateWindow(QWidget& window, const std::string& token) {
  window.raise();
  const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  xcb_connection_t* const connection = x11 != nullptr ? x11->connection() : nullptr;
  if (connection != nullptr && !token.empty()) {
    const CWindowManager manager(connection, static_cast<xcb_window_t>(window.winId()));
    const std::optional<xcb_timestamp_t> time = FindTime(token);
    time ? manager.Activate(*time) : window.activateWindow();
    return manager.TellStarted(token);
  }
  // The toolkit takes the token for a Wayland desktop from here.
  if (!token.empty()) platform::SetReservedVariable("XDG_ACTIVATION_TOKEN", token);
  window.activateWindow();
}
