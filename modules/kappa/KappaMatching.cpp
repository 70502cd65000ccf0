#include "KVLKit.h"
#include "KappaPairs.h"
#include "shared/FunctionCall.h"

namespace {

using Elements = KVLCodeListValue::Elements;
using kappa::Pairs;

// Asks a published function about two elements.
class Predicate {
 public:
  Predicate(const KVLCodeContext& callContext, const MRBUnicodeString& path)
      : context(callContext), function(calls::FindOrThrow(path)) {
    bool takesTwo = function->GetNbParameters() >= 2;
    for (int i = 0; i < function->GetNbParameters(); ++i) {
      const KVLCodeFunction::Param& param = function->GetParam(i);
      takesTwo = takesTwo && (i < 2 ? calls::IsInput(param)
                                    : !calls::IsInput(param) || !param.defaultValue.IsEmpty());
    }
    if (!takesTwo) {
      throw std::invalid_argument(calls::Quoted(path) + " does not take two values");
    }
    caller = calls::CreateCaller(*function, context);
  }

  bool operator()(const calls::ValuePtr& left, const calls::ValuePtr& right) {
    calls::SetArg(*caller, 0, left);
    calls::SetArg(*caller, 1, right);
    kvl::Value answer(kvl::TableOf<bool>, "");
    if (KVLFailed(answer.AssignFrom(context, *calls::Call(*caller)))) {
      throw std::invalid_argument(calls::Quoted(function->GetName()) +
                                  " answers neither true nor false");
    }
    return answer.Get<bool>();
  }

 private:
  const KVLCodeContext& context;
  const calls::FunctionPtr function;
  calls::CallerPtr caller;
};

Pairs Maximum(const KVLCodeContext& context, KVLCodeSession* session, const Elements& left,
              const Elements& right, const MRBUnicodeString& path) {
  Predicate predicate(context, path);
  return kappa::Match(left.GetCount(), right.GetCount(), session,
                      [&](int i, int j) { return predicate(left[i], right[j]); });
}

Pairs Perfect(const KVLCodeContext& context, KVLCodeSession* session, const Elements& left,
              const Elements& right, const MRBUnicodeString& path) {
  if (left.GetCount() == right.GetCount()) {
    Pairs pairs = Maximum(context, session, left, right, path);
    if (pairs.GetCount() == left.GetCount()) return pairs;
  }
  throw std::domain_error("there is no perfect matching");
}

KVLVector<std::int32_t> Unmatched(const Pairs& pairs, const Elements& list, bool isRight) {
  KVLVector<char> isMatched;
  isMatched.Resize(list.GetCount());
  for (const kappa::Pair& pair : pairs) {
    if (pair.GetCount() != 2) throw std::invalid_argument("a pair has two indexes");
    const int index = pair[isRight ? 1 : 0];
    if (index < 0 || index >= list.GetCount()) {
      throw std::out_of_range("index " + std::to_string(index) + " is outside a list of " +
                              std::to_string(list.GetCount()));
    }
    isMatched[index] = 1;
  }
  KVLVector<std::int32_t> indexes;
  for (int i = 0; i < list.GetCount(); ++i)
    if (!isMatched[i]) indexes.Append(i);
  return indexes;
}

}  // namespace

KVL_LIST(kappa::Pair);
KVL_DOC("_types/KVLVector<KVLVector<int>>", "A list of lists of whole numbers: \"[[0,2],[1,0]]\".");

KVL_DOC("match",
        "Matching of two lists: pairs of a left and a right element, each element in one pair at "
        "most. Pairs are pairs of indexes that count from 0, as \"[[0,2],[1,0]]\", in the order of "
        "the left ones. Lists with more than 67108864 pairs of elements are refused.");

KVL_FUNCTION("match/maximum", "left, right, predicate",
             "As many pairs as there can be of elements for which the function at the path "
             "predicate(left element, right element) answers true. Fails when that takes no two "
             "values, does not take an element, or answers neither true nor false.",
             Maximum);
KVL_FUNCTION("match/perfect", "left, right, predicate",
             "As match/maximum; fails when not every element of both lists is in a pair.", Perfect);
KVL_FUNCTION("match/unmatched", "pairs, list, right = false",
             "The indexes of the list's elements that are in none of the pairs, whose left (or "
             "right) indexes are meant. Fails for an index outside the list.",
             Unmatched);
