# cmake -DNM=nm -DMODULE=libName.so -P KVLCheckModule.cmake
# Fails when the platform's loader would keep the library mapped for ever: for a symbol that is
# unique to the process, or for a thread-local object with a destructor.

execute_process(
  COMMAND "${NM}" --dynamic "${MODULE}"
  OUTPUT_VARIABLE symbols
  COMMAND_ERROR_IS_FATAL ANY)

string(REGEX MATCHALL "[^\n]* u [^\n]*" unique "${symbols}")
string(REGEX MATCHALL "[^\n]* U __cxa_thread_atexit[^\n]*" threadLocal "${symbols}")
if(unique OR threadLocal)
  list(JOIN unique "\n" unique)
  list(JOIN threadLocal "\n" threadLocal)
  file(REMOVE "${MODULE}")
  message(FATAL_ERROR "${MODULE} could never be unloaded. Unique symbols:\n${unique}\n"
                      "Destructors of thread-local objects:\n${threadLocal}")
endif()
