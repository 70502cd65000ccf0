#ifndef KVL_TESTS_LOADED_LIBRARIES_H
#define KVL_TESTS_LOADED_LIBRARIES_H

#include <string>

/// True while the library that the loader knows as `name` ("KVLCodeEnv_Beta") is mapped into this
/// process, whoever holds it.
bool IsLoaded(const std::string& name);

/// The folder of the running program, without a "/" at its end: that of the kernel library and of
/// the modules that the scenario is to find.
std::string ProgramFolder();

/// The file that the loader looks for under `name`, without a folder.
std::string LibraryFile(const std::string& name);

#endif
