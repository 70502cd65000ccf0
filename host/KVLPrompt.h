#ifndef KVL_PROMPT_H
#define KVL_PROMPT_H

class KVLModules;
class KVLSession;

/// Tells on standard error what `modules` has loaded and refused, in the terminal's width.
void KVLGreet(const KVLModules& modules);

/// Asks for lines until the user ends it, and runs each, whatever the former ones returned. Returns
/// `KVLResult_Success`, or what a line returned that asked to quit.
long KVLRunPrompt(KVLSession& session);

#endif
