#ifndef KVL_KIT_VALUE_H
#define KVL_KIT_VALUE_H

#include "KVLCodeContext.h"
#include "KVLKitTraits.h"

#if !defined(_WIN32)
#pragma GCC visibility push(hidden)
#endif

namespace kvl {

/// A value of a type that is not known beforehand: a parameter or result of type "any". Shares the
/// value; empty when nothing was given.
class Any {
 public:
  Any() = default;
  Any(KVLSmartPtr<KVLCodeValue> anyValue) : value(std::move(anyValue)) {}

  KVLCodeValue* Get() const { return value.Get(); }
  KVLCodeValue* operator->() const { return value.Get(); }
  KVLCodeValue& operator*() const { return *value; }
  explicit operator bool() const { return !value.IsNull(); }
  const KVLSmartPtr<KVLCodeValue>& GetValue() const { return value; }

 private:
  KVLSmartPtr<KVLCodeValue> value;
};

/// What a value of type "any" holds, or the value itself when it is of another type; null when it
/// holds nothing.
inline const KVLCodeValue* Unwrapped(const KVLCodeValue& value) {
  if (value.GetTypeName() != "any") return &value;
  const void* const data = value.GetValuePtr();
  return data ? static_cast<const Any*>(data)->Get() : nullptr;
}

/// A value of a published type: an argument, a result, a constant, an element. The datum lies in
/// the value where it is small; or it is a variable of the module itself.
class Value final : public KVLCodeValue {
 public:
  /// The default of the type, which is one of kind `Data` or `Void`.
  Value(const TypeTable& typeTable, const MRBUnicodeString& valueName)
      : KVLCodeValue(valueName, typeTable.name), table(typeTable) {
    if (table.kind == TypeTable::Void) return;
    data = table.size <= sizeof(storage) ? storage : ::operator new(table.size);
    table.construct(data);
  }
  /// A window on `*variable`, which must outlive the value.
  Value(const TypeTable& typeTable, const MRBUnicodeString& valueName, void* variable)
      : KVLCodeValue(valueName, typeTable.name), table(typeTable), data(variable), isOwner(false) {}
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;
  ~Value() override {
    if (!data || !isOwner) return;
    table.destroy(data);
    if (data != storage) ::operator delete(data);
  }

  void* GetValuePtr() const override { return data; }
  bool IsReadOnly() const override { return isReadOnly; }
  void Reset() override {
    if (!data || isReadOnly) return;
    table.destroy(data);
    table.construct(data);
  }

  long GetValueStr(const KVLCodeContext&, MRBUnicodeString& text) const override {
    text = data ? table.print(data) : MRBUnicodeString();
    return KVLResult_Success;
  }

  /// 0x80070057 when the text is not of the type's form, 0x80004005 for a value that is read-only;
  /// the content is then as it was.
  long SetValueStr(const KVLCodeContext&, const MRBUnicodeString& text) override {
    if (isReadOnly) return KVLResult_Failure;
    if (data) return table.parse(text, data);
    return text.IsEmpty() ? KVLResult_Success : KVLResult_InvalidArgument;
  }

  /// Between equal types copies the datum; what an "any" holds is assigned in its place.
  long AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) override {
    if (isReadOnly) return KVLResult_Failure;
    if (source.GetTypeName() == GetTypeName()) {
      const void* const sourceData = source.GetValuePtr();
      if (data && sourceData) {
        table.assign(data, sourceData);
        return KVLResult_Success;
      }
    } else if (const KVLCodeValue* const inner = Unwrapped(source); inner != &source) {
      return inner ? AssignFrom(context, *inner) : KVLResult_Failure;
    }
    return KVLCodeValue::AssignFrom(context, source);
  }

  void MakeReadOnly() { isReadOnly = true; }

  /// The datum, which is of the C++ type of the table.
  template <class T>
  T& Get() const {
    return *static_cast<T*>(data);
  }

 private:
  const TypeTable& table;
  void* data = nullptr;
  bool isOwner = true;
  bool isReadOnly = false;
  alignas(std::max_align_t) unsigned char storage[32];
};

/// A value of type "any": takes a copy of whatever is assigned to it. Its text is that of what it
/// holds, quoted where it would be read as something else. A text is read as the first of these
/// that it is the form of:
///
/// - text that begins with a double quote: "string", quoted; it must be well formed;
/// - "NULL", and the empty text: nothing;
/// - text between "[" and "]": a list of any;
/// - "true" or "false": "bool";
/// - a decimal number without point and exponent: "int", or "int64" where it does not fit 32 bits;
/// - another number: "double";
/// - the name of a registered type before "(": a value of that type, whose text is what follows the
///   name, or what is quoted between the parentheses;
/// - any other text: "string".
class AnyValue final : public KVLCodeValue {
 public:
  explicit AnyValue(const MRBUnicodeString& valueName) : KVLCodeValue(valueName, "any") {}
  AnyValue(const MRBUnicodeString& valueName, Any anyValue)
      : KVLCodeValue(valueName, "any"), held(std::move(anyValue)) {}
  ~AnyValue() override = default;

  void* GetValuePtr() const override { return held ? const_cast<Any*>(&held) : nullptr; }
  void Reset() override { held = Any(); }
  long GetValueStr(const KVLCodeContext& context, MRBUnicodeString& text) const override;
  long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) override;
  /// 0x80004005 when the source's type makes no copy.
  long AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) override;

  const Any& Get() const { return held; }
  void Set(Any anyValue) { held = std::move(anyValue); }

 private:
  Any held;
};

/// A list: as the kernel's own, but takes a list out of an "any" too.
class ListValue final : public KVLCodeListValue {
 public:
  using KVLCodeListValue::KVLCodeListValue;
  ~ListValue() override = default;

  long AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) override {
    if (const KVLCodeValue* const inner = Unwrapped(source); inner != &source) {
      return inner ? AssignFrom(context, *inner) : KVLResult_Failure;
    }
    return KVLCodeListValue::AssignFrom(context, source);
  }

  /// The elements, or null.
  const Elements* Get() const { return static_cast<const Elements*>(GetValuePtr()); }
};

/// A fresh value of the type; a list has no elements yet.
inline KVLSmartPtr<KVLCodeValue> MakeValue(const TypeTable& table, const MRBUnicodeString& name) {
  switch (table.kind) {
    case TypeTable::Any:
      return KVLSmartPtr<KVLCodeValue>(new AnyValue(name));
    case TypeTable::List: {
      ListValue* const list = new ListValue(name, NameOf(table));
      const KVLSmartPtr<KVLCodeValue> value(list);
      (void)list->MakeOwnElements();
      return value;
    }
    case TypeTable::Data:
    case TypeTable::Void:
      break;
  }
  return KVLSmartPtr<KVLCodeValue>(new Value(table, name));
}

/// Makes a value that `MakeValue` made as if it were fresh.
inline void Renew(const TypeTable& table, KVLCodeValue& value) {
  if (table.kind == TypeTable::List) {
    (void)static_cast<ListValue&>(value).MakeOwnElements();
  } else {
    value.Reset();
  }
}

/// A value of a published C++ type that holds `data`.
template <class T>
KVLSmartPtr<KVLCodeValue> MakeValueOf(const T& data, const MRBUnicodeString& name = "") {
  Value* const value = new Value(TableOf<T>, name);
  value->template Get<T>() = data;
  return KVLSmartPtr<KVLCodeValue>(value);
}

template <>
inline constexpr TypeTable TableOf<Any> = {"any",   "",          nullptr, TypeTable::Any,
                                           false,   sizeof(Any), nullptr, nullptr,
                                           nullptr, nullptr,     nullptr};

namespace detail {

inline constexpr int DeepestNesting = 100;

using Elements = KVLCodeListValue::Elements;

long ReadElements(const KVLCodeContext& context, const MRBUnicodeString& text,
                  const TypeTable* element, int depth, Elements& elements);
long WriteElements(const KVLCodeContext& context, const Elements& elements,
                   const TypeTable* element, int depth, MRBUnicodeString& text);

template <class T>
KVLSmartPtr<KVLCodeValue> ReadAs(const MRBUnicodeString& text) {
  T data{};
  if (KVLFailed(Parse(text, data))) return nullptr;
  return MakeValueOf(data);
}

inline KVLSmartPtr<KVLCodeValue> ReadAnyList(const KVLCodeContext& context,
                                             const MRBUnicodeString& text, int depth) {
  ListValue* const list = new ListValue("", AnyListName);
  const KVLSmartPtr<KVLCodeValue> value(list);
  if (text == "NULL") return value;
  if (KVLFailed(ReadElements(context, text, nullptr, depth, list->MakeOwnElements()))) {
    return nullptr;
  }
  return value;
}

inline bool IsIdentifierByte(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') || byte == '_';
}

inline int IdentifierLength(const MRBUnicodeString& text) {
  int length = 0;
  while (length < text.GetLengthInByte() && IsIdentifierByte(text.ConvertToChar()[length]))
    ++length;
  return length;
}

// "Name(...)", or "Name("...")" for a type whose text is not in parentheses, where a type is
// registered under the name; null otherwise, and when the type does not read the text.
inline KVLSmartPtr<KVLCodeValue> ReadNamed(const KVLCodeContext& context,
                                           const MRBUnicodeString& text) {
  const int nameLength = IdentifierLength(text);
  const int length = text.GetLengthInByte() - nameLength;
  if (nameLength == 0 || length < 2 || text.ConvertToChar()[nameLength] != '(') return nullptr;
  const KVLSmartPtr<const KVLCodeType> type =
      context.GetTypeFromName(text.SubString(0, nameLength));
  if (!type) return nullptr;
  KVLSmartPtr<KVLCodeValue> value = type->CreateValue("");
  if (!value) return nullptr;
  MRBUnicodeString unquoted;
  const bool isQuoted = text.ConvertToChar()[text.GetLengthInByte() - 1] == ')' &&
                        !KVLFailed(Unquote(text.SubString(nameLength + 1, length - 2), unquoted));
  if (isQuoted && !KVLFailed(value->SetValueStr(context, unquoted))) return value;
  if (KVLFailed(value->SetValueStr(context, text.SubString(nameLength, length)))) return nullptr;
  return value;
}

// What the text is read as when nothing says its type; null for a text that is malformed.
inline KVLSmartPtr<KVLCodeValue> ReadAny(const KVLCodeContext& context,
                                         const MRBUnicodeString& text, int depth) {
  if (BeginsWith(text, '"')) return ReadAs<MRBUnicodeString>(text);
  if (BeginsWith(text, '[')) return ReadAnyList(context, text, depth + 1);
  if (KVLSmartPtr<KVLCodeValue> value = ReadAs<bool>(text)) return value;
  if (KVLSmartPtr<KVLCodeValue> value = ReadAs<std::int32_t>(text)) return value;
  if (KVLSmartPtr<KVLCodeValue> value = ReadAs<std::int64_t>(text)) return value;
  if (KVLSmartPtr<KVLCodeValue> value = ReadAs<double>(text)) return value;
  if (KVLSmartPtr<KVLCodeValue> value = ReadNamed(context, text)) return value;
  return ReadAs<MRBUnicodeString>(text);
}

inline bool IsPlainNumber(const MRBUnicodeString& text) {
  std::int64_t number = 0;
  return !KVLFailed(Parse(text, number));
}

// The text of a value from which `ReadAny` reads it back, as long as its type is registered under a
// name that is an identifier.
inline long WriteAny(const KVLCodeContext& context, const KVLCodeValue& value, int depth,
                     MRBUnicodeString& text) {
  const MRBUnicodeString& typeName = value.GetTypeName();
  if (typeName == AnyListName) {
    const void* const data = value.GetValuePtr();
    if (data)
      return WriteElements(context, *static_cast<const Elements*>(data), nullptr, depth + 1, text);
    text = "NULL";
    return KVLResult_Success;
  }
  if (typeName == "any") {
    const KVLCodeValue* const inner = Unwrapped(value);
    if (inner)
      return depth < DeepestNesting ? WriteAny(context, *inner, depth + 1, text)
                                    : KVLResult_InvalidArgument;
    text = "NULL";
    return KVLResult_Success;
  }
  if (typeName == "string" && value.GetValuePtr()) {
    text = Quote(*static_cast<const MRBUnicodeString*>(value.GetValuePtr()));
    return KVLResult_Success;
  }
  const long result = value.GetValueStr(context, text);
  if (KVLFailed(result)) return result;
  if (typeName == "double") {
    // A whole number would read back as an "int".
    if (IsPlainNumber(text)) text += ".0";
  } else if (BeginsWith(text, '(')) {
    text = typeName + text;
  } else if (value.IsList(context) == KVLResult_Success) {
    // Reads back as a list of any.
  } else if (typeName != "bool" && typeName != "int" && typeName != "int64" && typeName != "long") {
    const bool isNamed = IdentifierLength(typeName) == typeName.GetLengthInByte();
    text = isNamed ? typeName + "(" + Quote(text) + ")" : Quote(text);
  }
  return KVLResult_Success;
}

// One element of a typed list. A text that would be cut, or taken for a quoted one, is quoted.
inline long ReadElement(const KVLCodeContext& context, const MRBUnicodeString& text,
                        KVLCodeValue& element) {
  if (!BeginsWith(text, '"') || element.GetTypeName() == "string") {
    return element.SetValueStr(context, text);
  }
  MRBUnicodeString unquoted;
  const long result = Unquote(text, unquoted);
  return KVLFailed(result) ? result : element.SetValueStr(context, unquoted);
}

inline bool IsOneItem(const MRBUnicodeString& text) {
  KVLVector<MRBUnicodeString> items;
  return !BeginsWith(text, '"') && !KVLFailed(ParseItems("[" + text + "]", '[', ']', items)) &&
         items.GetCount() == 1 && items[0] == text;
}

inline long WriteElement(const KVLCodeContext& context, const KVLCodeValue& element,
                         MRBUnicodeString& text) {
  if (element.GetTypeName() == "string" && element.GetValuePtr()) {
    text = Quote(*static_cast<const MRBUnicodeString*>(element.GetValuePtr()));
    return KVLResult_Success;
  }
  const long result = element.GetValueStr(context, text);
  if (!KVLFailed(result) && !IsOneItem(text)) text = Quote(text);
  return result;
}

inline long ReadElements(const KVLCodeContext& context, const MRBUnicodeString& text,
                         const TypeTable* element, int depth, Elements& elements) {
  if (depth > DeepestNesting) return KVLResult_InvalidArgument;
  KVLVector<MRBUnicodeString> items;
  const long result = ParseItems(text, '[', ']', items);
  if (KVLFailed(result)) return result;
  elements.Reserve(items.GetCount());
  for (const MRBUnicodeString& item : items) {
    KVLSmartPtr<KVLCodeValue> value;
    if (!element) {
      value = item == "NULL" ? ReadAnyList(context, item, depth) : ReadAny(context, item, depth);
      if (!value) return KVLResult_InvalidArgument;
    } else {
      value = MakeValue(*element, "");
      const long elementResult = ReadElement(context, item, *value);
      if (KVLFailed(elementResult)) return elementResult;
    }
    elements.Append(std::move(value));
  }
  return KVLResult_Success;
}

inline long WriteElements(const KVLCodeContext& context, const Elements& elements,
                          const TypeTable* element, int depth, MRBUnicodeString& text) {
  // A list may have been made to hold itself.
  if (depth > DeepestNesting) return KVLResult_InvalidArgument;
  MRBUnicodeString written = "[";
  for (int i = 0; i < elements.GetCount(); ++i) {
    if (!elements[i]) return KVLResult_InvalidArgument;
    MRBUnicodeString elementText;
    const long result = element ? WriteElement(context, *elements[i], elementText)
                                : WriteAny(context, *elements[i], depth, elementText);
    if (KVLFailed(result)) return result;
    if (i > 0) written += ",";
    written += elementText;
  }
  text = written += "]";
  return KVLResult_Success;
}

}  // namespace detail

inline long AnyValue::GetValueStr(const KVLCodeContext& context, MRBUnicodeString& text) const {
  if (!held) {
    text = "NULL";
    return KVLResult_Success;
  }
  if (held->GetTypeName() != "string" || !held->GetValuePtr()) {
    return detail::WriteAny(context, *held, 0, text);
  }
  const MRBUnicodeString& data = *static_cast<const MRBUnicodeString*>(held->GetValuePtr());
  const KVLSmartPtr<KVLCodeValue> read =
      data.IsEmpty() || data == "NULL" ? nullptr : detail::ReadAny(context, data, 0);
  const bool isReadBack = read && read->GetTypeName() == "string" && !BeginsWith(data, '"');
  text = isReadBack ? data : Quote(data);
  return KVLResult_Success;
}

inline long AnyValue::SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) {
  if (text.IsEmpty() || text == "NULL") {
    Reset();
    return KVLResult_Success;
  }
  KVLSmartPtr<KVLCodeValue> read = detail::ReadAny(context, text, 0);
  if (!read) return KVLResult_InvalidArgument;
  held = Any(std::move(read));
  return KVLResult_Success;
}

inline long AnyValue::AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) {
  const KVLCodeValue* const inner = Unwrapped(source);
  if (!inner) {
    Reset();
    return KVLResult_Success;
  }
  KVLSmartPtr<KVLCodeValue> copy = inner->Copy(context, "");
  if (!copy) return KVLResult_Failure;
  held = Any(std::move(copy));
  return KVLResult_Success;
}

}  // namespace kvl

#if !defined(_WIN32)
#pragma GCC visibility pop
#endif

#endif
