#ifndef KVL_PLATFORM_H
#define KVL_PLATFORM_H

#include <cstdio>
#include <string>
#include <vector>

/// What the program asks of its platform; one file for each implements it.

enum KVLStandardStream { KVLStandardInput = 0, KVLStandardOutput = 1, KVLStandardError = 2 };

/// To be called before anything is read or written. Afterwards a write to a reader that has gone
/// fails instead of ending the program, and a standard stream that the caller has closed is no
/// place where a file that is opened later could turn up.
void KVLPrepareStreams();

/// The arguments of the program, without its name, as UTF-8.
std::vector<std::string> KVLArguments(int argc, char** argv);

/// True when a person is at the other end of `stream`.
bool KVLIsTerminal(KVLStandardStream stream);

/// True when the terminal understands the codes that colours and editing are made of.
bool KVLTerminalTakesCodes();

/// The columns of the terminal behind standard error; 80 when there is no telling.
int KVLTerminalWidth();

/// From now on a signal that ends the program leaves the terminal as it is now.
void KVLGuardTerminal();

/// Opens the file `path` (UTF-8) to read its bytes. Null, with `errno` set, when that fails.
std::FILE* KVLOpenToRead(const std::string& path);

/// Why the library `shell`, named as for `MRBGetEntryPoint`, is not loaded: what the platform
/// says, without a full stop; empty when it says nothing.
std::string KVLWhyNotLoaded(const std::string& library);

/// True when the last write to a standard stream failed because nobody reads it any more, by the
/// `errno` that it left.
bool KVLIsReaderGone(int error);

/// Calls `handler` at every interrupt (Ctrl-C), in the middle of whatever is going on: in a signal
/// handler or on another thread. It may neither allocate nor take locks.
void KVLOnInterrupt(void (*handler)());

/// Writes `text` to standard error, unbuffered. May be called from a handler of interrupts.
void KVLWriteErrorNow(const char* text);

/// Ends the program at once, without any clean-up. May be called from a handler of interrupts.
[[noreturn]] void KVLEndNow(int exitCode);

enum class KVLTyped { Byte, Interrupt, WindowChange, Continue, End };

/// Waits for the next byte that is typed on standard input, or for what comes instead of it: an
/// interrupt, the terminal's new size, the program's going on after a stop, the end. Reads past the
/// buffer of `stdin`.
KVLTyped KVLReadTyped(char& byte);

#endif
