#include "KVLOptions.h"

#include <CLI/CLI.hpp>
#include <cstdio>

namespace {

constexpr char Description[] =
    "Examples:\n"
    "  kvl -c 'call math/add 3.5 4.25'   run a text: prints 7.75\n"
    "  kvl -c 'ls; help'                 look around\n"
    "  kvl script.kvl                    run a file, up to the first line that fails\n"
    "  echo 'ls math' | kvl -            run standard input\n"
    "  kvl                               ask for lines\n"
    "\n"
    "kvl loads the code-environment modules and runs command lines on what they publish.\n";

constexpr char ExitCodes[] =
    "Exit codes: 0 done; 1 failed, or the answer is \"no\"; 2 not understood; 3 not found;\n"
    "4 an argument or a conversion; 5 a library cannot be loaded.\n"
    "Further modules: names separated by \";\" in the environment variable KVLCodeEnv_Modules.";

}  // namespace

KVLOptions::Outcome KVLOptions::Read(int argc, char** argv) {
  CLI::App app(Description, "kvl");
  app.footer(ExitCodes);
  // A file's path may begin with "/" on every platform.
  app.allow_windows_style_options(false);
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_version_flag("--version", "kvl " KVL_VERSION, "Print the version and exit");
  std::string file;
  CLI::Option* const textOption = app.add_option("-c", text, "Run TEXT and exit");
  textOption->type_name("TEXT");
  CLI::Option* const fileOption =
      app.add_option("FILE", file, "Run the lines of FILE, or of standard input for \"-\"");
  fileOption->type_name("");
  app.add_flag("-v,--verbose", isVerbose, "Tell on standard error which modules were not loaded");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
      (void)app.exit(error);
      return ExitDone;
    }
    std::fprintf(stderr, "kvl: %s\nRun 'kvl --help' for what it takes.\n", error.what());
    return ExitWithUsage;
  }
  if (textOption->count() > 0 && fileOption->count() > 0) {
    std::fprintf(stderr,
                 "kvl: either -c TEXT or FILE, not both\nRun 'kvl --help' for what it takes.\n");
    return ExitWithUsage;
  }
  if (textOption->count() > 0) {
    source = Text;
  } else if (fileOption->count() > 0) {
    source = file == "-" ? Standard : File;
    text = file;
  }
  return Run;
}
