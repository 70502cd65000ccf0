#include "KVLShellEntries.h"

#include <cstdio>
#include <limits>

#include "KVLPlatform.h"
#include "KVLShellResult.h"
#include "MRBHost.h"

namespace {

constexpr const char* LibraryName = "KVLCodeEnvShell";

bool IsTooLong(const std::string& text) {
  return text.size() >= static_cast<std::size_t>(std::numeric_limits<int>::max());
}

MRBUnicodeString ToKernel(const std::string& text) {
  return MRBUnicodeString(text.data(), static_cast<int>(text.size()));
}

void AppendLines(void* receiver, int channel, const char* text, int length) {
  if (channel != KVLShellChannel_Output) return;
  std::vector<std::string>& words = *static_cast<std::vector<std::string>*>(receiver);
  const char* const end = text + length;
  const char* first = text;
  for (const char* byte = text; byte < end; ++byte) {
    if (*byte != '\n') continue;
    words.emplace_back(first, byte);
    first = byte + 1;
  }
}

}  // namespace

template <class Entry>
Entry KVLShellEntries::Resolve(const char* name) {
  const LibraryHandler handler = MRBGetFunctionAddress(LibraryName, name, nullptr, -1, 1, 0);
  if (handler.library) handles.push_back(handler);
  return reinterpret_cast<Entry>(handler.entry);
}

KVLShellEntries::KVLShellEntries()
    : run(Resolve<decltype(run)>("KVLCodeShellRunTo")),
      interrupt(Resolve<decltype(interrupt)>("KVLCodeShellInterrupt")) {
  if (IsLoaded()) return;
  const std::string reason = KVLWhyNotLoaded(LibraryName);
  std::fprintf(stderr, "kvl: the shell library '%s' cannot be used: %s\n", LibraryName,
               reason.empty() ? "it is not there, or of another version" : reason.c_str());
}

KVLShellEntries::~KVLShellEntries() {
  for (const LibraryHandler& handler : handles)
    (void)MRBCloseLibrary(handler);  // the program ends, whatever becomes of it
}

long KVLShellEntries::Run(const std::string& text, unsigned int flags, KVLShellSink sink,
                          void* receiver) const {
  if (!IsLoaded()) return KVLResult_NotImplemented;
  if (IsTooLong(text)) {
    std::fprintf(stderr, "kvl: the text is too long\n");
    return KVLShellResult_Usage;
  }
  return run(ToKernel(text), flags, sink, receiver);
}

KVLShellEntries::Completion KVLShellEntries::Complete(const std::string& text) const {
  using Entry = decltype(&KVLCodeShellComplete);
  Completion completion;
  const LibraryHandler handler =
      MRBGetFunctionAddress(LibraryName, "KVLCodeShellComplete", nullptr, -1, 1, 0);
  if (!handler.entry) return completion;
  if (!IsTooLong(text)) {
    (void)reinterpret_cast<Entry>(handler.entry)(ToKernel(text), &completion.replaceFrom,
                                                 AppendLines, &completion.words);
  }
  (void)MRBCloseLibrary(handler);  // it stays loaded for the other entries
  return completion;
}
