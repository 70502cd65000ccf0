#ifndef KVL_SHELL_COMPLETE_H
#define KVL_SHELL_COMPLETE_H

#include <vector>

#include "KVLShellSession.h"

/// What a text may go on with.
struct KVLShellCompletion {
  int replaceFrom = 0;                  ///< the byte from which on a word replaces the text
  std::vector<MRBUnicodeString> words;  ///< sorted, each once
};

/// What `text`, written up to the cursor, may go on with: commands, options and their values,
/// paths, names of parameters, values of enumerations, names of the session. Looks into one
/// environment only and creates none. A word that ends with "/", "(", "=" or a blank is to be gone
/// on with.
KVLShellCompletion KVLShellComplete(const MRBUnicodeString& text, const KVLShellSession& session);

#endif
