#ifndef KVL_RUN_KVL_H
#define KVL_RUN_KVL_H

#include <string>

/// The program kvl, run to its end without a terminal.

struct KVLEnded {
  int exitCode;
  std::string output;
  std::string error;
};

/// Runs kvl with `arguments`, ready for the platform's command interpreter, and `input` as standard
/// input.
KVLEnded RunKvl(const std::string& arguments, const std::string& input = "");

/// Runs kvl with "-c" and `text`.
KVLEnded RunText(const std::string& text);

/// An argument for the platform's command interpreter.
std::string Quoted(const std::string& argument);

/// The path of a file in the tests' own folder.
std::string ScratchFile(const std::string& file);

void WriteFile(const std::string& path, const std::string& content);

/// A file as text: a newline is one character, however the platform writes it.
std::string ReadFile(const std::string& path);

/// The path of a script of this content.
std::string ScriptWith(const std::string& content);

#endif
