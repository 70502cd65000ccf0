#ifndef KVL_TESTS_EXPORT_BROWSER_H
#define KVL_TESTS_EXPORT_BROWSER_H

#include <sys/types.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace kvltest {

/// A Chromium without a window, with one page, driven through a pair of pipes. What goes wrong with
/// it is thrown as `std::runtime_error`.
class Browser {
 public:
  using Json = nlohmann::json;

  /// Starts the program at `executable` with a new profile below `scratch`.
  Browser(const std::string& executable, const std::string& scratch);
  /// Ends the program and removes the profile.
  ~Browser();
  Browser(const Browser&) = delete;
  Browser& operator=(const Browser&) = delete;

  /// The answer to a command of the DevTools protocol, sent to the page.
  Json Call(const std::string& method, const Json& params = Json::object());
  /// The value of a JavaScript expression in the page; what it throws is thrown.
  Json Evaluate(const std::string& expression);

  /// Sets the size in CSS pixels and the pixels to each of them.
  void SetScreen(int width, int height, double scale, bool isPhone);
  /// "light" or "dark".
  void SetScheme(const std::string& scheme);
  /// Opens the address in place of what was open, and waits until it is there and its scripts have
  /// run. Forgets the requests that were made before.
  void Open(const std::string& address);
  /// The same with scripts turned off, until the next `Open`.
  void OpenWithoutScripts(const std::string& address);
  /// Presses and lets go a key, such as "a", "/", "Enter" or "ArrowDown".
  void Press(const std::string& key, bool withShift = false);
  void Type(const std::string& text);
  /// The addresses that were asked for since `Open`.
  std::vector<std::string> Requests() const;
  /// What the page complained about since `Open`: exceptions, and entries of the console.
  std::vector<std::string> Complaints() const;
  /// Writes what is seen as a PNG file.
  void Screenshot(const std::string& file);

 private:
  void Start(const std::string& executable);
  void Send(const Json& message);
  Json Receive();
  void Navigate(const std::string& address);
  Json CallIn(const std::string& callSession, const std::string& method, const Json& params);

  std::string profile;
  pid_t process = -1;
  int toBrowser = -1;
  int fromBrowser = -1;
  std::string received;  // beyond the last whole message
  int lastId = 0;
  std::string session;  // of the page
  std::vector<Json> events;
};

}  // namespace kvltest

#endif
