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

}  // namespace
