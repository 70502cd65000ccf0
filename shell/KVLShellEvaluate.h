#ifndef KVL_SHELL_EVALUATE_H
#define KVL_SHELL_EVALUATE_H

#include "KVLCodeValue.h"
#include "KVLShellCall.h"
#include "KVLShellSyntax.h"
#include "KVLShellValue.h"
#include "KVLShellWork.h"

/// Finds the value of `expression`. `value` is shared: a variable's is the variable itself.
///
/// `outputs`, where not null, becomes the list of what a call gave back through its parameters:
/// records of "name", "type" and "text".
KVLShellOutcome KVLShellEvaluate(const KVLShellExpression& expression, KVLShellWork& work,
                                 KVLSmartPtr<KVLCodeValue>& value, KVLShellNode* outputs);

/// The same, as an answer.
KVLShellOutcome KVLShellEvaluate(const KVLShellExpression& expression, KVLShellWork& work,
                                 KVLShellAnswer& answer);

/// Sets the arguments of a prepared call as `expression`, a call, has them. `openParameters`, where
/// not null, gathers the parameters that "_" keeps open; where null, "_" is refused.
KVLShellOutcome KVLShellSetArguments(const KVLShellExpression& expression, KVLShellWork& work,
                                     KVLShellCall& call, KVLVector<int>* openParameters);

/// The texts of a list from those of its elements, which are evaluated once.
KVLShellOutcome KVLShellWriteList(const KVLShellExpression& list, KVLShellWork& work,
                                  KVLShellListTexts& texts);

/// The outcomes for a word that leads nowhere, and for a session value that is not set.
KVLShellOutcome KVLShellUnknownWord(const KVLShellExpression& word, const KVLShellWork& work);
KVLShellOutcome KVLShellUnknownVariable(const MRBUnicodeString& name, const KVLShellWork& work,
                                        int position);

#endif
