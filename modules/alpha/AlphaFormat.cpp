#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string>

#include "KVLKit.h"
#include "shared/Scalar.h"
#include "shared/Utf8.h"

namespace {

using scalar::Scalar;

constexpr int WidestField = 10000;
constexpr int HighestPrecision = 1100;  // A double has at most 1074 digits behind its point.
constexpr std::size_t LongestText = 16 * 1024 * 1024;

// "[[fill]align][+][#][0][width][.precision][type]": how a value is written.
struct Form {
  std::string fill = " ";  // one character
  char align = 0;          // "<", ">", "^", or 0 where none is given
  bool hasPlus = false;
  bool hasPrefix = false;
  bool hasZeros = false;
  int width = 0;
  int precision = -1;  // none
  char type = 0;
};

[[noreturn]] void Refuse(const std::string& form, const char* why) {
  throw std::invalid_argument("form '" + form + "': " + why);
}

bool IsOneOf(char character, const char* characters) {
  return character != 0 && std::string(characters).find(character) != std::string::npos;
}

int ReadNumber(const std::string& form, std::size_t& i, int highest, const char* why) {
  const char* const end = form.data() + form.size();
  int number = 0;
  const std::from_chars_result read = std::from_chars(form.data() + i, end, number);
  if (read.ec != std::errc() || number < 0 || number > highest) Refuse(form, why);
  i = static_cast<std::size_t>(read.ptr - form.data());
  return number;
}

Form ReadForm(const std::string& text) {
  Form form;
  std::size_t i = 0;
  // A fill character is one that an alignment follows; it may have several bytes.
  const std::size_t fillEnd = text.empty() ? 0 : utf8::EndOfCharacter(text, 0);
  const auto at = [&](std::size_t j) { return j < text.size() ? text[j] : '\0'; };
  if (fillEnd > 0 && IsOneOf(at(fillEnd), "<>^")) {
    form.fill = text.substr(0, fillEnd);
    i = fillEnd;
  }
  if (IsOneOf(at(i), "<>^")) form.align = text[i++];
  if (at(i) == '+') form.hasPlus = text[i++] == '+';
  if (at(i) == '#') form.hasPrefix = text[i++] == '#';
  if (at(i) == '0') form.hasZeros = text[i++] == '0';
  if (IsOneOf(at(i), "123456789")) {
    form.width = ReadNumber(text, i, WidestField, "the width goes up to 10000");
  }
  if (at(i) == '.') {
    form.precision = ReadNumber(text, ++i, HighestPrecision, "the precision goes up to 1100");
  }
  if (i < text.size()) form.type = text[i++];
  if (i < text.size()) Refuse(text, "something follows the type");
  return form;
}

struct Written {
  std::string sign;    // and prefix: what zeros come behind
  std::string digits;  // or a text
};

Written WriteWhole(const std::string& text, const Form& form, std::int64_t number) {
  if (form.precision >= 0) Refuse(text, "a whole number has no precision");
  const int base = form.type == 'x' || form.type == 'X' ? 16
                   : form.type == 'o'                   ? 8
                   : form.type == 'b'                   ? 2
                                                        : 10;
  // Unsigned, since the lowest number has no opposite.
  const std::uint64_t magnitude =
      number < 0 ? ~static_cast<std::uint64_t>(number) + 1 : static_cast<std::uint64_t>(number);
  char buffer[64];
  const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof(buffer), magnitude, base);
  Written written{number < 0 ? "-" : form.hasPlus ? "+" : "", std::string(buffer, end.ptr)};
  if (form.hasPrefix && base != 10) {
    written.sign += base == 16 ? "0x" : base == 8 ? "0o" : "0b";
  }
  if (form.type == 'X') {
    for (char& digit : written.digits)
      if (digit >= 'a' && digit <= 'f') digit = static_cast<char>(digit - 'a' + 'A');
  }
  return written;
}

Written WriteReal(const std::string& text, const Form& form, double number) {
  if (form.hasPrefix) Refuse(text, "'#' goes with a whole number");
  const std::chars_format format = form.type == 'e'   ? std::chars_format::scientific
                                   : form.type == 'f' ? std::chars_format::fixed
                                                      : std::chars_format::general;
  char buffer[310 + HighestPrecision];
  char* const last = buffer + sizeof(buffer);
  const double magnitude = std::fabs(number);
  std::to_chars_result end{};
  if (form.precision >= 0) {
    end = std::to_chars(buffer, last, magnitude, format, form.precision);
  } else if (form.type != 0) {
    end = std::to_chars(buffer, last, magnitude, format);
  } else {
    end = std::to_chars(buffer, last, magnitude);
  }
  if (end.ec != std::errc()) Refuse(text, "the number is too long");
  return Written{std::signbit(number) && !std::isnan(number) ? "-"
                 : form.hasPlus                              ? "+"
                                                             : "",
                 std::string(buffer, end.ptr)};
}

Written WriteText(const std::string& text, const Form& form, std::string content) {
  if (form.hasPlus || form.hasPrefix || form.hasZeros) Refuse(text, "it is for numbers only");
  if (form.precision >= 0) {
    content = utf8::FirstCharacters(content, static_cast<std::size_t>(form.precision));
  }
  return Written{"", content};
}

std::string Bytes(const MRBUnicodeString& text) {
  return std::string(text.ConvertToChar(), static_cast<std::size_t>(text.GetLengthInByte()));
}

std::string TextOf(const KVLCodeContext& context, const kvl::Any& value) {
  MRBUnicodeString text;
  if (value && KVLFailed(value->GetValueStr(context, text))) {
    throw std::invalid_argument("the value cannot be written");
  }
  return Bytes(text);
}

std::string WriteField(const KVLCodeContext& context, const kvl::Any& value,
                       const std::string& text) {
  const Form form = ReadForm(text);
  const Scalar data = scalar::Read(value.Get());
  const bool isNumber = data.IsNumber();
  Written written;
  if (data.kind == Scalar::Whole && (form.type == 0 || IsOneOf(form.type, "dxXob"))) {
    written = WriteWhole(text, form, data.whole);
  } else if (isNumber && (form.type == 0 || IsOneOf(form.type, "efg"))) {
    written = WriteReal(text, form,
                        data.kind == Scalar::Real ? data.real : static_cast<double>(data.whole));
  } else if (form.type == 's' || (form.type == 0 && !isNumber)) {
    written = WriteText(text, form,
                        data.kind == Scalar::Text ? Bytes(*data.text) : TextOf(context, value));
  } else if (IsOneOf(form.type, "dxXobefgs")) {
    throw std::invalid_argument("form '" + text + "': the value is of type " +
                                Bytes(scalar::TypeNameOf(value.Get())));
  } else {
    Refuse(text, "the type is one of d x X o b e f g s");
  }
  const std::size_t length = written.sign.size() + utf8::CountCharacters(written.digits);
  const auto width = static_cast<std::size_t>(form.width);
  const std::size_t missing = width > length ? width - length : 0;
  const bool isFinite = data.kind != Scalar::Real || std::isfinite(data.real);
  if (form.hasZeros && !form.align && isFinite) {
    return written.sign + std::string(missing, '0') + written.digits;
  }
  const char align = form.align ? form.align : isNumber ? '>' : '<';
  const std::size_t before = align == '<' ? 0 : align == '>' ? missing : missing / 2;
  std::string field;
  for (std::size_t i = 0; i < before; ++i)
    field += form.fill;
  field += written.sign + written.digits;
  for (std::size_t i = before; i < missing; ++i)
    field += form.fill;
  return field;
}

std::string Format(const KVLCodeContext& context, const kvl::Any& value,
                   const std::string& pattern) {
  std::string result;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char character = pattern[i];
    const bool isDoubled = i + 1 < pattern.size() && pattern[i + 1] == character;
    if (character == '{' && !isDoubled) {
      const std::size_t end = pattern.find('}', i);
      if (end == std::string::npos) throw std::invalid_argument("'{' without '}' in the pattern");
      const std::string place = pattern.substr(i + 1, end - i - 1);
      if (!place.empty() && place[0] != ':') {
        throw std::invalid_argument("'{" + place + "}' is neither '{}' nor '{:form}'");
      }
      result += WriteField(context, value, place.empty() ? place : place.substr(1));
      i = end;
    } else {
      if (character == '}' && !isDoubled) {
        throw std::invalid_argument("'}' without '{' in the pattern");
      }
      if (character == '{' || character == '}') ++i;
      result += character;
    }
    if (result.size() > LongestText) {
      throw std::length_error("the text would be longer than 16 MiB");
    }
  }
  return result;
}

}  // namespace

KVL_FUNCTION(
    "scalar/format", "value, pattern = \"{}\"",
    "The pattern with the value in place of each \"{}\" or "
    "\"{:[[fill]align][+][#][0][width][.precision][type]}\". align: < > ^; +: a sign "
    "always; #: 0x, 0o or 0b; 0: zeros before the digits; width in characters; precision: "
    "digits behind the point (e, f), digits in all (g), longest text; type: d x X o b for "
    "whole numbers, e f g for numbers, s for text. \"{{\" and \"}}\" stand for braces. Does "
    "not look at the locale. Fails for a malformed pattern, or one for another type.",
    Format);
