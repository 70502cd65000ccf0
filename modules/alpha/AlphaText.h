#ifndef ALPHA_TEXT_H
#define ALPHA_TEXT_H

#include <cstdint>

#include "KVLResult.h"
#include "MRBUnicodeString.h"

/// The text forms of the module's data. Every text that `AlphaWrite` makes, `AlphaRead` reads back
/// to the same data; neither looks at the locale.
///
/// Reading is strict: the whole text must be the form, without blanks around it. It returns 0, or
/// 0x80070057 when the text has another form or the number does not fit, and `data` is then
/// untouched.

/// "true" or "false".
long AlphaRead(const MRBUnicodeString& text, bool& data);
/// A decimal number of 32 bits; "-" is its only sign. For the types "int" and "long".
long AlphaRead(const MRBUnicodeString& text, std::int32_t& data);
/// A decimal number, with an exponent or not, "inf" or "nan", each possibly after a "-".
long AlphaRead(const MRBUnicodeString& text, double& data);
/// The text itself; but a text that begins with a double quote is a quoted one: see `AlphaQuote`.
long AlphaRead(const MRBUnicodeString& text, MRBUnicodeString& data);

void AlphaWrite(bool data, MRBUnicodeString& text);
void AlphaWrite(std::int32_t data, MRBUnicodeString& text);
/// The shortest form that reads back to the same number.
void AlphaWrite(double data, MRBUnicodeString& text);
/// The text itself, quoted when it begins with a double quote.
void AlphaWrite(const MRBUnicodeString& data, MRBUnicodeString& text);

/// `data` between double quotes; a double quote, a backslash, a newline, a carriage return and a
/// tab inside are written \", \\, \n, \r and \t.
MRBUnicodeString AlphaQuote(const MRBUnicodeString& data);

#endif
