#ifndef KVL_CODE_POINTER_VALUE_H
#define KVL_CODE_POINTER_VALUE_H

#include "KVLCodeType.h"
#include "KVLCodeValue.h"

class KVLCodePointerHolder;

/// A value whose content is a pointer to an outside object.
///
/// The pointer lies in a holder that assignment shares. A type that is registered under the type
/// name of such a value must derive from `KVLCodePointerType`, and a value whose type has that
/// name, or descends from it, must be a `KVLCodePointerValue`: both are taken as such unchecked.
class KVL_EXPORT KVLCodePointerValue : public KVLCodeValue {
 public:
  /// A value that points to nothing.
  KVLCodePointerValue(const MRBUnicodeString& name, const MRBUnicodeString& typeName);
  /// The copy shares the holder.
  KVLCodePointerValue(const KVLCodePointerValue& other);
  KVLCodePointerValue& operator=(const KVLCodePointerValue&) = delete;
  ~KVLCodePointerValue() override;

  /// Goes back to pointing to nothing.
  void Reset() override;
  /// The pointer.
  void* GetValuePtr() const override;
  /// The type registered under the type name; when there is none, a new dummy `KVLCodePointerType`
  /// of that name.
  KVLSmartPtr<const KVLCodeType> GetType(const KVLCodeContext& context) const override;
  /// What the type renders; "NULL" when the pointer is null.
  long GetValueStr(const KVLCodeContext& context, MRBUnicodeString& text) const override;
  /// Has the type parse the text into this value.
  long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) override;
  /// Shares the holder of a source of the same type name or of a descending type; else as
  /// `KVLCodeValue`.
  long AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) override;

  /// Hook, called after the content was set; does nothing here.
  virtual void OnChanged();
  /// Hook, called before the content is read or shared; does nothing here.
  virtual void OnAccess() const;

  /// Gives the value a new holder of `pointer`, then calls `OnChanged`. With `owned`, the last
  /// value that shares the holder deletes the object, whose class must have its virtual destructor
  /// as its first virtual operation, at address `pointer`.
  void SetPointer(void* pointer, bool owned);

 private:
  KVLSmartPtr<KVLCodePointerHolder> holder;  // never null
};

/// The type of pointer values. Modules derive from it and implement `Parse` and `Render`; a value
/// whose type is not registered makes itself one of this class, which is a dummy.
class KVL_EXPORT KVLCodePointerType : public KVLCodeType {
 public:
  explicit KVLCodePointerType(const MRBUnicodeString& name);
  ~KVLCodePointerType() override;

  /// A `KVLCodePointerValue` of this type's name that points to nothing.
  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString& name) const override;

  /// Reads `text` into `value`, a `KVLCodePointerValue`. Returns 0x80004001 here.
  virtual long Parse(const KVLCodeContext& context, const MRBUnicodeString& text,
                     KVLCodeValue& value) const;
  /// Writes the object at `data`, the value's pointer, to `text`. Returns 0x80004001 here.
  virtual long Render(const KVLCodeContext& context, const void* data,
                      MRBUnicodeString& text) const;
};

#endif
