#ifndef KVL_STANDARD_OUTPUT_H
#define KVL_STANDARD_OUTPUT_H

class MRBUnicodeString;

/// Writes `text`, NUL bytes included, and a newline to the process's standard output, and flushes
/// it. Output errors are ignored.
void KVLWriteLine(const MRBUnicodeString& text);

#endif
