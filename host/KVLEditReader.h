#ifndef KVL_EDIT_READER_H
#define KVL_EDIT_READER_H

#include <histedit.h>

#include <cstdio>

#include "KVLHistoryFile.h"
#include "KVLLineReader.h"

/// Lines that can be edited, from libedit.
class KVLEditReader : public KVLLineReader {
 public:
  /// Null when the terminal cannot do it.
  static std::unique_ptr<KVLLineReader> Make(const KVLShellEntries& entries);

  ~KVLEditReader() override;
  KVLEditReader(const KVLEditReader&) = delete;
  KVLEditReader& operator=(const KVLEditReader&) = delete;

  Outcome Read(std::string& line) override;

 private:
  KVLEditReader(std::FILE* stream, const KVLShellEntries& entries);

  // What libedit calls.
  static char* GetPrompt(EditLine* editor);
  static int ReadCharacter(EditLine* editor, wchar_t* character);
  static unsigned char CompleteLine(EditLine* editor, int character);

  void Keep(const std::string& line);
  unsigned char Complete();
  void Offer(const std::vector<std::string>& words);

  std::FILE* screen;  // what standard error leads to, with a buffer
  const KVLShellEntries& shell;
  EditLine* editor;
  History* history;
  KVLHistoryFile file;
  bool wasInterrupted = false;
};

#endif
