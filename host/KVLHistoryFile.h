#ifndef KVL_HISTORY_FILE_H
#define KVL_HISTORY_FILE_H

#include <string>
#include <vector>

/// The file that keeps the lines typed at the prompt for the next time: a line each. It belongs to
/// its user alone, and several programs may add to it at once. Where it cannot be read or written,
/// nothing is kept, and nothing is said.
class KVLHistoryFile {
 public:
  /// The file that the environment variable KVL_HISTORY names, none when it is empty; without the
  /// variable "kvl/history" in the folder XDG_STATE_HOME, or else in "~/.local/state".
  KVLHistoryFile();

  /// The last lines, at most `count`, the oldest first. Shortens a file that has become more than
  /// twice as long.
  std::vector<std::string> Read(std::size_t count) const;
  /// Adds `line`, without newlines; makes the file, and the folder it lies in, where they are
  /// missing.
  void Append(const std::string& line) const;

 private:
  std::string path;  // empty: none
};

#endif
