#include <stdexcept>
#include <string>

#include "KVLKit.h"
#include "shared/Utf8.h"

namespace {

// One step of a pattern at `i`: which bytes it takes up, and what it stands for.
struct Step {
  std::size_t end;
  enum Kind { Character, AnyCharacter, AnyText } kind;
  std::size_t begin;  // of the character itself, behind the backslash
};

Step StepAt(const std::string& pattern, std::size_t i) {
  if (pattern[i] == '*') return Step{i + 1, Step::AnyText, i};
  if (pattern[i] == '?') return Step{i + 1, Step::AnyCharacter, i};
  const std::size_t begin = pattern[i] == '\\' ? i + 1 : i;
  if (begin == pattern.size()) throw std::invalid_argument("a backslash ends the pattern");
  return Step{utf8::EndOfCharacter(pattern, begin), Step::Character, begin};
}

// Where text and pattern differ, the last "*" is made to stand for one character more. Earlier ones
// need not: what lies between two of them was found as early as it occurs.
bool Match(KVLCodeSession* session, const std::string& text, const std::string& pattern) {
  for (std::size_t i = 0; i < pattern.size();)
    i = StepAt(pattern, i).end;
  std::size_t t = 0;
  std::size_t p = 0;
  std::size_t resumedText = std::string::npos;
  std::size_t resumedPattern = 0;
  for (unsigned int count = 0; t < text.size() || p < pattern.size(); ++count) {
    if (count % 65536 == 65535 && session && session->IsInterrupted()) {
      throw std::runtime_error("interrupted");
    }
    if (p < pattern.size()) {
      const Step step = StepAt(pattern, p);
      if (step.kind == Step::AnyText) {
        p = step.end;
        resumedPattern = p;
        resumedText = t;
        continue;
      }
      const std::size_t end = t < text.size() ? utf8::EndOfCharacter(text, t) : t;
      if (t < text.size() &&
          (step.kind == Step::AnyCharacter ||
           pattern.compare(step.begin, step.end - step.begin, text, t, end - t) == 0)) {
        p = step.end;
        t = end;
        continue;
      }
    }
    if (resumedText == std::string::npos || resumedText >= text.size()) return false;
    resumedText = utf8::EndOfCharacter(text, resumedText);
    t = resumedText;
    p = resumedPattern;
  }
  return true;
}

}  // namespace

KVL_FUNCTION("text/match", "text, pattern",
             "Whether the whole text has the form of the pattern: \"?\" stands for any character, "
             "\"*\" for any text, the empty one too, and a backslash takes its meaning from the "
             "character behind it. Upper and lower case differ. Fails for a backslash at the end.",
             [](KVLCodeSession* session, const std::string& text, const std::string& pattern) {
               return Match(session, text, pattern);
             });
