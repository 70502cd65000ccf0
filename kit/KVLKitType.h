#ifndef KVL_KIT_TYPE_H
#define KVL_KIT_TYPE_H

#include "KVLKitValue.h"

#if !defined(_WIN32)
#pragma GCC visibility push(hidden)
#endif

namespace kvl {

/// A published type: makes values of a C++ type.
class Type final : public KVLCodeType {
 public:
  /// `table` is one of any kind but `List`; `enumValues` names the values of an enumeration,
  /// separated by ",", and is null for any other type. Both are borrowed for ever.
  explicit Type(const TypeTable& typeTable, const char* enumValues = nullptr)
      : KVLCodeType(typeTable.name), table(typeTable), enumValueNames(enumValues) {}
  ~Type() override = default;

  MRBUnicodeString GetParentTypeName() const override { return table.parent; }
  bool GetEnumValues(KVLVector<MRBUnicodeString>& values) const override {
    if (!enumValueNames) return false;
    for (const MRBUnicodeString& value : KVLStringOperations::Split(enumValueNames, ","))
      values.Append(Stripped(value));
    return true;
  }
  /// Any value may be assigned to one of the type "any", and the other way round.
  bool IsDummy() const override { return table.kind == TypeTable::Any; }
  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString& valueName) const override {
    return MakeValue(table, valueName);
  }

 private:
  const TypeTable& table;
  const char* const enumValueNames;
};

/// A published type of lists. Its text is "[", the elements separated by ",", and "]"; blanks
/// around an element do not count. A string is always written between quotes, and so is any other
/// element whose text would be cut. Elements of a list of any: see `AnyValue`. Lists nest 100 deep.
class ListType final : public KVLCodeListType {
 public:
  /// `table` is one of kind `List`, borrowed for ever.
  explicit ListType(const TypeTable& typeTable)
      : KVLCodeListType(NameOf(typeTable)), table(typeTable) {}
  ~ListType() override = default;

  MRBUnicodeString GetParentTypeName() const override { return table.parent; }
  bool IsList(MRBUnicodeString* elementTypeName) const override {
    if (elementTypeName) {
      *elementTypeName = table.element ? NameOf(*table.element) : MRBUnicodeString("any");
    }
    return true;
  }
  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString& valueName) const override {
    return MakeValue(table, valueName);
  }
  /// Returns 0, or the code of what could not be read, and `value` is untouched. "NULL" resets the
  /// value.
  long Parse(const KVLCodeContext& context, const MRBUnicodeString& text,
             KVLCodeValue& value) const override {
    if (text == "NULL") {
      value.Reset();
      return KVLResult_Success;
    }
    KVLCodeListValue::Elements elements;
    const long result = detail::ReadElements(context, text, table.element, 1, elements);
    if (KVLFailed(result)) return result;
    static_cast<KVLCodeListValue&>(value).MakeOwnElements() = std::move(elements);
    return KVLResult_Success;
  }
  /// Returns 0, or the code of the element that could not be written, and `text` is untouched.
  long Render(const KVLCodeContext& context, const void* data,
              MRBUnicodeString& text) const override {
    return detail::WriteElements(context, *static_cast<const KVLCodeListValue::Elements*>(data),
                                 table.element, 1, text);
  }

 private:
  const TypeTable& table;
};

namespace detail {

// The enumerators' names as the macro got them, "X, Y, Z", and their values, matched by position.
template <class Enum>
struct EnumEntries {
  const char* names;
  const Enum* values;
  int count;
};

template <class Enum>
constexpr void RefuseValues() {
  static_assert(IsNever<Enum>, "kvl: an enumeration has up to 32 values");
}

// The name at `begin`, which a "," or the end ends; sets `begin` behind it.
inline MRBUnicodeString NextName(const char*& begin) {
  while (*begin == ' ' || *begin == ',')
    ++begin;
  const char* const first = begin;
  while (*begin && *begin != ',' && *begin != ' ')
    ++begin;
  return MRBUnicodeString(first, static_cast<int>(begin - first));
}

template <class Enum>
long EnumFromText(const EnumEntries<Enum>& entries, const MRBUnicodeString& text, Enum& data) {
  const char* names = entries.names;
  for (int i = 0; i < entries.count; ++i) {
    if (NextName(names) != text) continue;
    data = entries.values[i];
    return KVLResult_Success;
  }
  return KVLResult_InvalidArgument;
}

// A number that is none of the values is written as such, so that it can be seen.
template <class Enum>
MRBUnicodeString EnumToText(const EnumEntries<Enum>& entries, Enum data) {
  const char* names = entries.names;
  for (int i = 0; i < entries.count; ++i) {
    const MRBUnicodeString enumerator = NextName(names);
    if (entries.values[i] == data) return enumerator;
  }
  return Print(static_cast<std::int64_t>(data));
}

}  // namespace detail

}  // namespace kvl

#if !defined(_WIN32)
#pragma GCC visibility pop
#endif

#endif
