#ifndef KVL_SCRIPT_H
#define KVL_SCRIPT_H

#include <cstdio>
#include <string>

class KVLSession;

/// Runs `stream` line by line, up to the first line that does not return 0, and returns what that
/// line returned, after writing "`streamName`:line:" to standard error, unless it asked to quit. A
/// UTF-8 mark at the start and a carriage return at the end of a line do not count.
long KVLRunLines(KVLSession& session, std::FILE* stream, const std::string& streamName);

/// As `KVLRunLines` for a file; one that cannot be read gives `KVLShellResult_NotFound`.
long KVLRunFile(KVLSession& session, const std::string& path);

#endif
