#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <systemd/sd-bus.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

struct NotedMail {
  std::string Subject, Text;
  std::vector<std::string> Files;
};

/// A bus at the session's address with a portal for mails, which shows nothing and notes what it was asked
/// for.
class CFakeEmailPortal {
 public:
  /// The portal ends each request with `response`.
  explicit CFakeEmailPortal(std::uint32_t response) : Response(response) {
    std::FILE* output = ::popen(
        "dbus-daemon --session --fork --nopidfile --print-pid --address=$DBUS_SESSION_BUS_ADDRESS", "r");
    EXPECT_EQ(std::fscanf(output, "%d", &Daemon), 1);
    ::pclose(output);
    EXPECT_GE(sd_bus_open_user(&Bus), 0);
    sd_bus_add_object(Bus, nullptr, "/org/freedesktop/portal/desktop", &Answer, this);
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
    // By another signal it would remove the socket, which may be that of the next one by then.
    ::kill(Daemon, SIGKILL);
  }

  NotedMail Mail;

 private:
  static int Answer(sd_bus_message* message, void* self, sd_bus_error*) {
    if (sd_bus_message_is_method_call(message, nullptr, "Get") > 0) {
      return sd_bus_reply_method_return(message, "v", "u", 4);
    }
    auto& portal = *static_cast<CFakeEmailPortal*>(self);
    portal.Note(message);
    sd_bus_reply_method_return(message, "o", "/1");
    return sd_bus_emit_signal(portal.Bus, "/1", "org.freedesktop.portal.Request", "Response", "ua{sv}",
                              portal.Response, 0);
  }

  void Note(sd_bus_message* message) {
    const char *key = nullptr, *subject = "", *text = "";
    sd_bus_message_skip(message, "s");
    sd_bus_message_enter_container(message, 'a', "{sv}");
    sd_bus_message_read(message, "{sv}", &key, "s", &subject);
    sd_bus_message_read(message, "{sv}", &key, "s", &text);
    Mail = {subject, text, {}};
    sd_bus_message_enter_container(message, 'e', "sv");
    sd_bus_message_skip(message, "s");
    sd_bus_message_enter_container(message, 'v', "ah");
    sd_bus_message_enter_container(message, 'a', "h");
    for (int file = 0; sd_bus_message_read_basic(message, 'h', &file) > 0;) {
      Mail.Files.push_back(std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file)).string());
    }
  }

  const std::uint32_t Response;
  int Daemon = 0;
  sd_bus* Bus = nullptr;
  std::atomic<bool> Stopping = false;
  std::thread Server;
};
