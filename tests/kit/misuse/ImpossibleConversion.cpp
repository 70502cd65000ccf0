// C++ does not convert these types by itself
#include "KVLKit.h"
struct Colour {};
bool Parse(const MRBUnicodeString&, Colour&);
MRBUnicodeString Print(const Colour&);
KVL_TYPE(Colour, "Colour", ::Parse, ::Print);
KVL_CONVERSION(Colour, double);
