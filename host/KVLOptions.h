#ifndef KVL_OPTIONS_H
#define KVL_OPTIONS_H

#include <string>

/// What the program was asked for on its command line.
struct KVLOptions {
  enum Source {
    Text,      ///< run `text`
    File,      ///< run the lines of the file `text`
    Standard,  ///< run the lines of standard input
    Prompt     ///< ask for lines until standard input ends
  };
  enum Outcome {
    Run,           ///< go on
    ExitDone,      ///< what was asked for has been printed
    ExitWithUsage  ///< the command line was not understood, and the user has been told
  };

  Source source = Prompt;
  std::string text;
  bool isVerbose = false;

  /// Reads the command line. Writes what is asked for (help, version) to standard output and what
  /// is wrong to standard error.
  Outcome Read(int argc, char** argv);
};

#endif
