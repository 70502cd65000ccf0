#ifndef LAMBDA_FUNCTIONS_H
#define LAMBDA_FUNCTIONS_H

#include <optional>

#include "shared/FunctionCall.h"

/// Functions made from others, which they know by path and text alone: nothing of another module is
/// held, so that the others may be unloaded first. What is gone, or has other parameters than when
/// the function was made, is told by the call.
namespace lambda {

/// A call that leads to another function by its path.
class Redirection final : public KVLCodeFunction {
 public:
  /// Fixes parameter i of `target` by the text fixedTexts[i], where there is one.
  Redirection(const MRBUnicodeString& functionName, const MRBUnicodeString& path,
              const KVLCodeFunction& target,
              const KVLVector<std::optional<MRBUnicodeString>>& fixedTexts);
  ~Redirection() override = default;

  bool IsMethod() const override { return isMethod; }
  /// Null when the function is gone and so is a type that its arguments need.
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override;

 private:
  class Caller;

  // The function, if it is still there and as it was; else null.
  calls::FunctionPtr GetTarget() const;

  const MRBUnicodeString targetPath;
  const KVLVector<Param> targetParams;
  const KVLVector<std::optional<MRBUnicodeString>> texts;
  const bool isMethod;
};

/// The functions of a row, one after the other: the first takes the arguments, each of the others
/// what the one before it returned.
class Composition final : public KVLCodeFunction {
 public:
  /// `first` and `last` are what lies under the first and the last of `functionPaths`.
  Composition(const MRBUnicodeString& functionName,
              const KVLVector<MRBUnicodeString>& functionPaths, const KVLCodeFunction& first,
              const KVLCodeFunction& last);
  ~Composition() override = default;

  bool IsMethod() const override { return false; }
  /// Null as with `Redirection`.
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override;

 private:
  class Caller;

  const KVLVector<MRBUnicodeString> paths;
};

/// True when `function` can take a single value.
bool TakesOneValue(const KVLCodeFunction& function);

/// Counts how deep calls by path nest, for one that leads back to itself has no end.
class Nesting {
 public:
  /// Throws where they nest deeper than 100.
  Nesting();
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;
  ~Nesting();
};

}  // namespace lambda

#endif
