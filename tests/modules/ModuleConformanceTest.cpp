// Run with the name of a module library, which is then alone in the process; or, as
// "all", with every module that the kernel loads.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <string>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "KVLCodeContext.h"
#include "KVLCodeEnv.h"
#include "KVLCodeEnvAccess.h"
#include "KVLCodeFunction.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"
#include "MRBHost.h"

namespace {

std::string moduleName;

std::string Std(const MRBUnicodeString& text) {
  return std::string(text.ConvertToChar(), static_cast<std::size_t>(text.GetLengthInByte()));
}

class Loaded {
 public:
  Loaded() {
    if (IsAll()) {
      isLoaded = KVLCodeEnvAccess::Load() == KVLResult_Success;
    } else {
      handler = MRBGetEntryPoint(moduleName.c_str(), nullptr, nullptr, 1, 1, 0);
      isLoaded = handler.library != nullptr;
    }
  }
  Loaded(const Loaded&) = delete;
  Loaded& operator=(const Loaded&) = delete;
  ~Loaded() { EXPECT_TRUE(Unload()); }

  static bool IsAll() { return moduleName == "all"; }
  bool IsLoaded() const { return isLoaded; }
  // True when it went well, or had been done.
  bool Unload() {
    if (isUnloaded) return true;
    isUnloaded = true;
    return IsAll() ? KVLCodeEnvAccess::Unload() == KVLResult_Success
                   : MRBCloseLibrary(handler) == 0;
  }

 private:
  LibraryHandler handler{nullptr, nullptr};
  bool isLoaded;
  bool isUnloaded = false;
};

using Objects = std::map<std::string, KVLSmartPtr<KVLCodeObject>>;

void AddObjects(const KVLCodeEnv& env, const std::string& path, Objects& objects) {
  for (const auto& object : env.IterOnObjects())
    objects.emplace(path + Std(object.key), object.value);
  for (const auto& child : env.IterOnSubEnvs())
    AddObjects(*child.value, path + Std(child.key) + "/", objects);
}

// By their paths. Taken at once, since lookups make environments, which ends an iteration.
Objects AllObjects() {
  Objects objects;
  AddObjects(KVLCodeEnv::GetDefault(), "", objects);
  return objects;
}

template <class Visit>
void VisitObjects(const Visit& visit) {
  for (const auto& [path, object] : AllObjects())
    visit(path, *object);
}

std::set<std::string> Paths() {
  std::set<std::string> paths;
  for (const auto& [path, object] : AllObjects())
    paths.insert(path);
  return paths;
}

bool IsDoc(const std::string& path) {
  return path.compare(0, 4, "doc/") == 0;
}

std::string DocPathOf(const std::string& path) {
  return "doc/" + path.substr(path.find_first_not_of('_'));
}

std::string DocOf(const std::string& path) {
  const KVLSmartPtr<KVLCodeObject> object =
      KVLCodeEnv::GetDefault().FindObject(DocPathOf(path).c_str());
  MRBUnicodeString text;
  if (!object || !object->AsVariable() || object->AsVariable()->GetTypeName() != "string" ||
      KVLFailed(object->AsVariable()->GetValueStr(KVLCodeContext(), text))) {
    return "";
  }
  return Std(text);
}

void ExpectNoAnomalies() {
  for (const KVLCodeEnv::Anomaly& anomaly : KVLCodeEnv::GetDefault().ComputeAnomalies())
    ADD_FAILURE() << anomaly.path << ": " << anomaly.message;
}

// What lies at the root is what users see first.
TEST(ModuleConformanceOfAll, EveryEnvironmentAtTheRootHasADoc) {
  if (!Loaded::IsAll()) return;
  const Loaded modules;
  for (const auto& child : KVLCodeEnv::GetDefault().IterOnSubEnvs()) {
    const std::string name = Std(child.key);
    if (name == "doc") continue;
    const std::string plain = name.substr(name.find_first_not_of('_'));
    const KVLSmartPtr<KVLCodeEnv> docs = KVLCodeEnv::GetDefault().FindSubEnv("doc");
    EXPECT_TRUE(docs && docs->FindObject(plain.c_str())) << name;
  }
}

// The roots are kept once made.
class ModuleConformance : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    const KVLCodeContext context;
    (void)KVLCodeEnv::GetDefaultMembersRoot();
  }
  void SetUp() override { ASSERT_TRUE(AllObjects().empty()); }
};

TEST_F(ModuleConformance, ItPublishes) {
  const Loaded module;
  ASSERT_TRUE(module.IsLoaded());
  EXPECT_GT(Paths().size(), 10u);
  ExpectNoAnomalies();
}

TEST_F(ModuleConformance, EveryObjectHasADoc) {
  const Loaded module;
  VisitObjects([](const std::string& path, KVLCodeObject&) {
    if (IsDoc(path)) return;
    const std::string doc = DocOf(path);
    EXPECT_GE(doc.size(), 5u) << path;
    EXPECT_TRUE(doc.empty() || doc.back() == '.') << path << ": " << doc;
  });
}

// Of an object or an environment, and there is none without.
TEST_F(ModuleConformance, EveryDocBelongsToSomething) {
  const Loaded module;
  const KVLCodeEnv& root = KVLCodeEnv::GetDefault();
  VisitObjects([&](const std::string& path, KVLCodeObject&) {
    if (!IsDoc(path)) return;
    const std::string plain = path.substr(4);
    const std::string reserved = "_" + plain;
    EXPECT_TRUE(root.FindObject(plain.c_str()) || root.FindSubEnv(plain.c_str()) ||
                root.FindObject(reserved.c_str()) || root.FindSubEnv(reserved.c_str()))
        << path;
  });
}

TEST_F(ModuleConformance, EveryObjectKnowsWhereItWasRegistered) {
  const Loaded module;
  VisitObjects([](const std::string& path, KVLCodeObject& object) {
    ASSERT_EQ(object.GetRegistrationLocations().GetCount(), 1) << path;
    const KVLSourceLocation& location = object.GetRegistrationLocations()[0];
    EXPECT_EQ(Std(location.path).compare(0, 8, "modules/"), 0) << path << " " << location.path;
    EXPECT_GT(location.line, 0) << path;
  });
}

TEST_F(ModuleConformance, EveryFunctionIsReadyToBeCalled) {
  const Loaded module;
  const KVLCodeContext context;
  VisitObjects([&](const std::string& path, KVLCodeObject& object) {
    const KVLCodeFunction* const function = object.AsFunction();
    if (!function) return;
    SCOPED_TRACE(path);
    const KVLSmartPtr<KVLCodeFunctionCaller> caller = function->CreateCaller(context);
    ASSERT_TRUE(caller);
    ASSERT_EQ(caller->GetNbArgs(), function->GetNbParameters());
    bool hasDefault = false;
    for (int i = 0; i < function->GetNbParameters(); ++i) {
      const KVLCodeFunction::Param& param = function->GetParam(i);
      SCOPED_TRACE(param.name);
      EXPECT_FALSE(param.name.IsEmpty());
      EXPECT_EQ(caller->GetArg(i)->GetTypeName(), param.typeName);
      // Of the inputs, trailing ones alone may be left out.
      if ((param.direction & KVLCodeFunction::Input) != 0) {
        EXPECT_TRUE(!hasDefault || !param.defaultValue.IsEmpty());
        hasDefault = !param.defaultValue.IsEmpty();
      }
      if (param.defaultValue.IsEmpty()) continue;
      MRBUnicodeString preset;
      MRBUnicodeString read;
      ASSERT_EQ(caller->GetArgStr(i, preset), KVLResult_Success);
      ASSERT_EQ(caller->SetArgStr(i, param.defaultValue), KVLResult_Success);
      ASSERT_EQ(caller->GetArgStr(i, read), KVLResult_Success);
      EXPECT_EQ(preset, read);
    }
  });
}

TEST_F(ModuleConformance, EveryTypeMakesAValueWhoseTextReadsBack) {
  const Loaded module;
  const KVLCodeContext context;
  VisitObjects([&](const std::string& path, KVLCodeObject& object) {
    const KVLCodeType* const type = object.AsType();
    if (!type) return;
    SCOPED_TRACE(path);
    EXPECT_EQ(path, "_types/" + Std(type->GetName()));
    const KVLSmartPtr<KVLCodeValue> value = type->CreateValue("value");
    ASSERT_TRUE(value);
    EXPECT_EQ(value->GetTypeName(), type->GetName());
    MRBUnicodeString text;
    ASSERT_EQ(value->GetValueStr(context, text), KVLResult_Success);
    EXPECT_EQ(value->SetValueStr(context, text), KVLResult_Success) << text;
    MRBUnicodeString again;
    ASSERT_EQ(value->GetValueStr(context, again), KVLResult_Success);
    EXPECT_EQ(again, text);
  });
}

TEST_F(ModuleConformance, EveryEnumerationReadsItsValues) {
  const Loaded module;
  const KVLCodeContext context;
  VisitObjects([&](const std::string& path, KVLCodeObject& object) {
    KVLVector<MRBUnicodeString> names;
    if (!object.AsType() || !object.AsType()->GetEnumValues(names)) return;
    SCOPED_TRACE(path);
    EXPECT_FALSE(names.IsEmpty());
    const KVLSmartPtr<KVLCodeValue> value = object.AsType()->CreateValue("value");
    for (const MRBUnicodeString& name : names) {
      MRBUnicodeString text;
      EXPECT_EQ(value->SetValueStr(context, name), KVLResult_Success) << name;
      EXPECT_EQ(value->GetValueStr(context, text), KVLResult_Success);
      EXPECT_EQ(text, name);
    }
    EXPECT_EQ(value->SetValueStr(context, ""), KVLResult_InvalidArgument);
  });
}

TEST_F(ModuleConformance, EveryVariableIsOfATypeThatItsTextReadsBackTo) {
  const Loaded module;
  const KVLCodeContext context;
  VisitObjects([&](const std::string& path, KVLCodeObject& object) {
    const KVLCodeValue* const variable = object.AsVariable();
    const KVLSmartPtr<const KVLCodeType> type =
        variable ? context.GetTypeFromName(variable->GetTypeName()) : nullptr;
    // Alone, a module need not have all the types of its variables.
    if (!type) return;
    SCOPED_TRACE(path);
    const KVLSmartPtr<KVLCodeValue> value = type->CreateValue("value");
    MRBUnicodeString text;
    ASSERT_EQ(variable->GetValueStr(context, text), KVLResult_Success);
    ASSERT_EQ(value->SetValueStr(context, text), KVLResult_Success);
    EXPECT_EQ(value->CompareValueWith(context, *variable), KVLResult_Success);
  });
}

// Of files: memory alone is mapped as whoever allocates it sees fit.
int CountMappings() {
#if defined(__linux__)
  std::FILE* const maps = std::fopen("/proc/self/maps", "r");
  if (!maps) return -1;
  int count = 0;
  char line[1024];
  while (std::fgets(line, sizeof(line), maps))
    if (std::strchr(line, '/')) ++count;
  (void)std::fclose(maps);
  return count;
#else
  return 0;
#endif
}

// 0 where it cannot be told: the C library keeps freed blocks in caches, where they count as used,
// unless the environment forbids it.
std::size_t CountHeapBytes() {
  if (!std::getenv("GLIBC_TUNABLES")) return 0;
#if defined(__GLIBC__)
  return mallinfo2().uordblks;
#else
  return 0;
#endif
}

TEST_F(ModuleConformance, ManyLoadsLeaveNothingBehind) {
  const int rounds = Loaded::IsAll() ? 100 : 1000;
  std::set<std::string> published;
  int mappings = 0;
  std::size_t heapBytes = 0;
  for (int i = 0; i < rounds; ++i) {
    Loaded module;
    ASSERT_TRUE(module.IsLoaded()) << i;
    if (i == 0) published = Paths();
    if (i % 50 == 0) {
      ASSERT_EQ(Paths(), published) << i;
    }
    ASSERT_TRUE(module.Unload()) << i;
    if (i % 50 == 0) {
      ASSERT_TRUE(AllObjects().empty()) << i;
    }
    // The first rounds fill what the platform and the registry keep.
    if (i == 9) {
      mappings = CountMappings();
      heapBytes = CountHeapBytes();
    }
  }
  EXPECT_EQ(CountMappings(), mappings);
  EXPECT_EQ(CountHeapBytes(), heapBytes);
  ExpectNoAnomalies();
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s MODULE|all\n", argv[0]);
    return 2;
  }
  moduleName = argv[1];
  return RUN_ALL_TESTS();
}
