#ifndef KVL_LINE_READER_H
#define KVL_LINE_READER_H

#include <memory>
#include <string>

#include "KVLShellEntries.h"

/// Asks a person at the terminal for lines.
class KVLLineReader {
 public:
  enum Outcome {
    Line,       ///< a line was typed
    Abandoned,  ///< the user gave the line up, with Ctrl-C
    End         ///< there will be no further line
  };

  /// A reader with editing, history and completion by `entries` (borrowed), where the platform and
  /// the terminal have what it takes; else one of plain lines.
  static std::unique_ptr<KVLLineReader> Make(const KVLShellEntries& entries);

  virtual ~KVLLineReader() = default;

  /// Writes the prompt to standard error and reads a line, without its newline.
  virtual Outcome Read(std::string& line) = 0;

 protected:
  static constexpr const char* Prompt = "kvl> ";
};

#endif
