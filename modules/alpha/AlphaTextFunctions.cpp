#include <cstdint>
#include <stdexcept>

#include "AlphaFunction.h"
#include "AlphaList.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLResult.h"

namespace {

using Value = KVLSmartPtr<KVLCodeValue>;

constexpr std::int64_t LongestRepetition = 16 * 1024 * 1024;

const MRBUnicodeString& Text(const AlphaArguments& arguments, int i) {
  return arguments.Get<AlphaString>(i);
}

Value Length(const AlphaArguments& arguments) {
  return AlphaResult<AlphaInt>(Text(arguments, 0).GetLengthInChar());
}

template <char First, char Last, char NewFirst>
Value ShiftLetters(const AlphaArguments& arguments) {
  MRBUnicodeString shifted;
  const MRBUnicodeString& text = Text(arguments, 0);
  for (int i = 0; i < text.GetLengthInByte(); ++i) {
    char character = text[static_cast<std::size_t>(i)];
    if (character >= First && character <= Last) {
      character = static_cast<char>(character - First + NewFirst);
    }
    shifted += MRBUnicodeString(&character, 1);
  }
  return AlphaResult<AlphaString>(shifted);
}

Value Strip(const AlphaArguments& arguments) {
  return AlphaResult<AlphaString>(Text(arguments, 0).Strip(MRBUnicodeString::MRBStripBoth));
}

Value Concat(const AlphaArguments& arguments) {
  return AlphaResult<AlphaString>(Text(arguments, 0) + Text(arguments, 1));
}

Value Repeat(const AlphaArguments& arguments) {
  const MRBUnicodeString& text = Text(arguments, 0);
  const std::int32_t count = arguments.Get<AlphaInt>(1);
  if (count < 0) throw std::invalid_argument("count must not be negative");
  if (std::int64_t{count} * text.GetLengthInByte() > LongestRepetition) {
    throw std::length_error("the text would be longer than 16 MiB");
  }
  MRBUnicodeString repeated;
  for (std::int32_t i = 0; i < count && !text.IsEmpty(); ++i)
    repeated += text;
  return AlphaResult<AlphaString>(repeated);
}

Value Join(const AlphaArguments& arguments) {
  MRBUnicodeString joined;
  const KVLCodeListValue::Elements* const elements = arguments.GetElements(0);
  const int count = elements ? elements->GetCount() : 0;
  for (int i = 0; i < count; ++i) {
    AlphaScalarValue<AlphaString> text("");
    if (KVLFailed(text.AssignFrom(arguments.GetContext(), *(*elements)[i])) &&
        KVLFailed((*elements)[i]->GetValueStr(arguments.GetContext(), text.GetData()))) {
      throw std::invalid_argument("an element cannot be written");
    }
    if (i > 0) joined += Text(arguments, 1);
    joined += text.GetData();
  }
  return AlphaResult<AlphaString>(joined);
}

Value Find(const AlphaArguments& arguments) {
  return AlphaResult<AlphaInt>(
      Text(arguments, 0)
          .SearchSubString(Text(arguments, 1), 0, MRBUnicodeString::MRBSearchForward));
}

KVLCodeObjectRegisterer Publish(AlphaFunction* function, int line) {
  return KVLCodeObjectRegisterer(KVLCodeEnv::GetDefault(), function, "text/" + function->GetName(),
                                 KVLSourceLocation(__FILE__, line, ""));
}

const KVLCodeObjectRegisterer length =
    Publish(new AlphaFunction("length", "int", {{"string"}}, "text", Length), __LINE__);
const KVLCodeObjectRegisterer upper = Publish(
    new AlphaFunction("upper", "string", {{"string"}}, "text", &ShiftLetters<'a', 'z', 'A'>),
    __LINE__);
const KVLCodeObjectRegisterer lower = Publish(
    new AlphaFunction("lower", "string", {{"string"}}, "text", &ShiftLetters<'A', 'Z', 'a'>),
    __LINE__);
const KVLCodeObjectRegisterer strip =
    Publish(new AlphaFunction("strip", "string", {{"string"}}, "text", Strip), __LINE__);
const KVLCodeObjectRegisterer concat = Publish(
    new AlphaFunction("concat", "string", {{"string"}, {"string"}}, "a, b", Concat), __LINE__);
const KVLCodeObjectRegisterer repeat =
    Publish(new AlphaFunction("repeat", "string", {{"string"}, {"int"}}, "text, count = 2", Repeat),
            __LINE__);
const KVLCodeObjectRegisterer join =
    Publish(new AlphaFunction("join", "string", {{AlphaListTypeName}, {"string"}},
                              "list, separator = \", \"", Join),
            __LINE__);
const KVLCodeObjectRegisterer find = Publish(
    new AlphaFunction("find", "int", {{"string"}, {"string"}}, "text, part", Find), __LINE__);

}  // namespace
