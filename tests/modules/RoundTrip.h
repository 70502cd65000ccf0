#ifndef KVL_TESTS_ROUND_TRIP_H
#define KVL_TESTS_ROUND_TRIP_H

#include <rapidcheck.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "KVLKit.h"
#include "LoadedModules.h"

/// Properties of types, with data made at random: a value's text reads back to the same datum and
/// is written the same again, alone, in an "any", in a list of its type and in a list of any.
///
///     TEST_F(ZetaRoundTrip, Point) {
///       ExpectRoundTrips<Point>("Point", rc::gen::map(..., [](...) { return Point{...}; }));
///     }
///
/// A failure prints the smallest datum that it was found with, and what reproduces it.
namespace round_trip {

/// Whether the two data are one: bit by bit where "==" would not do.
inline bool IsSame(double a, double b) {
  return std::isnan(a) ? std::isnan(b) : std::memcmp(&a, &b, sizeof(a)) == 0;
}
template <class T>
bool IsSame(const T& a, const T& b) {
  return a == b;
}

/// Numbers of every size, and the ones that are easily got wrong.
inline rc::Gen<double> Doubles() {
  return rc::gen::weightedOneOf<double>(
      {{3, rc::gen::map(rc::gen::arbitrary<std::uint64_t>(),
                        [](std::uint64_t bits) {
                          double number;
                          std::memcpy(&number, &bits, sizeof(number));
                          return number;
                        })},
       {2, rc::gen::map(rc::gen::arbitrary<int>(), [](int number) { return number / 8.0; })},
       {1, rc::gen::element(0.0, -0.0, 0.1, 5e-324, 1.7976931348623157e308, HUGE_VAL, -HUGE_VAL,
                            std::nan(""))}});
}

/// Texts of bytes that mean something to one form or another.
inline rc::Gen<std::string> Texts() {
  const rc::Gen<char> byte = rc::gen::oneOf(
      rc::gen::element('"', '\\', '[', ']', '(', ')', '{', '}', ',', ' ', '\t', '\n', '\r', '\0'),
      rc::gen::element('N', 'U', 'L', '1', '.', '-', 'e', 't', 'x', '\xC3', '\xA9', '\xFF'),
      rc::gen::arbitrary<char>());
  return rc::gen::oneOf(rc::gen::container<std::string>(byte),
                        rc::gen::element<std::string>("NULL", "true", "1", "-0", "1.5", "nan",
                                                      "[1]", "\"\"", "a, b", "Point(1, 2)"));
}

inline rc::Gen<MRBUnicodeString> UnicodeStrings() {
  return rc::gen::map(Texts(), [](const std::string& text) {
    return MRBUnicodeString(text.data(), static_cast<int>(text.size()));
  });
}

inline std::string TextOf(const KVLCodeContext& context, const KVLCodeValue& value) {
  MRBUnicodeString text;
  RC_ASSERT(value.GetValueStr(context, text) == KVLResult_Success);
  return std::string(text.ConvertToChar(), static_cast<std::size_t>(text.GetLengthInByte()));
}

/// A fresh value of the type.
inline KVLSmartPtr<KVLCodeValue> Make(const KVLCodeContext& context, const std::string& typeName) {
  const KVLSmartPtr<const KVLCodeType> type = context.GetTypeFromName(typeName.c_str());
  RC_ASSERT(type);
  KVLSmartPtr<KVLCodeValue> value = type->CreateValue("value");
  RC_ASSERT(value);
  return value;
}

/// A fresh value of the same type, read from the value's text, which it writes again.
inline KVLSmartPtr<KVLCodeValue> Reread(const KVLCodeContext& context, const KVLCodeValue& value) {
  const std::string text = TextOf(context, value);
  RC_LOG() << value.GetTypeName().ConvertToChar() << ": " << text << '\n';
  KVLSmartPtr<KVLCodeValue> read = Make(context, value.GetTypeName().ConvertToChar());
  RC_ASSERT(
      read->SetValueStr(context, MRBUnicodeString(text.data(), static_cast<int>(text.size()))) ==
      KVLResult_Success);
  RC_ASSERT(TextOf(context, *read) == text);
  return read;
}

/// The data of the list's elements, each of which is of that type.
template <class T>
std::vector<T> ElementsOf(const KVLCodeContext& context, const KVLCodeValue& list,
                          const std::string& elementTypeName) {
  KVLVector<KVLSmartPtr<KVLCodeValue>> elements;
  RC_ASSERT(list.ListGetElements(context, elements, "element") == KVLResult_Success);
  std::vector<T> data;
  for (const KVLSmartPtr<KVLCodeValue>& element : elements) {
    RC_ASSERT(element->GetTypeName() == elementTypeName.c_str());
    data.push_back(*static_cast<const T*>(element->GetValuePtr()));
  }
  return data;
}

template <class T>
void AssertSame(const std::vector<T>& a, const std::vector<T>& b) {
  RC_ASSERT(a.size() == b.size());
  for (std::size_t i = 0; i < a.size(); ++i)
    RC_ASSERT(IsSame(a[i], b[i]));
}

/// Whether "any", and a list of any, reads the type's values as such: an "int64" or "long" comes
/// back as a whole number of the first type that has room for it.
enum class InAny { KeepsType, KeepsText };

/// Checks the type registered under the name, whose values hold a `T`, and where there is one, the
/// type of its lists.
template <class T>
void ExpectRoundTrips(const std::string& typeName, const rc::Gen<T>& data,
                      InAny inAny = InAny::KeepsType) {
  const KVLCodeContext context;
  const auto make = [&](const T& datum) {
    KVLSmartPtr<KVLCodeValue> value = Make(context, typeName);
    *static_cast<T*>(value->GetValuePtr()) = datum;
    return value;
  };
  EXPECT_TRUE(rc::check(typeName + " by its text", [&] {
    const T datum = *data;
    const KVLSmartPtr<KVLCodeValue> read = Reread(context, *make(datum));
    RC_ASSERT(IsSame(*static_cast<const T*>(read->GetValuePtr()), datum));
  }));
  EXPECT_TRUE(rc::check(typeName + " in any", [&] {
    const T datum = *data;
    const KVLSmartPtr<KVLCodeValue> any = Make(context, "any");
    RC_ASSERT(any->AssignFrom(context, *make(datum)) == KVLResult_Success);
    const KVLSmartPtr<KVLCodeValue> read = Reread(context, *any);
    if (inAny == InAny::KeepsText) return;
    const KVLCodeValue* const held = kvl::Unwrapped(*read);
    RC_ASSERT(held && held->GetTypeName() == typeName.c_str());
    RC_ASSERT(IsSame(*static_cast<const T*>(held->GetValuePtr()), datum));
  }));
  const auto check = [&](const std::string& listTypeName, bool keepsType) {
    EXPECT_TRUE(rc::check(typeName + " in " + listTypeName, [&] {
      const std::vector<T> all = *rc::gen::container<std::vector<T>>(data);
      const KVLSmartPtr<KVLCodeValue> list = Make(context, listTypeName);
      auto& elements = static_cast<KVLCodeListValue&>(*list).MakeOwnElements();
      for (const T& datum : all)
        elements.Append(make(datum));
      const KVLSmartPtr<KVLCodeValue> read = Reread(context, *list);
      if (keepsType) AssertSame(ElementsOf<T>(context, *read, typeName), all);
    }));
  };
  check(kvl::AnyListName, inAny == InAny::KeepsType);
  const std::string listTypeName = "KVLVector<" + typeName + ">";
  if (context.GetTypeFromName(listTypeName.c_str())) check(listTypeName, true);
}

}  // namespace round_trip

#endif
