#include "KVLShellSyntax.h"

namespace {

bool IsLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         character == '_';
}

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

}  // namespace

bool KVLShellIsIdentifier(const MRBUnicodeString& text) {
  const char* const bytes = text.ConvertToChar();
  for (int i = 0; i < text.GetLengthInByte(); ++i) {
    if (!IsLetter(bytes[i]) && (i == 0 || !IsDigit(bytes[i]))) return false;
  }
  return !text.IsEmpty();
}

MRBUnicodeString KVLShellQuote(const MRBUnicodeString& text) {
  MRBUnicodeString quoted = "\"";
  const char* const bytes = text.ConvertToChar();
  int start = 0;
  for (int i = 0; i < text.GetLengthInByte(); ++i) {
    const char* const escape = bytes[i] == '"'    ? "\\\""
                               : bytes[i] == '\\' ? "\\\\"
                               : bytes[i] == '\n' ? "\\n"
                               : bytes[i] == '\r' ? "\\r"
                               : bytes[i] == '\t' ? "\\t"
                                                  : nullptr;
    if (!escape) continue;
    quoted += MRBUnicodeString(bytes + start, i - start);
    quoted += escape;
    start = i + 1;
  }
  quoted += MRBUnicodeString(bytes + start, text.GetLengthInByte() - start);
  quoted += "\"";
  return quoted;
}

bool KVLShellIsBlank(char character) {
  return character == ' ' || character == '\t' || character == '\r' || character == '\v' ||
         character == '\f';
}

bool KVLShellIsStatementEnd(char character) {
  return character == ';' || character == '\n';
}

bool KVLShellIsWordByte(char character) {
  return !KVLShellIsBlank(character) && !KVLShellIsStatementEnd(character) && character != ',' &&
         character != '(' && character != ')' && character != '[' && character != ']' &&
         character != '{' && character != '}' && character != '"' && character != '=';
}
