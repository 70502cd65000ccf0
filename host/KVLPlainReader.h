#ifndef KVL_PLAIN_READER_H
#define KVL_PLAIN_READER_H

#include "KVLLineReader.h"

/// Lines as the terminal gives them.
class KVLPlainReader : public KVLLineReader {
 public:
  Outcome Read(std::string& line) override;
};

#endif
