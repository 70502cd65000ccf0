#ifndef KVL_STRING_OPERATIONS_H
#define KVL_STRING_OPERATIONS_H

#include "KVLExport.h"
#include "KVLIter.h"
#include "MRBUnicodeString.h"

/// Stateless utilities on text. Positions count from 0. Nothing here fails but the making of the
/// two splitters' cursors.
///
///     for (const MRBUnicodeString& item : KVLStringOperations::SplitWithDepth(
///              "f(a,b),{c,d},e", ',', KVLStringOperations::DepthAll))
///       ...  // "f(a,b)", "{c,d}", "e"
class KVL_EXPORT KVLStringOperations {
 public:
  /// Bit flags: which pairs protect a separator between them from `SplitWithDepth`.
  enum DepthChars {
    DepthNone = 0,
    DepthParentheses = 1,  ///< ( and )
    DepthBraces = 2,       ///< { and }
    DepthBrackets = 4,     ///< [ and ]
    DepthQuotes = 8,       ///< two double quotes, with backslash escapes between them
    DepthAll = 15
  };

  KVLStringOperations() = delete;

  static bool StartsWith(const MRBUnicodeString& s, const MRBUnicodeString& prefix);
  static bool EndsWith(const MRBUnicodeString& s, const MRBUnicodeString& suffix);

  /// The number as `printf` writes it with "%d", "%u", "%ld", "%lu" and, for both floating-point
  /// types, "%g".
  static MRBUnicodeString FromNum(int value);
  static MRBUnicodeString FromNum(unsigned int value);
  static MRBUnicodeString FromNum(long value);
  static MRBUnicodeString FromNum(unsigned long value);
  static MRBUnicodeString FromNum(float value);
  static MRBUnicodeString FromNum(double value);

  /// The character at `i`, or NUL when `i` lies outside the text.
  static char GetCharAt(const MRBUnicodeString& s, int i);

  /// The pieces in their order with `sep` between each two. Takes the iteration, which is consumed.
  static MRBUnicodeString Join(KVLIter<MRBUnicodeString> pieces, const MRBUnicodeString& sep);

  /// The pieces of `s` between the separators, lazily. The iteration owns copies of both texts.
  ///
  /// Separators in a row give empty pieces, a leading one an empty first piece, a trailing one no
  /// empty last piece; the empty text has no pieces. `sep` must not be empty: the iteration would
  /// yield empty pieces without end.
  static KVLIter<MRBUnicodeString> Split(const MRBUnicodeString& s, const MRBUnicodeString& sep);

  /// As `Split` at the one character `sep`, but not inside the pairs that `depth` names.
  ///
  /// Pieces keep their brackets, quotes and backslashes. A quote counts at every depth, a bracket
  /// inside quotes does not. An opener without its closer takes the rest of the text into one
  /// piece; a closer that does not match the innermost opener is an ordinary character.
  static KVLIter<MRBUnicodeString> SplitWithDepth(const MRBUnicodeString& s, char sep,
                                                  DepthChars depth);

  /// The characters from `from` up to, not including, `to`. A negative position counts from the
  /// end. What lies outside the text is left out.
  static MRBUnicodeString SubStringBetween(const MRBUnicodeString& s, int from, int to);

  /// `s` without leading and trailing blanks. A blank is a character that is at most 32 when taken
  /// as a signed 8-bit number, hence also every byte from 0x80 up; `MRBUnicodeString::Strip` is the
  /// one that keeps the bytes of a UTF-8 text.
  static MRBUnicodeString Trim(const MRBUnicodeString& s);
};

#endif
