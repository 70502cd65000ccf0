#ifndef KVL_SHELL_EXPORT_TEXT_H
#define KVL_SHELL_EXPORT_TEXT_H

#include <string>

#include "KVLShellModel.h"

/// `bytes` as UTF-8 that every reader accepts: what is not, and every control character but tab and
/// newline, becomes U+FFFD.
std::string KVLShellUtf8(const std::string& bytes);

/// `bytes` as text between the tags, or between the quotes of an attribute, of HTML.
std::string KVLShellHtmlText(const std::string& bytes);

/// "file:line <detail>", without what is not known.
std::string KVLShellPlaceText(const KVLShellModelPlace& place);

/// "in", "out", "in/out" or, for a parameter without a direction, "none".
const char* KVLShellDirectionText(const KVLShellModelParam& param);

/// "1 function", "2 functions".
std::string KVLShellCountText(std::size_t count, const std::string& noun);

#endif
