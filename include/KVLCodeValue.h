#ifndef KVL_CODE_VALUE_H
#define KVL_CODE_VALUE_H

#include "KVLCodeObject.h"

class KVLCodeContext;

/// A named, typed slot of data: an argument, a returned value, a variable, an element of a list.
///
/// The kernel never interprets the data. A value class writes its content as text and reads it back
/// (`GetValueStr`, `SetValueStr`); assignment across types, comparison, copies, defaults and lists
/// are built on these two. The type is held by name and resolved through a context each time.
///
/// Results of type `long`: 0 success; 1 for "no" where a question is asked; 0x80004005 for a
/// failure found here; the code of a called operation is passed on unchanged. A failed operation
/// may have changed the target as far as `SetValueStr` got.
///
/// Thread rule: a value belongs to one thread at a time.
class KVL_EXPORT KVLCodeValue : public KVLCodeObject {
 public:
  /// A value named `valueName` of the type registered under `nameOfType`.
  KVLCodeValue(const MRBUnicodeString& valueName, const MRBUnicodeString& nameOfType)
      : KVLCodeObject(valueName), typeName(nameOfType) {}
  KVLCodeValue(const KVLCodeValue&) = default;
  /// Content is assigned by `AssignFrom`; name and type name stay.
  KVLCodeValue& operator=(const KVLCodeValue&) = delete;
  ~KVLCodeValue() override = default;

  KVLCodeValue* AsVariable() override;
  const KVLCodeValue* AsVariable() const override;
  /// "Variable { type=T, name=N }".
  MRBUnicodeString ToString() const override;
  /// A declaration: "T N".
  MRBUnicodeString ToStringCode() const override;

  /// Lets go of the content; does nothing here.
  virtual void Reset();
  /// True for a value that refuses to be written; false here. Nothing but the value enforces it.
  virtual bool IsReadOnly() const;
  /// The address of the data in the representation that the type defines (borrowed until the value
  /// changes), or null when the value holds none; null here.
  virtual void* GetValuePtr() const;
  /// The type registered under the type name, or null.
  virtual KVLSmartPtr<const KVLCodeType> GetType(const KVLCodeContext& context) const;
  /// Writes the content to `text`.
  virtual long GetValueStr(const KVLCodeContext& context, MRBUnicodeString& text) const = 0;
  /// Sets the content from `text`.
  virtual long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) = 0;
  /// Assigns the content of a fresh value of the same type. 0x80004005 when the type is not
  /// registered or makes no value.
  virtual long SetDefault(const KVLCodeContext& context);
  /// Makes the content equal to that of `source`, which is borrowed. Where the type names differ,
  /// a registered conversion is tried first. Without one, or between equal type names, the content
  /// travels as text, provided that one of the types is unknown or a dummy, or that the source's
  /// type is the target's or descends from it; otherwise the code of the failed conversion, or
  /// 0x80004005, is returned and nothing changes.
  virtual long AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source);
  /// 0 when both hold the same data or write the same text, 1 when they differ. Type names are not
  /// compared.
  virtual long CompareValueWith(const KVLCodeContext& context, const KVLCodeValue& other) const;
  /// 0 when the type is a list type, 1 when it is not, 0x80004005 when it is not registered.
  virtual long IsList(const KVLCodeContext& context) const;
  /// Appends the texts of the elements to `elements`, which keeps what it holds. 0x80004005 when
  /// this is no list, or its text is not "[", elements separated by ",", "]".
  virtual long ListGetElementsStr(const KVLCodeContext& context,
                                  KVLVector<MRBUnicodeString>& elements) const;
  /// Replaces the content of `elements` by the elements: the list's own, shared, where this value's
  /// content can be taken by a generic list, else fresh values named `elementName` of the element
  /// type. On a failure the elements made so far stay in `elements`.
  virtual long ListGetElements(const KVLCodeContext& context,
                               KVLVector<KVLSmartPtr<KVLCodeValue>>& elements,
                               const MRBUnicodeString& elementName) const;
  /// Sets the content from the texts of elements, none of which is quoted or escaped.
  virtual long ListSetElementsStr(const KVLCodeContext& context,
                                  const KVLVector<MRBUnicodeString>& elements);
  /// Sets the content from the texts that the elements write. No element may be null. When an
  /// element fails to write, its code is returned and nothing changes.
  virtual long ListSetElements(const KVLCodeContext& context,
                               const KVLVector<KVLSmartPtr<KVLCodeValue>>& elements);

  const MRBUnicodeString& GetTypeName() const { return typeName; }
  /// True when the value designates data: `GetValuePtr` is not null.
  bool IsValued() const { return GetValuePtr() != nullptr; }
  /// A fresh value of the same type and content named `name`, or as this one when `name` is empty.
  /// Null when the type is not registered, makes no value, or the content cannot be assigned.
  KVLSmartPtr<KVLCodeValue> Copy(const KVLCodeContext& context, const MRBUnicodeString& name) const;

 private:
  MRBUnicodeString typeName;
};

#endif
