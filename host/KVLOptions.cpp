#include "KVLOptions.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "KVLNearest.h"

namespace {

constexpr char Description[] =
    "Examples:\n"
    "  kvl                               open the prompt\n"
    "  kvl -c 'math/hypot(3, 4)'         run a text: prints 5\n"
    "  kvl -c 'ls; help'                 look around\n"
    "  kvl script.kvl                    run a file, up to the first line that fails\n"
    "  echo 'ls math' | kvl -            run standard input\n"
    "  kvl --json -c 'info math/hypot'   answer with one JSON object a command\n"
    "\n"
    "kvl loads the code-environment modules and runs command lines on what they publish.\n";

constexpr char Footer[] =
    "kvl complete LINE prints what LINE may go on with, a line each; a file of that name is "
    "./complete.\n"
    "\n"
    "Exit codes: 0 done; 1 failed, or the answer is \"no\"; 2 not understood; 3 not found;\n"
    "4 an argument or a conversion; 5 a library cannot be loaded or unloaded; 130 interrupted.\n"
    "\n"
    "Environment: KVLCodeEnv_Modules names further modules, separated by \";\"; KVL_HISTORY is "
    "the\n"
    "file of the prompt's history; NO_COLOR, unless empty, means --color=never.";

constexpr char CompletionWord[] = "complete";

KVLOptions::Outcome Misunderstood(const std::string& reason) {
  std::fprintf(stderr, "kvl: %s\nRun 'kvl --help' for what it takes.\n", reason.c_str());
  return KVLOptions::ExitWithUsage;
}

// The option of `app` that `unknown` may have been meant for; empty when none is near.
std::string NearestOption(const CLI::App& app, const std::string& unknown) {
  const std::string typed = unknown.substr(0, unknown.find('='));
  std::vector<std::string> names;
  for (const CLI::Option* const option : app.get_options()) {
    for (const std::string& name : option->get_lnames())
      names.push_back("--" + name);
  }
  return KVLNearest(typed, names);
}

KVLOptions::Outcome RefuseSurplus(const CLI::App& app, const std::vector<std::string>& surplus) {
  const auto isOption = [](const std::string& word) { return word.size() > 1 && word[0] == '-'; };
  const auto option = std::find_if(surplus.begin(), surplus.end(), isOption);
  if (option == surplus.end()) {
    return Misunderstood("one file at a time: '" + surplus.front() + "' is too many");
  }
  const std::string nearest = NearestOption(app, *option);
  return Misunderstood("unknown option '" + *option + "'" +
                       (nearest.empty() ? "" : "; did you mean '" + nearest + "'?"));
}

KVLOptions::Outcome ReadCompletion(const std::vector<std::string>& arguments, KVLOptions& options) {
  if (arguments.size() > 2) return Misunderstood("complete: one line at a time; quote its blanks");
  options.source = KVLOptions::Completion;
  options.text = arguments.size() == 2 ? arguments[1] : "";
  return KVLOptions::Run;
}

}  // namespace

KVLOptions::Outcome KVLOptions::Read(const std::vector<std::string>& arguments) {
  if (!arguments.empty() && arguments[0] == CompletionWord) return ReadCompletion(arguments, *this);

  CLI::App app(Description, "kvl");
  app.footer(Footer);
  // A file's path may begin with "/" on every platform.
  app.allow_windows_style_options(false);
  app.allow_extras();
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_version_flag("--version", "kvl " KVL_VERSION, "Print the version and exit");
  std::string file;
  CLI::Option* const textOption = app.add_option("-c", text, "Run TEXT and exit");
  textOption->type_name("TEXT");
  CLI::Option* const fileOption =
      app.add_option("FILE", file, "Run the lines of FILE, or of standard input for \"-\"");
  fileOption->type_name("");
  app.add_flag("--json", isJson, "Answer every command with one JSON object on one line");
  std::string when = "auto";
  app.add_option("--color", when, "Colours: auto (at a terminal), always or never")
      ->type_name("WHEN");
  app.add_flag("-q,--quiet", isQuiet, "No summary before the prompt, no word on refused modules");
  app.add_flag("-v,--verbose", isVerbose, "Tell on standard error which modules were not loaded");
  bool isModules = false;
  app.add_flag("--modules", isModules, "Load and unload the modules, tell how that went, and exit");
  bool isWithoutModules = false;
  app.add_flag("--no-modules", isWithoutModules, "Load no modules");
  try {
    // The parser takes the words from the end of the list.
    std::vector<std::string> words(arguments.rbegin(), arguments.rend());
    app.parse(words);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) return Misunderstood(error.what());
    (void)app.exit(error);
    return ExitDone;
  }
  std::vector<std::string> surplus = app.remaining();
  // What ends the options is itself no file; the parser leaves it behind.
  const auto mark = std::find(surplus.begin(), surplus.end(), "--");
  if (mark != surplus.end()) surplus.erase(mark);
  if (!surplus.empty()) return RefuseSurplus(app, surplus);
  if (when != "auto" && when != "always" && when != "never") {
    return Misunderstood("--color takes auto, always or never, not '" + when + "'");
  }
  const bool hasText = textOption->count() > 0;
  const bool hasFile = fileOption->count() > 0;
  if (hasText && hasFile) return Misunderstood("either -c TEXT or FILE, not both");
  if (isModules && (hasText || hasFile)) return Misunderstood("--modules runs nothing");
  if (isModules && isWithoutModules) {
    return Misunderstood("either --modules or --no-modules, not both");
  }
  hasModules = !isWithoutModules;
  colors = when == "always" ? Always : when == "never" ? Never : Auto;
  if (hasText) {
    source = Text;
  } else if (isModules) {
    source = Modules;
  } else if (hasFile) {
    source = file == "-" ? Standard : File;
    text = file;
  }
  return Run;
}
