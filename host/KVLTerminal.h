#ifndef KVL_TERMINAL_H
#define KVL_TERMINAL_H

/// True when a person types what standard input gives.
bool KVLIsInputTerminal();

#endif
