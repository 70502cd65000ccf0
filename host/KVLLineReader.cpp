#include "KVLLineReader.h"

#include "KVLPlainReader.h"
#if defined(KVL_HAS_LIBEDIT)
#include "KVLEditReader.h"
#endif

std::unique_ptr<KVLLineReader> KVLLineReader::Make(const KVLShellEntries& entries) {
#if defined(KVL_HAS_LIBEDIT)
  if (std::unique_ptr<KVLLineReader> reader = KVLEditReader::Make(entries)) return reader;
#else
  (void)entries;
#endif
  return std::make_unique<KVLPlainReader>();
}
