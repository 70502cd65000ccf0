#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "AlphaModule.h"
#include "KVLCodeListValue.h"

namespace {

constexpr char List[] = "KVLVector<KVLCodeValue_var>";

class AlphaTypes : public AlphaModule {
 protected:
  // What `text` is written as once read; the code when it is refused.
  static std::string Through(const MRBUnicodeString& typeName, const MRBUnicodeString& text) {
    const Value value = Make(typeName);
    const std::string before = TextOf(*value);
    const long code = value->SetValueStr(KVLCodeContext(), text);
    if (code == KVLResult_Success) return TextOf(*value);
    EXPECT_EQ(code, KVLResult_InvalidArgument) << typeName << " " << text;
    EXPECT_EQ(TextOf(*value), before) << "a refused text must change nothing";
    return "refused";
  }

  static std::string ElementTypes(const MRBUnicodeString& text) {
    const Value list = Make(List, text);
    KVLVector<Value> elements;
    EXPECT_EQ(list->ListGetElements(KVLCodeContext(), elements, "element"), KVLResult_Success);
    std::string names;
    for (const Value& element : elements) {
      const MRBUnicodeString& typeName = element->GetTypeName();
      names += (names.empty() ? "" : " ") +
               std::string(typeName == List ? "list" : typeName.ConvertToChar());
    }
    return names;
  }
};

TEST_F(AlphaTypes, EveryTypeMakesAFreshValueOfItsName) {
  const struct {
    const char* typeName;
    const char* text;
  } cases[] = {{"bool", "false"}, {"int", "0"}, {"long", "0"}, {"double", "0"},
               {"string", ""},    {"void", ""}, {List, "[]"}};
  for (const auto& fresh : cases) {
    const Value value = Make(fresh.typeName);
    ASSERT_TRUE(value) << fresh.typeName;
    EXPECT_EQ(value->GetTypeName(), fresh.typeName);
    EXPECT_EQ(value->GetName(), "value");
    EXPECT_EQ(TextOf(*value), fresh.text);
  }
}

TEST_F(AlphaTypes, BoolReadsItsTwoWordsOnly) {
  EXPECT_EQ(Through("bool", "true"), "true");
  EXPECT_EQ(Through("bool", "false"), "false");
  for (const char* const text : {"", "1", "0", "True", "TRUE", " true", "true ", "truee", "yes"})
    EXPECT_EQ(Through("bool", text), "refused") << text;
}

TEST_F(AlphaTypes, IntAndLongRead32Bits) {
  for (const char* const typeName : {"int", "long"}) {
    for (const char* const text : {"0", "7", "-7", "2147483647", "-2147483648"})
      EXPECT_EQ(Through(typeName, text), text);
    EXPECT_EQ(Through(typeName, "007"), "7");
    EXPECT_EQ(Through(typeName, "-0"), "0");
    for (const char* const text :
         {"", "-", "+1", " 1", "1 ", "1.0", "1e3", "0x10", "1,000", "--1", "2147483648",
          "-2147483649", "99999999999999999999", "x", "1x"}) {
      EXPECT_EQ(Through(typeName, text), "refused") << typeName << " " << text;
    }
  }
}

TEST_F(AlphaTypes, LongHolds32BitsOnEveryPlatform) {
  const Value value = Make("long", "-2");
  const unsigned char expected[] = {0xFE, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(std::memcmp(value->GetValuePtr(), expected, sizeof(expected)), 0);
}

TEST_F(AlphaTypes, DoubleIsWrittenInItsShortestForm) {
  const struct {
    const char* text;
    const char* written;
  } cases[] = {{"7.75", "7.75"},
               {"0.1", "0.1"},
               {"5.0", "5"},
               {"1e3", "1000"},
               {"1E-3", "0.001"},
               {"-0", "-0"},
               {"1e300", "1e+300"},
               {"0.30000000000000004", "0.30000000000000004"},
               {"1.7976931348623157e308", "1.7976931348623157e+308"},
               {"4.9406564584124654e-324", "5e-324"},
               {"inf", "inf"},
               {"-inf", "-inf"},
               {"nan", "nan"},
               {".5", "0.5"},
               {"5.", "5"}};
  for (const auto& number : cases)
    EXPECT_EQ(Through("double", number.text), number.written) << number.text;
}

TEST_F(AlphaTypes, DoubleRefusesWhatIsNoNumberOrOutOfRange) {
  for (const char* const text : {"", ".", "-", "+1", " 1", "1 ", "1,5", "1e", "1e+", "0x1p3",
                                 "1e400", "-1e400", "1e-400", "1.2.3", "x", "1x", "--1"}) {
    EXPECT_EQ(Through("double", text), "refused") << text;
  }
}

TEST_F(AlphaTypes, ANulEndsNoNumber) {
  EXPECT_EQ(Through("int", MRBUnicodeString("1\0", 2)), "refused");
  EXPECT_EQ(Through("double", MRBUnicodeString("1\0", 2)), "refused");
  EXPECT_EQ(Through("bool", MRBUnicodeString("true\0", 5)), "refused");
}

TEST_F(AlphaTypes, EveryDoubleReadsBackToTheSameBits) {
  constexpr unsigned int Seed = 42;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937_64 random(Seed);
  const Value value = Make("double");
  const KVLCodeContext context;
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t bits = random();
    double number;
    std::memcpy(&number, &bits, sizeof(number));
    if (std::isnan(number)) continue;
    *static_cast<double*>(value->GetValuePtr()) = number;
    const std::string text = TextOf(*value);
    *static_cast<double*>(value->GetValuePtr()) = 0;
    ASSERT_EQ(value->SetValueStr(context, text.c_str()), KVLResult_Success) << text;
    ASSERT_EQ(std::memcmp(value->GetValuePtr(), &number, sizeof(number)), 0) << text;
  }
}

TEST_F(AlphaTypes, TheLocaleChangesNothing) {
  const std::string former = std::setlocale(LC_ALL, nullptr);
  for (const char* const locale : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "German"}) {
    if (std::setlocale(LC_ALL, locale)) break;
  }
  EXPECT_EQ(Through("double", "1234.5"), "1234.5");
  EXPECT_EQ(Through("double", "1234,5"), "refused");
  EXPECT_EQ(Through("int", "1234567"), "1234567");
  (void)std::setlocale(LC_ALL, former.c_str());
}

TEST_F(AlphaTypes, StringIsItsOwnText) {
  const char* const texts[] = {"", " a b ", "\xC3\xA9\xFF", "[1", "say \"hi\"", "\\n", "a\nb"};
  for (const char* const text : texts)
    EXPECT_EQ(Through("string", text), text);
  const std::string nul("a\0b", 3);
  EXPECT_EQ(Through("string", MRBUnicodeString(nul.data(), 3)), nul);
}

TEST_F(AlphaTypes, AStringThatBeginsWithAQuoteIsQuoted) {
  const Value value = Make("string", "\"\\\"a\\\\\\n\\r\\tb\\\"\"");
  EXPECT_EQ(*static_cast<MRBUnicodeString*>(value->GetValuePtr()), "\"a\\\n\r\tb\"");
  EXPECT_EQ(TextOf(*value), "\"\\\"a\\\\\\n\\r\\tb\\\"\"");
  EXPECT_EQ(Through("string", "\"plain\""), "plain");
  EXPECT_EQ(Through("string", "\"\""), "");
}

TEST_F(AlphaTypes, AnIllFormedQuotedStringIsRefused) {
  for (const char* const text : {"\"", "\"a", "\"a\"b", "\"a\\\"", "\"\\x\"", "\"a\"\"", "\"\\"})
    EXPECT_EQ(Through("string", text), "refused") << text;
}

TEST_F(AlphaTypes, AnyStringReadsBackToTheSameBytes) {
  constexpr unsigned int Seed = 7;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937 random(Seed);
  const KVLCodeContext context;
  for (int i = 0; i < 5000; ++i) {
    MRBUnicodeString data;
    for (auto length = random() % 8; length > 0; --length) {
      const char byte = "\"\\\n\r\t ,[]x\xFF"[random() % 12];
      data += MRBUnicodeString(&byte, 1);
    }
    const Value value = Make("string");
    *static_cast<MRBUnicodeString*>(value->GetValuePtr()) = data;
    MRBUnicodeString text;
    ASSERT_EQ(value->GetValueStr(context, text), KVLResult_Success);
    const Value back = Make("string", text);
    ASSERT_EQ(*static_cast<MRBUnicodeString*>(back->GetValuePtr()), data) << text;

    const Value list = Make(List);
    KVLVector<Value>& elements = static_cast<KVLCodeListValue&>(*list).MakeOwnElements();
    elements.Append(value);
    elements.Append(back);
    ASSERT_EQ(list->GetValueStr(context, text), KVLResult_Success);
    const Value listBack = Make(List, text);
    KVLVector<Value> elementsBack;
    ASSERT_EQ(listBack->ListGetElements(context, elementsBack, "e"), KVLResult_Success);
    ASSERT_EQ(elementsBack.GetCount(), 2) << text;
    ASSERT_EQ(*static_cast<MRBUnicodeString*>(elementsBack[1]->GetValuePtr()), data) << text;
  }
}

TEST_F(AlphaTypes, VoidHasTheEmptyTextOnly) {
  EXPECT_EQ(Through("void", ""), "");
  EXPECT_EQ(Through("void", " "), "refused");
  EXPECT_FALSE(Make("void")->IsValued());
}

TEST_F(AlphaTypes, AListIsAListOfUnknownElements) {
  const KVLSmartPtr<const KVLCodeType> type = KVLCodeContext().GetTypeFromName(List);
  MRBUnicodeString elementTypeName;
  EXPECT_TRUE(type->IsList(&elementTypeName));
  EXPECT_TRUE(type->IsList(nullptr));
  EXPECT_EQ(elementTypeName, KVLTypeName_Unknown);
}

TEST_F(AlphaTypes, AnElementsFormDecidesItsType) {
  EXPECT_EQ(
      ElementTypes("[true, 1, -2147483648, 2147483648, 1.0, 1e3, inf, nan, \"1\", a b, [], "
                   "NULL, (1, 2), (1)]"),
      "bool int int double double double double double string string list list string string");
}

TEST_F(AlphaTypes, AListReadsBackWhatItWrites) {
  EXPECT_EQ(Through(List, "[]"), "[]");
  EXPECT_EQ(Through(List, "[ ]"), "[]");
  EXPECT_EQ(Through(List, "[ 1 , 2.50 , a b , \"c,]\" , [ x ] , (1,2) , true , NULL ]"),
            "[1,2.5,\"a b\",\"c,]\",[\"x\"],\"(1,2)\",true,NULL]");
  EXPECT_EQ(Through(List, "[5.0,1e300,-0.0,inf,nan,-inf]"), "[5.0,1e+300,-0.0,inf,nan,-inf]");
  EXPECT_EQ(ElementTypes("[5.0,1e+300,-0.0,inf,nan,-inf]"),
            "double double double double double double");
}

TEST_F(AlphaTypes, AnIllFormedListIsRefused) {
  for (const char* const text :
       {"", "[", "]", "1,2", "[1", "1]", "[1,]", "[,1]", "[1,,2]", "[,]", " []", "[] ", "[\"a]",
        "[\"a\"b]", "[[1]", "[[1,]]", "[\"\\x\"]"}) {
    EXPECT_EQ(Through(List, text), "refused") << text;
  }
}

TEST_F(AlphaTypes, AListWithoutElementsOfItsOwnIsWrittenAsNull) {
  const Value list = Make(List, "[1]");
  EXPECT_EQ(list->SetValueStr(KVLCodeContext(), "NULL"), KVLResult_Success);
  EXPECT_FALSE(list->IsValued());
  EXPECT_EQ(TextOf(*list), "NULL");
}

TEST_F(AlphaTypes, ListsNestAHundredDeep) {
  const std::string fits = std::string(100, '[') + std::string(100, ']');
  EXPECT_EQ(Through(List, fits.c_str()), fits);
  const std::string tooDeep = "[" + fits + "]";
  EXPECT_EQ(Through(List, tooDeep.c_str()), "refused");
}

TEST_F(AlphaTypes, AListThatHoldsItselfIsNotWritten) {
  const Value list = Make(List);
  KVLVector<Value>& elements = static_cast<KVLCodeListValue&>(*list).MakeOwnElements();
  elements.Append(list);
  MRBUnicodeString text = "untouched";
  EXPECT_EQ(list->GetValueStr(KVLCodeContext(), text), KVLResult_InvalidArgument);
  EXPECT_EQ(text, "untouched");
  elements.Resize(0);
}

TEST_F(AlphaTypes, AListWithAnEmptyPlaceIsNotWritten) {
  const Value list = Make(List);
  static_cast<KVLCodeListValue&>(*list).MakeOwnElements().Append(Value());
  MRBUnicodeString text;
  EXPECT_EQ(list->GetValueStr(KVLCodeContext(), text), KVLResult_InvalidArgument);
}

TEST_F(AlphaTypes, AssignmentBetweenEqualTypesCopiesTheData) {
  const KVLCodeContext context;
  const Value source = Make("string", "\"\\\"quoted\"");
  const Value target = Make("string", "former");
  EXPECT_EQ(target->AssignFrom(context, *source), KVLResult_Success);
  EXPECT_EQ(TextOf(*target), TextOf(*source));
  EXPECT_EQ(target->AssignFrom(context, *target), KVLResult_Success);
  EXPECT_EQ(TextOf(*target), TextOf(*source));
}

TEST_F(AlphaTypes, ConversionsKeepTheValueOrRefuse) {
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
  const KVLCodeContext context;
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

TEST_F(AlphaTypes, UnrelatedTypesAreNotConverted) {
  const Value list = Make(List, "[1]");
  EXPECT_EQ(Make("double")->AssignFrom(KVLCodeContext(), *list), KVLResult_Failure);
  EXPECT_EQ(Make(List)->AssignFrom(KVLCodeContext(), *Make("int", "1")), KVLResult_Failure);
}

}  // namespace
