#ifndef KVL_KIT_TEXT_H
#define KVL_KIT_TEXT_H

#include <charconv>
#include <cstdint>
#include <system_error>
#include <tuple>
#include <type_traits>
#include <utility>

#include "KVLResult.h"
#include "KVLStringOperations.h"
#include "KVLVector.h"
#include "MRBUnicodeString.h"

#if !defined(_WIN32)
#pragma GCC visibility push(hidden)
#endif

/// The text forms of plain data. What `Print` writes, `Parse` reads back to the same datum; neither
/// looks at the locale. Parsing is strict: the whole text must be the form, without blanks around
/// it. It returns 0, or 0x80070057 when the text has another form or the number does not fit, and
/// the datum is then untouched.
namespace kvl {

/// `text` between double quotes; a double quote, a backslash, a newline, a carriage return and a
/// tab inside are written \", \\, \n, \r and \t.
inline MRBUnicodeString Quote(const MRBUnicodeString& text) {
  MRBUnicodeString quoted = "\"";
  const char* const bytes = text;
  const int length = text.GetLengthInByte();
  int runStart = 0;
  for (int i = 0; i < length; ++i) {
    const char* escape = nullptr;
    switch (bytes[i]) {
      case '"':
        escape = "\\\"";
        break;
      case '\\':
        escape = "\\\\";
        break;
      case '\n':
        escape = "\\n";
        break;
      case '\r':
        escape = "\\r";
        break;
      case '\t':
        escape = "\\t";
        break;
      default:
        continue;
    }
    quoted += MRBUnicodeString(bytes + runStart, i - runStart);
    quoted += escape;
    runStart = i + 1;
  }
  quoted += MRBUnicodeString(bytes + runStart, length - runStart);
  return quoted += "\"";
}

/// Reads what `Quote` writes.
inline long Unquote(const MRBUnicodeString& text, MRBUnicodeString& data) {
  const char* const bytes = text;
  const int last = text.GetLengthInByte() - 1;
  if (last < 1 || bytes[0] != '"' || bytes[last] != '"') return KVLResult_InvalidArgument;
  MRBUnicodeString content;
  int runStart = 1;
  for (int i = 1; i < last; ++i) {
    if (bytes[i] == '"') return KVLResult_InvalidArgument;
    if (bytes[i] != '\\') continue;
    const char* character = nullptr;
    switch (i + 1 < last ? bytes[i + 1] : '\0') {
      case '"':
        character = "\"";
        break;
      case '\\':
        character = "\\";
        break;
      case 'n':
        character = "\n";
        break;
      case 'r':
        character = "\r";
        break;
      case 't':
        character = "\t";
        break;
      default:
        return KVLResult_InvalidArgument;
    }
    content += MRBUnicodeString(bytes + runStart, i - runStart);
    content += character;
    runStart = i + 2;
    ++i;
  }
  content += MRBUnicodeString(bytes + runStart, last - runStart);
  data = static_cast<MRBUnicodeString&&>(content);
  return KVLResult_Success;
}

inline bool BeginsWith(const MRBUnicodeString& text, char first) {
  return !text.IsEmpty() && *text.ConvertToChar() == first;
}

/// `text` without blanks at its ends.
inline MRBUnicodeString Stripped(const MRBUnicodeString& text) {
  return text.Strip(MRBUnicodeString::MRBStripBoth);
}

/// A decimal number; "-" is its only sign. A floating-point one may have an exponent, and may be
/// "inf" or "nan".
template <class Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
long Parse(const MRBUnicodeString& text, Number& data) {
  const char* const first = text;
  const char* const end = first + text.GetLengthInByte();
  Number number{};
  const std::from_chars_result read = std::from_chars(first, end, number);
  if (read.ec != std::errc() || read.ptr != end) return KVLResult_InvalidArgument;
  data = number;
  return KVLResult_Success;
}

/// The shortest form that reads back to the same number.
template <class Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
MRBUnicodeString Print(Number data) {
  // Which sign an operation without a result gives its "nan", the processor decides.
  if constexpr (std::is_floating_point_v<Number>)
    if (data != data) return "nan";
  char buffer[32];
  const std::to_chars_result written = std::to_chars(buffer, buffer + sizeof(buffer), data);
  return MRBUnicodeString(buffer, static_cast<int>(written.ptr - buffer));
}

/// "true" or "false".
inline long Parse(const MRBUnicodeString& text, bool& data) {
  const bool isTrue = text == "true";
  if (!isTrue && text != "false") return KVLResult_InvalidArgument;
  data = isTrue;
  return KVLResult_Success;
}

inline MRBUnicodeString Print(bool data) {
  return data ? "true" : "false";
}

/// The text itself; but a text that begins with a double quote is a quoted one: see `Quote`.
inline long Parse(const MRBUnicodeString& text, MRBUnicodeString& data) {
  if (BeginsWith(text, '"')) return Unquote(text, data);
  data = text;
  return KVLResult_Success;
}

inline MRBUnicodeString Print(const MRBUnicodeString& data) {
  return BeginsWith(data, '"') ? Quote(data) : data;
}

/// Splits the text of a record or list: `open`, items separated by "," outside brackets and quotes,
/// `close`; blanks around an item do not count. Appends the items to `items`, none for nothing but
/// blanks between the brackets. 0x80070057 when a bracket is missing or an item is empty.
inline long ParseItems(const MRBUnicodeString& text, char open, char close,
                       KVLVector<MRBUnicodeString>& items) {
  const int length = text.GetLengthInByte();
  const char* const bytes = text;
  if (length < 2 || bytes[0] != open || bytes[length - 1] != close) {
    return KVLResult_InvalidArgument;
  }
  const MRBUnicodeString content = text.SubString(1, length - 2);
  if (Stripped(content).IsEmpty()) return KVLResult_Success;
  // A separator at the very end would leave no trace among the pieces.
  if (KVLStringOperations::EndsWith(content, ",")) return KVLResult_InvalidArgument;
  KVLIter<MRBUnicodeString> pieces =
      KVLStringOperations::SplitWithDepth(content, ',', KVLStringOperations::DepthAll);
  for (const MRBUnicodeString& piece : pieces) {
    items.Append(Stripped(piece));
    if (items[items.GetCount() - 1].IsEmpty()) return KVLResult_InvalidArgument;
  }
  return KVLFailed(pieces.GetStatus()) ? pieces.GetStatus() : KVLResult_Success;
}

namespace detail {

template <class Result>
inline constexpr bool IsResultOfParsing =
    std::is_same_v<Result, bool> || std::is_same_v<Result, long>;

template <class Result>
long AsResult(Result result) {
  static_assert(IsResultOfParsing<Result>,
                "kvl: a function that parses or converts returns bool (true when it did) or long "
                "(0, or a failing code)");
  if constexpr (std::is_same_v<Result, bool>) {
    return result ? KVLResult_Success : KVLResult_InvalidArgument;
  } else {
    return result;
  }
}

}  // namespace detail

/// Reads "(a, b, ...)" into as many data, each by the `Parse` that belongs to it. Reads all of them
/// or touches none.
template <class... Data>
long ParseRecord(const MRBUnicodeString& text, Data&... data) {
  KVLVector<MRBUnicodeString> items;
  long result = ParseItems(text, '(', ')', items);
  if (KVLFailed(result)) return result;
  if (items.GetCount() != static_cast<int>(sizeof...(Data))) return KVLResult_InvalidArgument;
  std::tuple<Data...> read;
  std::apply(
      [&](Data&... datum) {
        int i = 0;
        const auto parse = [&](auto& target) {
          if (!KVLFailed(result)) result = detail::AsResult(Parse(items[i++], target));
        };
        (parse(datum), ...);
      },
      read);
  if (KVLFailed(result)) return result;
  std::tie(data...) = std::move(read);
  return KVLResult_Success;
}

/// "(a, b, ...)", each datum by the `Print` that belongs to it.
template <class... Data>
MRBUnicodeString PrintRecord(const Data&... data) {
  MRBUnicodeString text;
  const auto append = [&](const auto& datum) {
    text += text.IsEmpty() ? "(" : ", ";
    text += Print(datum);
  };
  (append(data), ...);
  return text += ")";
}

}  // namespace kvl

#if !defined(_WIN32)
#pragma GCC visibility pop
#endif

#endif
