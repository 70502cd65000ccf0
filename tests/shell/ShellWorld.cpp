// Harmless objects of every kind, for the tests of the shell and for its fuzzer.

#include <cmath>
#include <cstdio>
#include <new>
#include <stdexcept>

#include "KVLCodeEnvShell.h"
#include "KVLCodeSession.h"
#include "KVLKit.h"

namespace {

enum class Hue { Red, Green, Blue };

struct Spot {
  double x = 0;
  double y = 0;
};

bool ParseSpot(const MRBUnicodeString& text, Spot& spot) {
  return std::sscanf(text, "(%lf, %lf)", &spot.x, &spot.y) == 2;
}

MRBUnicodeString PrintSpot(const Spot& spot) {
  char text[64];
  std::snprintf(text, sizeof(text), "(%g, %g)", spot.x, spot.y);
  return text;
}

double g_written = 1.5;

void Ignore(void*, int, const char*, int) {}

// What a user does at the keyboard while the function is at work.
int CountUntilInterrupted(int limit, KVLCodeSession* session) {
  int count = 0;
  while (count < limit && !session->IsInterrupted()) {
    if (++count == 1000) KVLCodeShellInterrupt();
  }
  if (session->IsInterrupted()) throw std::runtime_error("interrupted");
  return count;
}

MRBUnicodeString NamesOf(KVLCodeSession* session) {
  KVLVector<MRBUnicodeString> names;
  session->GetVariableNames(names);
  MRBUnicodeString joined;
  for (const MRBUnicodeString& name : names)
    joined += name + ";";
  return joined;
}

}  // namespace

KVL_PUBLISH_TYPE(bool);
KVL_PUBLISH_TYPE(int);
KVL_PUBLISH_TYPE(std::int64_t);
KVL_PUBLISH_TYPE(kvl::Long);
KVL_PUBLISH_TYPE(double);
KVL_PUBLISH_TYPE(MRBUnicodeString);
KVL_PUBLISH_TYPE(void);
KVL_PUBLISH_TYPE(kvl::Any);
KVL_PUBLISH_TYPE(KVLCodeListValue::Elements);
KVL_LIST(int);
KVL_LIST(double);
KVL_LIST(MRBUnicodeString);
KVL_ENUM(Hue, "Hue", Red, Green, Blue);
KVL_TYPE(Spot, "Spot", ParseSpot, PrintSpot);

KVL_CONVERSION(int, double);
KVL_CONVERSION(int, std::int64_t);
KVL_CONVERSION(MRBUnicodeString, int);
KVL_CONVERSION_WITH(double, int, [](const double& from, int& to) {
  if (from != std::floor(from) || std::fabs(from) > 1e9) return false;
  to = static_cast<int>(from);
  return true;
});
KVL_CONVERSION_WITH(Hue, MRBUnicodeString, [](const Hue&) -> MRBUnicodeString {
  throw std::runtime_error("colours have no names today");
});

KVL_DOC("num", "Numbers.");
KVL_FUNCTION("num/add", "a, b", "The sum of two numbers.",
             [](double a, double b) { return a + b; });
KVL_FUNCTION("num/hypot", "a, b = 0", "Length of (a, b).",
             [](double a, double b) { return std::hypot(a, b); });
KVL_FUNCTION("num/count", "n", "", [](int n) { return n; });
KVL_FUNCTION("num/big", "n", "", [](std::int64_t n) { return n; });
KVL_FUNCTION("num/increment", "number, by = 1", "", [](int& number, int by) { number += by; });
KVL_FUNCTION("num/divmod", "dividend, divisor, quotient, remainder", "",
             [](int dividend, int divisor, kvl::Out<int> quotient, kvl::Out<int> remainder) {
               if (divisor == 0) throw std::runtime_error("division by zero");
               quotient = dividend / divisor;
               remainder = dividend % divisor;
             });
KVL_VARIABLE("num/pi", 3.25, "Nearly pi.");
KVL_VARIABLE("num/written", &g_written, "");

KVL_FUNCTION("word/length", "text", "How many bytes a text has.",
             [](const MRBUnicodeString& text) { return text.GetLengthInByte(); });
KVL_FUNCTION("word/echo", "text", "", [](const MRBUnicodeString& text) { return text; });
KVL_FUNCTION("word/join", "words, between = \", \"", "",
             [](const KVLVector<MRBUnicodeString>& words, const MRBUnicodeString& between) {
               MRBUnicodeString joined;
               for (int i = 0; i < words.GetCount(); ++i)
                 joined += (i > 0 ? between : MRBUnicodeString()) + words[i];
               return joined;
             });
KVL_FUNCTION("word/first", "words", "",
             [](const KVLVector<MRBUnicodeString>& words) { return words[0]; });

KVL_FUNCTION("list/sum", "numbers", "", [](const KVLVector<double>& numbers) {
  double sum = 0;
  for (const double number : numbers)
    sum += number;
  return sum;
});
KVL_FUNCTION("list/range", "n", "", [](int n) {
  KVLVector<int> range;
  for (int i = 0; i < n && i < 1000; ++i)
    range.Append(i);
  return range;
});

KVL_FUNCTION("hue/next", "hue", "", [](Hue hue) {
  return hue == Hue::Red ? Hue::Green : hue == Hue::Green ? Hue::Blue : Hue::Red;
});
KVL_FUNCTION("hue/mix", "strong, hue = Blue", "",
             [](bool strong, Hue hue) { return strong ? hue : Hue::Red; });
KVL_FUNCTION("_members/Spot/Shift", "this, dx, dy = 0", "", [](Spot& spot, double dx, double dy) {
  spot.x += dx;
  spot.y += dy;
});
KVL_FUNCTION("spot/x", "spot", "", [](const Spot& spot) { return spot.x; });

KVL_FUNCTION("any/same", "value", "", [](const kvl::Any& value) { return value; });

KVL_FUNCTION("odd/fail", "", "", []() { throw std::runtime_error("the disk is full"); });
KVL_FUNCTION("odd/throw", "", "", []() { throw 42; });
KVL_FUNCTION("odd/exhaust", "", "", []() { throw std::bad_alloc(); });
KVL_FUNCTION("odd/nothing", "", "", []() {});
KVL_FUNCTION("odd/run", "text", "", [](const MRBUnicodeString& text) {
  return static_cast<int>(KVLCodeShellRunTo(text, 0, Ignore, nullptr));
});
KVL_FUNCTION("odd/recurse", "", "", []() {
  return static_cast<int>(KVLCodeShellRunTo("odd/recurse()", 0, Ignore, nullptr));
});
KVL_FUNCTION("odd/wait", "limit = 1000000", "", CountUntilInterrupted);
KVL_FUNCTION("odd/names", "", "", NamesOf);
KVL_FUNCTION("odd/set", "name, value", "",
             [](const MRBUnicodeString& name, const kvl::Any& value, KVLCodeSession* session) {
               return static_cast<int>(session->SetVariable(name, value.GetValue()));
             });
