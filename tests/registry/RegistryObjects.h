#ifndef KVL_TESTS_REGISTRY_OBJECTS_H
#define KVL_TESTS_REGISTRY_OBJECTS_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "KVLCodeEnv.h"
#include "KVLResult.h"

namespace kvltest {

/// An object that counts those alive and, when it dies, does what it was told. It takes messages.
class TrackedObject : public KVLCodeObject {
 public:
  explicit TrackedObject(const MRBUnicodeString& objectName,
                         std::function<void()> actionAtDeath = {})
      : KVLCodeObject(objectName), atDeath(std::move(actionAtDeath)) {
    ++nbAlive;
  }
  TrackedObject(const TrackedObject& other) : KVLCodeObject(other) { ++nbAlive; }
  TrackedObject& operator=(const TrackedObject&) = delete;
  ~TrackedObject() override {
    --nbAlive;
    if (atDeath) atDeath();
  }

  void Note(const MRBUnicodeString& message) { messages.Append(message); }

  std::function<void()> atDeath;

  inline static int nbAlive = 0;
};

/// An environment that counts those alive and takes messages.
class TrackedEnv : public KVLCodeEnv {
 public:
  explicit TrackedEnv(const MRBUnicodeString& envName) : KVLCodeEnv(envName) { ++nbAlive; }
  ~TrackedEnv() override { --nbAlive; }

  void Note(const MRBUnicodeString& message) { messages.Append(message); }

  inline static int nbAlive = 0;
};

using ObjectPtr = KVLSmartPtr<KVLCodeObject>;
using TrackedPtr = KVLSmartPtr<TrackedObject>;
using EnvPtr = KVLSmartPtr<KVLCodeEnv>;
using TrackedEnvPtr = KVLSmartPtr<TrackedEnv>;

inline TrackedPtr MakeObject(const MRBUnicodeString& name) {
  return new TrackedObject(name);
}

/// The names that an iteration yields, in its order.
template <class Iter>
std::vector<std::string> KeysOf(Iter iter) {
  std::vector<std::string> keys;
  for (const auto& entry : iter) {
    const MRBUnicodeString& key = entry.key;
    keys.emplace_back(key.ConvertToChar(), static_cast<std::size_t>(key.GetLengthInByte()));
  }
  EXPECT_EQ(iter.GetStatus(), KVLResult_False);
  return keys;
}

using Names = std::vector<std::string>;

/// Checks that a case begins, and when its members are gone ends, with nothing of its own alive.
class RegistryCase : public testing::Test {
 protected:
  RegistryCase() { EXPECT_EQ(TrackedObject::nbAlive + TrackedEnv::nbAlive, 0); }
  ~RegistryCase() override { EXPECT_EQ(TrackedObject::nbAlive + TrackedEnv::nbAlive, 0); }
};

}  // namespace kvltest

#endif
