#include "Browser.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <utility>

namespace kvltest {

namespace {

constexpr int PatienceMs = 60000;  // for one answer, on a machine that has much else to do

[[noreturn]] void Fail(const std::string& message) {
  throw std::runtime_error("browser: " + message);
}

std::string DecodeBase64(const std::string& text) {
  const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  unsigned int bits = 0;
  int nbBits = 0;
  for (const char c : text) {
    const std::size_t digit = digits.find(c);
    if (digit == std::string::npos) break;
    bits = (bits << 6) | static_cast<unsigned int>(digit);
    nbBits += 6;
    if (nbBits < 8) continue;
    nbBits -= 8;
    bytes += static_cast<char>((bits >> nbBits) & 0xFF);
  }
  return bytes;
}

// Moves what the browser reads to descriptor 3 and what it writes to descriptor 4.
void PlacePipes(int reading, int writing) {
  const int safeReading = fcntl(reading, F_DUPFD, 10);
  const int safeWriting = fcntl(writing, F_DUPFD, 10);
  dup2(safeReading, 3);
  dup2(safeWriting, 4);
  close(safeReading);
  close(safeWriting);
}

}  // namespace

Browser::Browser(const std::string& executable, const std::string& scratch) {
  std::string pattern = scratch + "/profile-XXXXXX";
  if (!mkdtemp(pattern.data())) Fail("no folder " + pattern);
  profile = pattern;
  Start(executable);
  const Json target = CallIn("", "Target.createTarget", {{"url", "about:blank"}});
  session = CallIn("", "Target.attachToTarget",
                   {{"targetId", target["targetId"]}, {"flatten", true}})["sessionId"];
  for (const char* const domain : {"Page", "Runtime", "Network", "Log"})
    Call(std::string(domain) + ".enable");
}

Browser::~Browser() {
  close(toBrowser);
  close(fromBrowser);
  if (process > 0) {
    kill(-process, SIGKILL);
    waitpid(process, nullptr, 0);
  }
  std::error_code ignored;  // its last children may still be writing
  std::filesystem::remove_all(profile, ignored);
}

void Browser::Start(const std::string& executable) {
  int in[2];
  int out[2];
  if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) Fail("no pipes");
  signal(SIGPIPE, SIG_IGN);
  const std::string profileOption = "--user-data-dir=" + profile;
  process = fork();
  if (process < 0) Fail("no process");
  if (process == 0) {
    setpgid(0, 0);
    PlacePipes(in[0], out[1]);
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, 0);
    dup2(nowhere, 1);
    dup2(nowhere, 2);
    const char* const arguments[] = {executable.c_str(),
                                     "--headless",
                                     "--no-sandbox",
                                     "--disable-gpu",
                                     "--disable-quic",
                                     "--no-first-run",
                                     "--disable-background-networking",
                                     "--disable-component-update",
                                     "--disable-sync",
                                     "--hide-scrollbars",
                                     "--remote-debugging-pipe",
                                     profileOption.c_str(),
                                     nullptr};
    execv(executable.c_str(), const_cast<char* const*>(arguments));
    _exit(127);
  }
  setpgid(process, process);
  close(in[0]);
  close(out[1]);
  toBrowser = in[1];
  fromBrowser = out[0];
}

void Browser::Send(const Json& message) {
  const std::string text = message.dump();
  // With the NUL byte that ends a message.
  for (std::size_t sent = 0; sent < text.size() + 1;) {
    const ssize_t count = write(toBrowser, text.c_str() + sent, text.size() + 1 - sent);
    if (count <= 0) Fail("it does not listen");
    sent += static_cast<std::size_t>(count);
  }
}

Browser::Json Browser::Receive() {
  std::size_t end = received.find('\0');
  while (end == std::string::npos) {
    pollfd waiting = {fromBrowser, POLLIN, 0};
    if (poll(&waiting, 1, PatienceMs) <= 0) Fail("it does not answer");
    char buffer[65536];
    const ssize_t count = read(fromBrowser, buffer, sizeof(buffer));
    if (count <= 0) Fail("it has ended");
    received.append(buffer, static_cast<std::size_t>(count));
    end = received.find('\0');
  }
  Json message = Json::parse(received.substr(0, end));
  received.erase(0, end + 1);
  return message;
}

Browser::Json Browser::CallIn(const std::string& callSession, const std::string& method,
                              const Json& params) {
  Json message = {{"id", ++lastId}, {"method", method}, {"params", params}};
  if (!callSession.empty()) message["sessionId"] = callSession;
  Send(message);
  while (true) {
    Json answer = Receive();
    if (!answer.contains("id")) {
      events.push_back(std::move(answer));
    } else if (answer["id"] == lastId) {
      if (answer.contains("error")) Fail(method + ": " + answer["error"].dump());
      return answer["result"];
    }
  }
}

Browser::Json Browser::Call(const std::string& method, const Json& params) {
  return CallIn(session, method, params);
}

Browser::Json Browser::Evaluate(const std::string& expression) {
  const Json answer =
      Call("Runtime.evaluate",
           {{"expression", expression}, {"returnByValue", true}, {"awaitPromise", true}});
  if (answer.contains("exceptionDetails")) Fail(answer["exceptionDetails"].dump());
  return answer["result"].value("value", Json());
}

void Browser::SetScreen(int width, int height, double scale, bool isPhone) {
  Call("Emulation.setDeviceMetricsOverride",
       {{"width", width}, {"height", height}, {"deviceScaleFactor", scale}, {"mobile", isPhone}});
}

void Browser::SetScheme(const std::string& scheme) {
  Call("Emulation.setEmulatedMedia",
       {{"features", Json::array({{{"name", "prefers-color-scheme"}, {"value", scheme}}})}});
}

void Browser::Navigate(const std::string& address) {
  const Json answer = Call("Page.navigate", {{"url", address}});
  if (answer.contains("errorText")) Fail(address + ": " + answer["errorText"].dump());
  const auto isLoaded = [](const Json& event) { return event["method"] == "Page.loadEventFired"; };
  while (std::none_of(events.begin(), events.end(), isLoaded))
    events.push_back(Receive());
}

void Browser::Open(const std::string& address) {
  Call("Emulation.setScriptExecutionDisabled", {{"value", false}});
  // An address that differs from the last in its fragment alone would load nothing.
  events.clear();
  Navigate("about:blank");
  events.clear();
  Navigate(address);
}

void Browser::OpenWithoutScripts(const std::string& address) {
  Call("Emulation.setScriptExecutionDisabled", {{"value", true}});
  events.clear();
  Navigate("about:blank");
  events.clear();
  Navigate(address);
}

void Browser::Press(const std::string& key, bool withShift) {
  static const std::map<std::string, int> codes = {
      {"Enter", 13},     {"Escape", 27},  {"Tab", 9},         {"End", 35},      {"Home", 36},
      {"ArrowLeft", 37}, {"ArrowUp", 38}, {"ArrowRight", 39}, {"ArrowDown", 40}};
  Json event = {{"type", "keyDown"}, {"key", key}, {"modifiers", withShift ? 8 : 0}};
  const auto code = codes.find(key);
  if (code != codes.end()) {
    event["code"] = key;
    event["windowsVirtualKeyCode"] = code->second;
    if (key == "Enter") event["text"] = "\r";
  } else {
    event["text"] = key;
  }
  Call("Input.dispatchKeyEvent", event);
  event["type"] = "keyUp";
  event.erase("text");
  Call("Input.dispatchKeyEvent", event);
}

void Browser::Type(const std::string& text) {
  for (const char c : text)
    Press(std::string(1, c));
}

std::vector<std::string> Browser::Requests() const {
  std::vector<std::string> addresses;
  for (const Json& event : events) {
    if (event["method"] == "Network.requestWillBeSent")
      addresses.push_back(event["params"]["request"]["url"]);
  }
  return addresses;
}

std::vector<std::string> Browser::Complaints() const {
  std::vector<std::string> complaints;
  for (const Json& event : events) {
    const std::string method = event["method"];
    if (method == "Runtime.exceptionThrown" || method == "Runtime.consoleAPICalled" ||
        method == "Log.entryAdded") {
      complaints.push_back(event["params"].dump());
    }
  }
  return complaints;
}

void Browser::Screenshot(const std::string& file) {
  const Json answer = Call("Page.captureScreenshot", {{"format", "png"}});
  std::ofstream stream(file, std::ios::binary);
  stream << DecodeBase64(answer["data"]);
  if (!stream.flush()) Fail("cannot write " + file);
}

}  // namespace kvltest
