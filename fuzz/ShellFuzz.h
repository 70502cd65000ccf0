#ifndef KVL_FUZZ_SHELL_FUZZ_H
#define KVL_FUZZ_SHELL_FUZZ_H

#include <string>

/// Runs and completes `text` in the shell, as text and as JSON, on whatever the process has
/// published, and ends the process when the shell breaks a promise: answers that are whole lines,
/// one JSON object for each command, places inside the text. The session is as before afterwards.
///
/// Does nothing with a text that reaches for files or libraries.
void KVLFuzzShell(const std::string& text);

#endif
