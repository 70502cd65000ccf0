#ifndef KVL_TESTS_SHELL_SUPPORT_H
#define KVL_TESTS_SHELL_SUPPORT_H

#include <string>

#include "KVLCodeEnvShell.h"

/// What the shell says to a text, and what it returns.
namespace kvltest {

struct Said {
  std::string output;
  std::string error;
  long code = 0;
};

inline void Collect(void* receiver, int channel, const char* text, int length) {
  Said& said = *static_cast<Said*>(receiver);
  (channel == KVLShellChannel_Error ? said.error : said.output)
      .append(text, static_cast<std::size_t>(length));
}

inline MRBUnicodeString Bytes(const std::string& text) {
  return MRBUnicodeString(text.data(), static_cast<int>(text.size()));
}

inline Said Ask(const std::string& text, unsigned int flags = 0) {
  Said said;
  said.code = KVLCodeShellRunTo(Bytes(text), flags, Collect, &said);
  return said;
}

/// Forgets what `Ask` has put into the session.
class SessionGuard {
 public:
  ~SessionGuard() {
    std::string names = Ask("vars").output;
    while (!names.empty()) {
      (void)Ask("unset " + names.substr(0, names.find(' ')));
      names.erase(0, names.find('\n') + 1);
    }
  }
};

/// The words that complete `text`, each with "|" behind it.
inline std::string Completed(const std::string& text, int* replaceFrom = nullptr) {
  Said said;
  int from = -1;
  said.code = KVLCodeShellComplete(Bytes(text), &from, Collect, &said);
  if (replaceFrom) *replaceFrom = from;
  std::string words = said.output;
  for (char& character : words)
    if (character == '\n') character = '|';
  return words;
}

}  // namespace kvltest

#endif
