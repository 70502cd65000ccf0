#ifndef ALPHA_SCALARS_H
#define ALPHA_SCALARS_H

#include <cstdint>

#include "KVLCodeType.h"
#include "KVLCodeValue.h"

/// What the module's values hold, by the name of their type: the representation that
/// `KVLCodeValue::GetValuePtr` designates.
struct AlphaBool {
  using Data = bool;
  static constexpr const char* TypeName = "bool";
};
struct AlphaInt {
  using Data = std::int32_t;
  static constexpr const char* TypeName = "int";
};
/// 32 bits, wherever the module runs: what a conversion reports by returning a "long" is read so.
struct AlphaLong {
  using Data = std::int32_t;
  static constexpr const char* TypeName = "long";
};
struct AlphaDouble {
  using Data = double;
  static constexpr const char* TypeName = "double";
};
struct AlphaString {
  using Data = MRBUnicodeString;
  static constexpr const char* TypeName = "string";
};

/// A value that holds one datum, written and read as `AlphaText.h` says.
template <class Kind>
class AlphaScalarValue : public KVLCodeValue {
 public:
  using Data = typename Kind::Data;

  explicit AlphaScalarValue(const MRBUnicodeString& valueName, const Data& initial = Data());
  ~AlphaScalarValue() override;

  void* GetValuePtr() const override;
  long GetValueStr(const KVLCodeContext& context, MRBUnicodeString& text) const override;
  long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) override;
  /// Between equal types, copies the datum without going through its text.
  long AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) override;

  Data& GetData() { return data; }

 private:
  Data data;
};

template <class Kind>
class AlphaScalarType : public KVLCodeType {
 public:
  AlphaScalarType();
  ~AlphaScalarType() override;

  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString& valueName) const override;
};

extern template class AlphaScalarValue<AlphaBool>;
extern template class AlphaScalarValue<AlphaInt>;
extern template class AlphaScalarValue<AlphaLong>;
extern template class AlphaScalarValue<AlphaDouble>;
extern template class AlphaScalarValue<AlphaString>;
extern template class AlphaScalarType<AlphaBool>;
extern template class AlphaScalarType<AlphaInt>;
extern template class AlphaScalarType<AlphaLong>;
extern template class AlphaScalarType<AlphaDouble>;
extern template class AlphaScalarType<AlphaString>;

/// What a function without a result returns: a value of the type "void", whose only text is the
/// empty one. A call that returns no value at all counts as failed.
class AlphaVoidValue : public KVLCodeValue {
 public:
  explicit AlphaVoidValue(const MRBUnicodeString& valueName);
  ~AlphaVoidValue() override;

  long GetValueStr(const KVLCodeContext& context, MRBUnicodeString& text) const override;
  long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) override;
};

class AlphaVoidType : public KVLCodeType {
 public:
  AlphaVoidType();
  ~AlphaVoidType() override;

  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString& valueName) const override;
};

#endif
