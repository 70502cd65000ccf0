#ifndef KVL_CODE_TYPE_H
#define KVL_CODE_TYPE_H

#include "KVLCodeObject.h"

class KVLCodeContext;

/// The name that stands for a type that is not known: "???".
extern KVL_EXPORT const char* const KVLTypeName_Unknown;

/// Describes a type of data. Modules derive from it, override what differs from a plain root type,
/// and register the object under "_types".
///
/// Types refer to one another by name only, and a name is resolved through a context each time it
/// is needed; nothing holds a pointer from one type to another. Parents that form a loop make
/// `IsSubTypeOf`, and a conversion search, go on without end.
///
/// Thread rule: a registered type does not change, but its count does: see `KVLRefCounted`.
class KVL_EXPORT KVLCodeType : public KVLCodeObject {
 public:
  explicit KVLCodeType(const MRBUnicodeString& name);
  KVLCodeType(const KVLCodeType&) = default;
  KVLCodeType& operator=(const KVLCodeType&) = default;
  ~KVLCodeType() override;

  KVLCodeType* AsType() override;
  const KVLCodeType* AsType() const override;
  /// "Type { name=N }".
  MRBUnicodeString ToString() const override;
  /// The name.
  MRBUnicodeString ToStringCode() const override;

  /// True for a type that stands for any type: assignment asks no subtype question then.
  virtual bool IsDummy() const;
  /// Free text for whoever stores values; empty here.
  virtual MRBUnicodeString GetSerializationInfo(const KVLCodeContext& context) const;
  /// The name of the parent type; empty when there is none. The name need not be registered.
  virtual MRBUnicodeString GetParentTypeName() const;
  /// For an enumeration: appends the names of its values and returns true. False otherwise, and
  /// `values` is untouched.
  virtual bool GetEnumValues(KVLVector<MRBUnicodeString>& values) const;
  /// For a list type: stores the element type's name, if `elementTypeName` is not null, and returns
  /// true. False otherwise, and nothing is stored.
  virtual bool IsList(MRBUnicodeString* elementTypeName) const;
  /// The type registered under the element type's name; null when there is none or this is not a
  /// list type.
  virtual KVLSmartPtr<const KVLCodeType> GetListElementType(const KVLCodeContext& context) const;
  /// A fresh value of this type named `name`, or null when none can be made.
  virtual KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString& name) const = 0;

  /// The type registered under the parent's name; null when there is no parent or no such type.
  KVLSmartPtr<const KVLCodeType> GetParentType(const KVLCodeContext& context) const;
  /// True when `other` is this very object or one of its ancestors. Objects of the same name are
  /// different types here. Linear in the length of the parent chain.
  bool IsSubTypeOf(const KVLCodeContext& context, const KVLCodeType& other) const;
  /// True when this type or one of its ancestors bears that name; an ancestor that is named but not
  /// registered counts.
  bool IsSubTypeOf(const KVLCodeContext& context, const MRBUnicodeString& typeName) const;

  /// Compares the names alone.
  bool operator==(const KVLCodeType& other) const { return GetName() == other.GetName(); }
  bool operator!=(const KVLCodeType& other) const { return !(*this == other); }
};

#endif
