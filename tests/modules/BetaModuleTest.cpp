#include "KVLCodeObjectRegisterer.h"
#include "KVLCodeType.h"
#include "LoadedModules.h"

namespace {

constexpr char List[] = "KVLVector<KVLCodeValue_var>";

class Beta : public LoadedModules {
 protected:
  Beta() : LoadedModules({"Alpha", "Beta", "Gamma"}) {}
};

TEST_F(Beta, ConversionsKeepTheValueOrRefuse) {
  const struct {
    const char* from;
    const char* text;
    const char* to;
    const char* converted;  // null: refused
  } cases[] = {
      {"bool", "true", "int", "1"},
      {"bool", "false", "long", "0"},
      {"bool", "true", "double", "1"},
      {"bool", "true", "string", "true"},
      {"int", "1", "bool", "true"},
      {"int", "2", "bool", nullptr},
      {"int", "-2147483648", "long", "-2147483648"},
      {"int", "2147483647", "double", "2147483647"},
      {"int", "-7", "string", "-7"},
      {"long", "0", "bool", "false"},
      {"long", "-1", "bool", nullptr},
      {"long", "2147483647", "int", "2147483647"},
      {"long", "7", "double", "7"},
      {"long", "7", "string", "7"},
      {"double", "1", "bool", "true"},
      {"double", "0.5", "bool", nullptr},
      {"double", "nan", "bool", nullptr},
      {"double", "2147483647", "int", "2147483647"},
      {"double", "-2147483648", "int", "-2147483648"},
      {"double", "2147483648", "int", nullptr},
      {"double", "-2147483649", "int", nullptr},
      {"double", "2.5", "int", nullptr},
      {"double", "nan", "int", nullptr},
      {"double", "inf", "int", nullptr},
      {"double", "-0", "int", "0"},
      {"double", "3", "long", "3"},
      {"double", "1e10", "long", nullptr},
      {"double", "0.1", "string", "0.1"},
      {"string", "true", "bool", "true"},
      {"string", "1", "bool", nullptr},
      {"string", "12", "int", "12"},
      {"string", "12.0", "int", nullptr},
      {"string", "12", "long", "12"},
      {"string", "x", "long", nullptr},
      {"string", "1e3", "double", "1000"},
      {"string", "1e999", "double", nullptr},
  };
  for (const auto& conversion : cases) {
    SCOPED_TRACE(std::string(conversion.from) + " " + conversion.text + " to " + conversion.to);
    const Value from = Make(conversion.from, conversion.text);
    const Value to = Make(conversion.to);
    const long code = to->AssignFrom(context, *from);
    if (conversion.converted) {
      EXPECT_EQ(code, KVLResult_Success);
      EXPECT_EQ(TextOf(*to), conversion.converted);
    } else {
      EXPECT_EQ(code, KVLResult_InvalidArgument);
    }
  }
}

TEST_F(Beta, UnrelatedTypesAreNotConverted) {
  EXPECT_EQ(Make("double")->AssignFrom(context, *Make(List, "[1]")), KVLResult_Failure);
  EXPECT_EQ(Make(List)->AssignFrom(context, *Make("int", "1")), KVLResult_Failure);
}

TEST_F(Beta, Int64IsConvertedWithoutLoss) {
  const struct {
    const char* from;
    const char* text;
    const char* to;
    const char* converted;
  } cases[] = {
      {"int64", "2147483647", "int", "2147483647"},
      {"int64", "-2147483648", "long", "-2147483648"},
      {"int64", "2147483648", "int", "refused"},
      {"int64", "-2147483649", "long", "refused"},
      {"int64", "1", "bool", "true"},
      {"int64", "2", "bool", "refused"},
      {"int64", "9007199254740992", "double", "9007199254740992"},
      {"int64", "9007199254740993", "double", "refused"},
      {"int64", "-9223372036854775808", "double", "-9.223372036854775808e+18"},
      {"int64", "9223372036854775807", "double", "refused"},
      {"int64", "-7", "string", "-7"},
      {"bool", "true", "int64", "1"},
      {"int", "-2147483648", "int64", "-2147483648"},
      {"long", "-1", "int64", "-1"},
      {"double", "9223372036854774784", "int64", "9223372036854774784"},
      {"double", "-9223372036854775808", "int64", "-9223372036854775808"},
      {"double", "9223372036854775808", "int64", "refused"},
      {"double", "0.5", "int64", "refused"},
      {"double", "nan", "int64", "refused"},
      {"double", "-inf", "int64", "refused"},
      {"string", "9223372036854775807", "int64", "9223372036854775807"},
      {"string", "9223372036854775808", "int64", "refused"},
  };
  for (const auto& conversion : cases) {
    SCOPED_TRACE(std::string(conversion.from) + " " + conversion.text + " to " + conversion.to);
    const std::string text = Converted(conversion.from, conversion.text, conversion.to);
    if (std::string(conversion.to) == "double" && text != "refused") {
      EXPECT_EQ(std::stod(text), std::stod(conversion.converted));
    } else {
      EXPECT_EQ(text, conversion.converted);
    }
  }
}

TEST_F(Beta, EveryScalarLeadsToEveryOther) {
  const char* const scalars[] = {"bool", "int", "int64", "long", "double", "string"};
  for (const char* const from : scalars) {
    for (const char* const to : scalars)
      EXPECT_EQ(Result("convert/possible", {from, to}), "true") << from << " " << to;
  }
}

TEST_F(Beta, ToConvertsOrSaysWhyNot) {
  EXPECT_EQ(Result("convert/to", {"2.0", "int"}), "2");
  EXPECT_EQ(Result("convert/to", {"12", "string"}), "\"12\"");
  EXPECT_EQ(Result("convert/to", {"[1, 2.0]", "KVLVector<int>"}), "[1,2]");
  EXPECT_EQ(Result("convert/to", {"x", "any"}), "x");
  EXPECT_EQ(Thrown("convert/to", {"2.5", "int"}), "the double '2.5' cannot become a value of int");
  EXPECT_EQ(Thrown("convert/to", {"[1, x]", "KVLVector<int>"}),
            "the KVLVector<KVLCodeValue_var> '[1,\"x\"]' cannot become a value of KVLVector<int>");
  EXPECT_EQ(Thrown("convert/to", {"[1]", "int"}),
            "no conversion leads from KVLVector<KVLCodeValue_var> to int");
  EXPECT_EQ(Thrown("convert/to", {"1", "no such"}), "there is no type 'no such'");
  EXPECT_EQ(Thrown("convert/to", {"1", "a/b"}), "there is no type 'a/b'");
  EXPECT_EQ(Thrown("convert/to", {"1"}), "there is no type ''");
  EXPECT_EQ(Thrown("convert/to", {"NULL", "int"}), "there is no value");
}

TEST_F(Beta, PossibleLooksAtTheTypesAlone) {
  EXPECT_EQ(Result("convert/possible", {"double", "int"}), "true");
  EXPECT_EQ(Result("convert/possible", {"int", "int"}), "true");
  EXPECT_EQ(Result("convert/possible", {"int", "any"}), "true");
  EXPECT_EQ(Result("convert/possible", {"any", "int"}), "true");
  EXPECT_EQ(Result("convert/possible", {"int", List}), "false");
  EXPECT_EQ(Result("convert/possible", {"KVLVector<int>", List}), "true");
  EXPECT_EQ(Result("convert/possible", {"KVLVector<int>", "KVLVector<double>"}), "true");
  EXPECT_EQ(Thrown("convert/possible", {"int", "x"}), "there is no type 'x'");
  EXPECT_EQ(Thrown("convert/possible", {"x", "int"}), "there is no type 'x'");
}

TEST_F(Beta, TargetsAreSorted) {
  EXPECT_EQ(Result("convert/targets", {"int"}),
            "[\"any\",\"bool\",\"double\",\"int64\",\"long\",\"string\"]");
  EXPECT_EQ(Result("convert/targets", {"void"}), "[\"any\"]");
  EXPECT_EQ(Thrown("convert/targets", {"x"}), "there is no type 'x'");
}

// A type that descends from "Middle", a child of "int", and more of the kind.
class NamedType : public KVLCodeType {
 public:
  NamedType(const MRBUnicodeString& typeName, const MRBUnicodeString& parentName)
      : KVLCodeType(typeName), parent(parentName) {}
  ~NamedType() override = default;
  MRBUnicodeString GetParentTypeName() const override { return parent; }
  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString&) const override { return nullptr; }

 private:
  const MRBUnicodeString parent;
};

KVLCodeObjectRegisterer RegisteredType(const char* name, const char* parent) {
  return KVLCodeObjectRegisterer(KVLCodeEnv::GetDefaultTypeRoot(),
                                 KVLSmartPtr<KVLCodeObject>(new NamedType(name, parent)), name,
                                 KVLSourceLocation("here.cpp", 7, ""));
}

TEST_F(Beta, ExplainTellsEachStepAlongTheParents) {
  const KVLCodeObjectRegisterer child = RegisteredType("Child", "Middle");
  const KVLCodeObjectRegisterer middle = RegisteredType("Middle", "int");
  const KVLCodeObjectRegisterer orphan = RegisteredType("Orphan", "Absent");
  const std::string steps = Result("convert/explain", {"Child", "double"});
  EXPECT_EQ(steps.find("[\"Child -> double: no conversion\",\"Middle -> double: no conversion\","
                       "\"int -> double: converted (modules/beta/BetaConversions.cpp:"),
            0u)
      << steps;
  EXPECT_EQ(Result("convert/possible", {"Child", "double"}), "true");
  EXPECT_EQ(Result("convert/explain", {"Child", "Middle"}),
            "[\"Child -> Middle: no conversion\",\"Middle -> Middle: no conversion\","
            "\"int -> Middle: no conversion\","
            "\"Child -> Middle: by text, since Child descends from Middle\"]");
  EXPECT_EQ(Result("convert/explain", {"Orphan", "int"}),
            "[\"Orphan -> int: no conversion\",\"Absent -> int: no conversion\","
            "\"Orphan -> int: not by text, since Orphan does not descend from int\"]");
  EXPECT_EQ(Result("convert/possible", {"Orphan", "int"}), "false");
  EXPECT_EQ(Result("convert/explain", {"int", "int"}), "[\"int: the same type, copied\"]");
  EXPECT_EQ(Result("convert/explain", {"int", "any"}),
            "[\"int -> any: no conversion\","
            "\"int -> any: by text, since any stands for any type\"]");
  EXPECT_EQ(Thrown("convert/to", {"1", "Middle"}), "'Middle' makes no values");
}

TEST_F(Beta, ParentsThatFormALoopEndTheSearch) {
  const KVLCodeObjectRegisterer first = RegisteredType("First", "Second");
  const KVLCodeObjectRegisterer second = RegisteredType("Second", "First");
  EXPECT_EQ(Result("convert/explain", {"First", "int"}),
            "[\"First -> int: no conversion\",\"Second -> int: no conversion\","
            "\"First: its parents form a loop\"]");
  EXPECT_EQ(Result("convert/possible", {"First", "int"}), "false");
}

TEST_F(Beta, LookingCreatesNothing) {
  const auto count = [] {
    int children = 0;
    for (const auto& child : KVLCodeEnv::GetDefaultConversionsRoot().IterOnSubEnvs())
      children += child.value ? 1 : 0;
    for (const auto& child : KVLCodeEnv::GetDefaultTypeRoot().IterOnSubEnvs())
      children += child.value ? 1 : 0;
    return children;
  };
  const KVLCodeObjectRegisterer type = RegisteredType("Lonely", "Nobody");
  const int before = count();
  (void)Result("convert/explain", {"Lonely", "int"});
  (void)Result("convert/targets", {"Lonely"});
  (void)Thrown("convert/possible", {"a/b/c", "int"});
  EXPECT_EQ(count(), before);
}

}  // namespace
