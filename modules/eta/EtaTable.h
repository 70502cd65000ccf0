#ifndef ETA_TABLE_H
#define ETA_TABLE_H

#include "MRBUnicodeString.h"

namespace eta {

/// The base units of which all others are made: m, kg, s, A, K, mol, cd.
inline constexpr int BaseCount = 7;
inline constexpr const char* BaseSymbols[BaseCount] = {"m", "kg", "s", "A", "K", "mol", "cd"};

/// What is measured, as powers of the base units. Angles and ratios have no dimension.
struct Dimension {
  const char* name;
  signed char powers[BaseCount];
};

/// A unit with a symbol: numerator / denominator x 10^exponent of the base units of its dimension.
/// Kept apart, so that a conversion multiplies and divides by whole numbers as far as it can.
struct Unit {
  const char* symbol;
  const Dimension* dimension;
  double numerator;
  double denominator;
  int exponent;
  /// For a scale that does not begin at the zero of its dimension, how many hundredths of the unit
  /// lie between: the freezing point of water is 0 "degC", and 27315 hundredths from zero.
  int offset;
  bool takesPrefix;
};

struct Prefix {
  const char* symbol;
  int exponent;  ///< of 10
};

/// The tables, each ended by an entry without a name or symbol.
extern const Dimension Dimensions[];
extern const Unit Units[];
extern const Prefix Prefixes[];

}  // namespace eta

#endif
