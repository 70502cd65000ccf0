#ifndef KVL_OPTIONS_H
#define KVL_OPTIONS_H

#include <string>
#include <vector>

/// What the program was asked for on its command line.
struct KVLOptions {
  enum Source {
    Text,        ///< run `text`
    File,        ///< run the lines of the file `text`
    Standard,    ///< run the lines of standard input
    Prompt,      ///< ask for lines until standard input ends
    Completion,  ///< write what `text` may go on with
    Modules      ///< tell which modules there are
  };
  enum Outcome {
    Run,           ///< go on
    ExitDone,      ///< what was asked for has been printed
    ExitWithUsage  ///< the command line was not understood, and the user has been told
  };
  enum Colors { Auto, Always, Never };

  Source source = Prompt;
  std::string text;
  Colors colors = Auto;
  bool isJson = false;
  bool isQuiet = false;
  bool isVerbose = false;
  bool hasModules = true;

  /// Reads the command line: UTF-8, without the program's name. Writes what is asked for (help,
  /// version) to standard output and what is wrong to standard error.
  Outcome Read(const std::vector<std::string>& arguments);
};

#endif
