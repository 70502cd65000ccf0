#ifndef KVL_CODE_SESSION_H
#define KVL_CODE_SESSION_H

#include "KVLCodeValue.h"
#include "KVLVector.h"

/// What a piece of work belongs to: the named values of whoever is at work, and whether they still
/// want the answer. The kernel passes the pointer on in a context (`KVLCodeContext::SetSession`)
/// and never looks inside; the shell implements the class, and functions that take a
/// `KVLCodeSession*` use it.
///
/// Operations that a deriving class adds in a later version come last.
///
/// Thread rule: a session belongs to one thread at a time.
class KVLCodeSession {
 public:
  /// The value under `name`, shared, or null.
  virtual KVLSmartPtr<KVLCodeValue> FindVariable(const MRBUnicodeString& name) const = 0;
  /// Puts `value`, shared, under `name`, in place of the former one. 0x80070057 when `name` is no
  /// identifier (a letter or "_", then letters, digits and "_") or `value` is null.
  virtual long SetVariable(const MRBUnicodeString& name, KVLSmartPtr<KVLCodeValue> value) = 0;
  /// Takes the value under `name` away. False when there is none.
  virtual bool RemoveVariable(const MRBUnicodeString& name) = 0;
  /// Replaces `names` by the names of all values, sorted.
  virtual void GetVariableNames(KVLVector<MRBUnicodeString>& names) const = 0;
  /// True once the user has asked for the running line to end. A function that may run for long
  /// asks now and then, and throws `std::runtime_error("interrupted")` when it is so.
  virtual bool IsInterrupted() const = 0;

 protected:
  // Whoever made the session destroys it, as what it is.
  ~KVLCodeSession() = default;
};

#endif
