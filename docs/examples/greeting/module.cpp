#include <KVLKit.h>

namespace {

MRBUnicodeString Greet(const MRBUnicodeString& name) {
  return "Hello, " + name + "!";
}

}  // namespace

KVL_FUNCTION("text/greet", "name = you", "A greeting for whoever bears the name.", Greet);
