#include "KVLRunKvl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#if defined(_WIN32)
#include <filesystem>
#else
#include <sys/wait.h>
#endif

namespace {

std::string Native(std::string path) {
#if defined(_WIN32)
  std::replace(path.begin(), path.end(), '/', '\\');
#endif
  return path;
}

}  // namespace

std::string ScratchFile(const std::string& file) {
  return std::string(KVL_SCRATCH) + "/" + file;
}

void WriteFile(const std::string& path, const std::string& content) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  ASSERT_NE(file, nullptr) << path;
  ASSERT_EQ(std::fwrite(content.data(), 1, content.size(), file), content.size());
  ASSERT_EQ(std::fclose(file), 0);
}

std::string ReadFile(const std::string& path) {
  std::string content;
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (!file) return "cannot read " + path;
  for (int character = std::getc(file); character != EOF; character = std::getc(file)) {
    if (character != '\r') content += static_cast<char>(character);
  }
  (void)std::fclose(file);
  return content;
}

std::string Quoted(const std::string& argument) {
  std::string quoted = "\"";
  for (const char character : argument) {
#if defined(_WIN32)
    if (character == '"') quoted += '\\';
#else
    if (character == '"' || character == '\\' || character == '$' || character == '`') {
      quoted += '\\';
    }
#endif
    quoted += character;
  }
  return quoted + "\"";
}

KVLEnded RunKvl(const std::string& arguments, const std::string& input) {
  const std::string inputFile = ScratchFile("stdin.txt");
  const std::string outputFile = ScratchFile("stdout.txt");
  const std::string errorFile = ScratchFile("stderr.txt");
  WriteFile(inputFile, input);
  std::string command = Quoted(Native(KVL_PROGRAM)) + " " + arguments + " <" +
                        Quoted(Native(inputFile)) + " >" + Quoted(Native(outputFile)) + " 2>" +
                        Quoted(Native(errorFile));
#if defined(_WIN32)
  // The interpreter takes the outermost pair of quotes for itself.
  const int exitCode = _wsystem(std::filesystem::u8path("\"" + command + "\"").c_str());
#else
  const int status = std::system(command.c_str());
  const int exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
  return KVLEnded{exitCode, ReadFile(outputFile), ReadFile(errorFile)};
}

KVLEnded RunText(const std::string& text) {
  return RunKvl("-c " + Quoted(text));
}

std::string ScriptWith(const std::string& content) {
  const std::string path = ScratchFile("script.kvl");
  WriteFile(path, content);
  return path;
}
