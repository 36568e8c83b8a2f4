#include "platform/EmailPortal.h"

#include <fcntl.h>
#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>

#include "platform/Descriptor.h"

namespace platform {
namespace {

using std::chrono::microseconds;

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kObject = "/org/freedesktop/portal/desktop";
constexpr const char* kInterface = "org.freedesktop.portal.Email";

constexpr microseconds kPatience = std::chrono::seconds(5);           // for the answer to a call
constexpr microseconds kResponsePatience = std::chrono::seconds(10);  // until the window shows
constexpr std::size_t kMostAttachments = 250;  // the kernel passes on 253 descriptors at once
constexpr std::uint32_t kNotShown = 2;         // the response if no window could be shown

struct BusRelease {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, BusRelease>;
using Message = std::unique_ptr<sd_bus_message, BusRelease>;

/// Null if there is no bus.
Bus OpenBus() {
  sd_bus* bus = nullptr;
  if (sd_bus_open_user(&bus) < 0) return nullptr;
  Bus opened(bus);
  return sd_bus_set_method_call_timeout(bus, static_cast<std::uint64_t>(kPatience.count())) < 0
             ? nullptr
             : std::move(opened);
}

bool AppendText(sd_bus_message* message, const char* key, const std::string& text) {
  return sd_bus_message_append(message, "{sv}", key, "s", text.c_str()) >= 0;
}

bool AppendFiles(sd_bus_message* message, const std::vector<std::string>& paths) {
  if (sd_bus_message_open_container(message, 'e', "sv") < 0) return false;
  if (sd_bus_message_append(message, "s", "attachment_fds") < 0) return false;
  if (sd_bus_message_open_container(message, 'v', "ah") < 0) return false;
  if (sd_bus_message_open_container(message, 'a', "h") < 0) return false;
  for (const std::string& path : paths) {
    Descriptor file;
    // The service looks up the path of the file, it doesn't read from the descriptor.
    if (file.Open(path, O_PATH)) return false;
    const int number = file.Get();
    if (sd_bus_message_append_basic(message, 'h', &number) < 0) return false;
  }
  for (int open = 0; open < 3; ++open) {
    if (sd_bus_message_close_container(message) < 0) return false;
  }
  return true;
}

/// Null if it can't be made.
Message MakeRequest(sd_bus* bus, const std::string& subject, const std::string& text,
                    const std::vector<std::string>& attachments) {
  sd_bus_message* raw = nullptr;
  if (sd_bus_message_new_method_call(bus, &raw, kService, kObject, kInterface, "ComposeEmail") < 0) {
    return nullptr;
  }
  Message message(raw);
  constexpr const char* kNoParentWindow = "";
  const bool filled = sd_bus_message_append(raw, "s", kNoParentWindow) >= 0 &&
                      sd_bus_message_open_container(raw, 'a', "{sv}") >= 0 &&
                      AppendText(raw, "subject", subject) && AppendText(raw, "body", text) &&
                      AppendFiles(raw, attachments) && sd_bus_message_close_container(raw) >= 0;
  return filled ? std::move(message) : nullptr;
}

/// The responses that have come, by the object of the request.
using Responses = std::map<std::string, std::uint32_t>;

int NoteResponse(sd_bus_message* message, void* responses, sd_bus_error*) {
  std::uint32_t response = 0;
  const char* object = sd_bus_message_get_path(message);
  if (object != nullptr && sd_bus_message_read(message, "u", &response) >= 0) {
    static_cast<Responses*>(responses)->insert_or_assign(object, response);
  }
  return 0;
}

/// Whether the request's window shows. Without a response for long it does: the user is asked something.
bool AwaitResponse(sd_bus* bus, const Responses& responses, const std::string& request) {
  const auto end = std::chrono::steady_clock::now() + kResponsePatience;
  while (!responses.contains(request)) {
    const int processed = sd_bus_process(bus, nullptr);
    if (processed < 0) return false;
    if (processed > 0) continue;
    const auto left = std::chrono::duration_cast<microseconds>(end - std::chrono::steady_clock::now());
    if (left.count() <= 0) return true;
    if (sd_bus_wait(bus, static_cast<std::uint64_t>(left.count())) < 0) return false;
  }
  return responses.at(request) != kNotShown;
}

}  // namespace

bool HasEmailPortal() {
  const Bus bus = OpenBus();
  std::uint32_t version = 0;
  return bus && sd_bus_get_property_trivial(bus.get(), kService, kObject, kInterface, "version", nullptr, 'u',
                                            &version) >= 0;
}

bool ComposeByEmailPortal(const std::string& subject, const std::string& text,
                          const std::vector<std::string>& attachments) {
  if (attachments.size() > kMostAttachments) return false;
  Responses responses;  // outlives the connection, which notes them
  const Bus bus = OpenBus();
  if (!bus) return false;
  const Message request = MakeRequest(bus.get(), subject, text, attachments);
  if (!request) return false;
  // Before the call, or the response could come too early.
  if (sd_bus_match_signal(bus.get(), nullptr, kService, nullptr, "org.freedesktop.portal.Request", "Response",
                          &NoteResponse, &responses) < 0) {
    return false;
  }
  sd_bus_message* raw = nullptr;
  if (sd_bus_call(bus.get(), request.get(), 0, nullptr, &raw) < 0) return false;
  const Message answer(raw);
  const char* object = nullptr;
  return sd_bus_message_read(raw, "o", &object) >= 0 && AwaitResponse(bus.get(), responses, object);
}

}  // namespace platform
