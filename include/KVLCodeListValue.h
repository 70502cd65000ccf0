#ifndef KVL_CODE_LIST_VALUE_H
#define KVL_CODE_LIST_VALUE_H

#include "KVLCodeType.h"
#include "KVLCodeValue.h"

class KVLCodeListHolder;

/// A list whose elements are values.
///
/// The elements lie in a vector that assignment shares: after `a.AssignFrom(context, b)` both see
/// the same vector. `GetValuePtr` designates it as a `KVLVector<KVLSmartPtr<KVLCodeValue>>`.
///
/// A type that is registered under the type name of such a value must derive from
/// `KVLCodeListType`, and a value whose type has that name, or descends from it, must be a
/// `KVLCodeListValue`: both are taken as such unchecked. A list whose type is not registered can
/// share, compare and list its elements; to write or read it as text fails with 0x80004001.
class KVL_EXPORT KVLCodeListValue : public KVLCodeValue {
 public:
  using Elements = KVLVector<KVLSmartPtr<KVLCodeValue>>;

  /// A list without a vector. An empty `typeName` means "KVLVector<KVLCodeValue_var>".
  explicit KVLCodeListValue(const MRBUnicodeString& name, const MRBUnicodeString& typeName = "");
  /// The copy shares the vector.
  KVLCodeListValue(const KVLCodeListValue& other);
  KVLCodeListValue& operator=(const KVLCodeListValue&) = delete;
  ~KVLCodeListValue() override;

  /// Goes back to having no vector.
  void Reset() override;
  /// The vector, or null.
  void* GetValuePtr() const override;
  /// The type registered under the type name; when there is none, a new `KVLCodeListType` of that
  /// name.
  KVLSmartPtr<const KVLCodeType> GetType(const KVLCodeContext& context) const override;
  /// What the type renders; "NULL" when there is no vector.
  long GetValueStr(const KVLCodeContext& context, MRBUnicodeString& text) const override;
  /// Has the type parse the text into this value.
  long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) override;
  /// Shares the vector of a source of the same type name or of a descending type; else as
  /// `KVLCodeValue`.
  long AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) override;
  /// For two lists of the same type name that have a vector: 0 when it is the same one or holds the
  /// same objects in the same order, 1 otherwise. In every other case as `KVLCodeValue`.
  long CompareValueWith(const KVLCodeContext& context, const KVLCodeValue& other) const override;

  /// Hook, called after the content was set; does nothing here.
  virtual void OnChanged();
  /// Hook, called before the content is read or shared; does nothing here.
  virtual void OnAccess() const;

  /// Gives the value a vector of its own, empty, and returns it for a `Parse` to fill. Borrowed;
  /// valid until the value or one that shares the vector drops it last.
  Elements& MakeOwnElements();

 private:
  KVLSmartPtr<KVLCodeListHolder> holder;  // never null
};

/// The type of lists whose elements are values. This class stands in where a list value's type is
/// not registered, and answers `IsList` with false as any plain type does; modules derive from it
/// and implement `IsList`, `Parse` and `Render`, whose text is "[", the elements separated by ",",
/// and "]".
class KVL_EXPORT KVLCodeListType : public KVLCodeType {
 public:
  explicit KVLCodeListType(const MRBUnicodeString& name);
  ~KVLCodeListType() override;

  /// A `KVLCodeListValue` of this type's name with an empty vector of its own.
  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString& name) const override;

  /// Reads `text` into `value`, a `KVLCodeListValue`. Returns 0x80004001 here.
  virtual long Parse(const KVLCodeContext& context, const MRBUnicodeString& text,
                     KVLCodeValue& value) const;
  /// Writes the `KVLCodeListValue::Elements` at `data` to `text`. Returns 0x80004001 here.
  virtual long Render(const KVLCodeContext& context, const void* data,
                      MRBUnicodeString& text) const;
};

#endif
