#include <MRBHost.h>

#include <cstdio>

namespace {

void WriteToOutput(int level, const char* text, int) {
  std::printf("level %d: %s\n", level, text);
}

class Document : public MRBBaseUnknown {
 public:
  ~Document() override { std::puts("document closed"); }
};

}  // namespace

int main() {
  // Reports go to standard error until the host installs a sink of its own.
  const MRBTraceSink former = MRBSetTraceSink(WriteToOutput);
  MRBSysBftier(1, "something failed", 0);
  std::puts(former ? "a sink" : "the default sink");

  // A library that does not exist: no handle, no report.
  const LibraryHandler handler = MRBGetEntryPoint("NoSuchLibrary", nullptr, nullptr, 1, 1, 0);
  std::puts(handler.library ? "loaded" : "not loaded");
  std::puts(MRBGetEnv("KVL_NO_SUCH_VARIABLE") ? "set" : "not set");

  const MRBBaseUnknown_var document = new Document;
  const MRBBaseUnknown_var shared = document;
  std::puts(shared == document ? "one document" : "two documents");
}
