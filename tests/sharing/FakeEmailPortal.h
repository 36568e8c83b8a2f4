#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <map>
#include <string>
#include <thread>
#include <vector>

/// A session's bus with a portal for mails, which shows nothing and notes what it was asked for.
class CFakeEmailPortal {
 public:
  /// The portal ends each request with `response`.
  CFakeEmailPortal(const std::string& socket, std::uint32_t response)
      : Address("unix:path=" + socket), Response(response), Daemon(StartDaemon(Address)) {
    while (!Bus) Connect();
    EXPECT_GE(sd_bus_add_object(Bus, nullptr, "/org/freedesktop/portal/desktop", &Answer, this), 0);
    EXPECT_GE(sd_bus_request_name(Bus, "org.freedesktop.portal.Desktop", 0), 0);
    Server = std::thread([this] {
      while (!Stopping) {
        if (sd_bus_process(Bus, nullptr) == 0) sd_bus_wait(Bus, 5000);
      }
    });
  }
  ~CFakeEmailPortal() {
    Stopping = true;
    Server.join();
    sd_bus_flush_close_unref(Bus);
    ::kill(Daemon, SIGTERM);
    ::waitpid(Daemon, nullptr, 0);
  }
  CFakeEmailPortal(const CFakeEmailPortal&) = delete;
  CFakeEmailPortal& operator=(const CFakeEmailPortal&) = delete;

  std::map<std::string, std::string> Texts;  // subject and body
  std::vector<std::string> Files;

 private:
  static pid_t StartDaemon(const std::string& address) {
    const std::string option = "--address=" + address;
    const pid_t child = ::fork();
    if (child == 0) {
      ::execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", option.c_str(), nullptr);
      ::_exit(1);
    }
    return child;
  }

  void Connect() {
    ASSERT_EQ(::waitpid(Daemon, nullptr, WNOHANG), 0);
    sd_bus* bus = nullptr;
    EXPECT_GE(sd_bus_new(&bus), 0);
    sd_bus_set_address(bus, Address.c_str());
    sd_bus_set_bus_client(bus, 1);
    sd_bus_negotiate_fds(bus, 1);
    sd_bus_start(bus) >= 0 ? void(Bus = bus) : void(sd_bus_unref(bus));
  }

  static int Answer(sd_bus_message* message, void* self, sd_bus_error*) {
    if (sd_bus_message_is_method_call(message, "org.freedesktop.DBus.Properties", "Get") > 0) {
      return sd_bus_reply_method_return(message, "v", "u", 4);
    }
    auto& portal = *static_cast<CFakeEmailPortal*>(self);
    portal.NoteRequest(message);
    constexpr const char* kRequest = "/org/freedesktop/portal/desktop/request/1";
    sd_bus_reply_method_return(message, "o", kRequest);
    return sd_bus_emit_signal(portal.Bus, kRequest, "org.freedesktop.portal.Request", "Response", "ua{sv}",
                              portal.Response, 0);
  }

  void NoteRequest(sd_bus_message* message) {
    sd_bus_message_skip(message, "s");
    sd_bus_message_enter_container(message, 'a', "{sv}");
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
      const char *key = nullptr, *text = nullptr;
      sd_bus_message_read(message, "s", &key);
      if (sd_bus_message_read(message, "v", "s", &text) > 0) {
        Texts[key] = text;
      } else {
        NoteFiles(message);
      }
      sd_bus_message_exit_container(message);
    }
  }

  void NoteFiles(sd_bus_message* message) {
    sd_bus_message_enter_container(message, 'v', "ah");
    sd_bus_message_enter_container(message, 'a', "h");
    for (int file = 0; sd_bus_message_read_basic(message, 'h', &file) > 0;) {
      Files.push_back(std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file)).string());
    }
    sd_bus_message_exit_container(message);
    sd_bus_message_exit_container(message);
  }

  const std::string Address;
  const std::uint32_t Response;
  const pid_t Daemon;
  sd_bus* Bus = nullptr;
  std::atomic<bool> Stopping = false;
  std::thread Server;
};
