#include "KVLPlainReader.h"

#include <cstdio>

#include "KVLPlatform.h"

KVLLineReader::Outcome KVLPlainReader::Read(std::string& line) {
  line.clear();
  if (KVLIsTerminal(KVLStandardError)) std::fputs(Prompt, stderr);
  while (true) {
    char byte = 0;
    switch (KVLReadTyped(byte)) {
      case KVLTyped::Byte:
        if (byte == '\n') return Line;
        line += byte;
        break;
      case KVLTyped::Interrupt:
        return Abandoned;
      case KVLTyped::End:
        return line.empty() ? End : Line;
      case KVLTyped::WindowChange:
      case KVLTyped::Continue:
        break;  // the terminal's own affair
    }
  }
}
