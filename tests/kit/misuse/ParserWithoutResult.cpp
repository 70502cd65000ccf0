// a function that parses returns bool
#include "KVLKit.h"
struct Colour {};
void ParseColour(const MRBUnicodeString&, Colour&);
MRBUnicodeString PrintColour(const Colour&);
KVL_TYPE(Colour, "Colour", ParseColour, PrintColour);
