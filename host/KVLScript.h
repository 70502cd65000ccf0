#ifndef KVL_SCRIPT_H
#define KVL_SCRIPT_H

#include <cstdio>
#include <string>

/// Runs one text in the shell and returns its result; says so on standard error when there is no
/// shell.
long KVLRunText(const std::string& text);

/// Runs `stream` line by line, up to the first line that does not return 0, and returns what that
/// line returned, after writing "`streamName`:line:" to standard error. A UTF-8 mark at the start
/// and a carriage return at the end of a line do not count.
long KVLRunLines(std::FILE* stream, const std::string& streamName);

/// As `KVLRunLines` for a file; one that cannot be read gives `KVLShellResult_NotFound`.
long KVLRunFile(const std::string& path);

/// Asks for lines on standard input until it ends, and runs each, whatever the former ones
/// returned.
void KVLRunPrompt();

#endif
