#include <KVLCodeContext.h>
#include <KVLCodePointerValue.h>
#include <KVLResult.h>

#include <cstdio>

namespace {

class Window {
 public:
  virtual ~Window() { std::puts("window closed"); }
};

}  // namespace

int main() {
  const KVLCodeContext context;
  KVLSmartPtr<KVLCodePointerValue> window = new KVLCodePointerValue("window", "Window");
  MRBUnicodeString text;
  window->GetValueStr(context, text);
  std::puts(text);

  // The last value that shares the holder deletes an owned object.
  window->SetPointer(new Window, true);
  {
    const KVLSmartPtr<KVLCodePointerValue> other = new KVLCodePointerValue("other", "Window");
    other->AssignFrom(context, *window);
    window = nullptr;
    std::puts(other->IsValued() ? "still open" : "gone");

    // "Window" is not registered as a type, so that the object cannot be written as text.
    if (other->GetValueStr(context, text) == KVLResult_NotImplemented) std::puts("no text");
  }
  std::puts("end");
}
