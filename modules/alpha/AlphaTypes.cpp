#include "KVLKit.h"

KVL_DOC("_types", "The types of values, by their names.");
KVL_DOC("_members", "The methods of the types, by the types' names.");

KVL_PUBLISH_TYPE(bool);
KVL_DOC("_types/bool", "A truth value: \"true\" or \"false\".");

KVL_PUBLISH_TYPE(std::int32_t);
KVL_DOC("_types/int", "A whole number of 32 bits: -2147483648 to 2147483647.");

KVL_PUBLISH_TYPE(std::int64_t);
KVL_DOC("_types/int64", "A whole number of 64 bits.");

KVL_PUBLISH_TYPE(kvl::Long);
KVL_DOC("_types/long",
        "A whole number of 32 bits on every platform; as the result of a conversion, a code.");

KVL_PUBLISH_TYPE(double);
KVL_DOC("_types/double",
        "A floating-point number of 64 bits, \"inf\", \"-inf\" or \"nan\"; written in the shortest "
        "form that reads back the same.");

KVL_PUBLISH_TYPE(MRBUnicodeString);
KVL_DOC("_types/string",
        "A text of bytes, by custom UTF-8. Its text form is the text itself; one that begins with "
        "a double quote is quoted, with \\\" \\\\ \\n \\r \\t for what cannot stand there.");

KVL_PUBLISH_TYPE(void);
KVL_DOC("_types/void", "Of a function that returns nothing: its only text is the empty one.");

KVL_PUBLISH_TYPE(kvl::Any);
KVL_DOC("_types/any",
        "A value of whatever type, or nothing (\"NULL\"). Its text is read by its form: a quoted "
        "text, a list, true or false, a whole number, a number, a type's name before \"(\", else a "
        "text.");
