#ifndef KVL_CODE_OBJECT_H
#define KVL_CODE_OBJECT_H

#include "KVLExport.h"
#include "KVLRefCounted.h"
#include "KVLSmartPtr.h"
#include "KVLSourceLocation.h"
#include "KVLVector.h"
#include "MRBUnicodeString.h"

class KVLCodeEnv;
class KVLCodeFunction;
class KVLCodeType;
class KVLCodeValue;

/// Base of everything that can be registered in an environment: types, functions, values and
/// environments.
///
/// Objects are shared through `KVLSmartPtr`; one that is registered must have been made with `new`,
/// for the last release deletes it. What kind an object is, the `As...` operations tell: a derived
/// class overrides the pair of its own kind and returns itself. They return borrowed pointers,
/// valid while the object lives.
///
/// Thread rule: see `KVLRefCounted`.
class KVL_EXPORT KVLCodeObject : public KVLRefCounted {
 public:
  explicit KVLCodeObject(const MRBUnicodeString& objectName) : name(objectName) {}
  /// Copies messages, name and registration locations; the copy has no references yet.
  KVLCodeObject(const KVLCodeObject&) = default;
  KVLCodeObject& operator=(const KVLCodeObject&) = default;
  ~KVLCodeObject() override = default;

  virtual KVLCodeFunction* AsFunction();
  virtual const KVLCodeFunction* AsFunction() const;
  virtual KVLCodeValue* AsVariable();
  virtual const KVLCodeValue* AsVariable() const;
  virtual KVLCodeType* AsType();
  virtual const KVLCodeType* AsType() const;
  virtual KVLCodeEnv* AsEnv();
  virtual const KVLCodeEnv* AsEnv() const;

  /// The object for a reader of diagnostics: "KVLCodeObject 'name'".
  virtual MRBUnicodeString ToString() const;
  /// The object as it would stand in source text: its name.
  virtual MRBUnicodeString ToStringCode() const;
  /// The problems found with the object so far, as messages; the anomaly check reports them.
  virtual KVLVector<MRBUnicodeString> Check() const;

  const MRBUnicodeString& GetName() const { return name; }
  /// The distinct places where the object was registered, in the order of first registration, also
  /// those whose registration was refused or has been withdrawn.
  const KVLVector<KVLSourceLocation>& GetRegistrationLocations() const {
    return registrationLocations;
  }

  /// Writes `ToString()` and a newline to the process's standard output, and flushes it.
  void Dump() const;

 protected:
  /// What `Check` returns; only grows.
  KVLVector<MRBUnicodeString> messages;

 private:
  friend class KVLCodeObjectRegisterer;

  MRBUnicodeString name;
  KVLVector<KVLSourceLocation> registrationLocations;
};

#endif
