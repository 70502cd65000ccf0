#include "LoadedLibraries.h"

#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

bool IsLoaded(const std::string& name) {
  return GetModuleHandleA(LibraryFile(name).c_str()) != nullptr;
}

std::string ProgramFolder() {
  char path[MAX_PATH];
  const std::string program(path, GetModuleFileNameA(nullptr, path, MAX_PATH));
  return program.substr(0, program.find_last_of('\\'));
}

std::string LibraryFile(const std::string& name) {
  return name + ".dll";
}

#else

#include <unistd.h>

#include <fstream>

bool IsLoaded(const std::string& name) {
  const std::string file = "/" + LibraryFile(name);
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find(file) != std::string::npos) return true;
  }
  return false;
}

std::string ProgramFolder() {
  char path[4096];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  const std::string program(path, length > 0 ? static_cast<std::size_t>(length) : 0);
  return program.substr(0, program.find_last_of('/'));
}

std::string LibraryFile(const std::string& name) {
  return "lib" + name + ".so";
}

#endif
