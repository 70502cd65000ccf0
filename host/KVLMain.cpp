#include <CLI/CLI.hpp>
#include <string>

#include "KVLCodeEnvAccess.h"
#include "KVLShellResult.h"
#include "MRBHost.h"

namespace {

void DropReport(int, const char*, int) {}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Runs command texts in the run-time code environment.", "kvl");
  std::string text;
  app.add_option("-c", text, "Run TEXT and exit")->required();
  CLI11_PARSE(app, argc, argv);
  MRBSetTraceSink(DropReport);
  (void)KVLCodeEnvAccess::Load();
  return KVLExitCodeOf(KVLCodeEnvRun(MRBUnicodeString(text.data(), static_cast<int>(text.size()))));
}
