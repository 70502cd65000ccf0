#include "KVLKit.h"

KVL_PUBLISH_TYPE(KVLCodeListValue::Elements);
KVL_DOC("_types/KVLVector<KVLCodeValue_var>",
        "A list of values of any types: \"[1, \\\"two\\\", [3]]\". Each element's form says its "
        "type, as with \"any\".");

KVL_LIST(bool);
KVL_DOC("_types/KVLVector<bool>", "A list of truth values: \"[true, false]\".");
KVL_LIST(std::int32_t);
KVL_DOC("_types/KVLVector<int>", "A list of whole numbers of 32 bits: \"[1, 2]\".");
KVL_LIST(std::int64_t);
KVL_DOC("_types/KVLVector<int64>", "A list of whole numbers of 64 bits: \"[1, 2]\".");
KVL_LIST(kvl::Long);
KVL_DOC("_types/KVLVector<long>", "A list of whole numbers of 32 bits: \"[1, 2]\".");
KVL_LIST(double);
KVL_DOC("_types/KVLVector<double>", "A list of numbers: \"[1, 2.5]\".");
KVL_LIST(MRBUnicodeString);
KVL_DOC("_types/KVLVector<string>",
        "A list of texts: \"[one, \\\"two, three\\\"]\". A text that holds a comma, a bracket or a "
        "quote, or blanks at its ends, is to be quoted.");
