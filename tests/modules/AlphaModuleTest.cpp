#include <clocale>
#include <cmath>
#include <cstring>
#include <random>

#include "KVLCodeListValue.h"
#include "LoadedModules.h"

namespace {

constexpr char List[] = "KVLVector<KVLCodeValue_var>";

class Alpha : public LoadedModules {
 protected:
  Alpha() : LoadedModules({"Alpha", "Gamma"}) {}
};

TEST_F(Alpha, EveryTypeMakesAFreshValueOfItsName) {
  const struct {
    const char* typeName;
    const char* text;
  } cases[] = {{"bool", "false"}, {"int", "0"},   {"long", "0"}, {"double", "0"},
               {"int64", "0"},    {"string", ""}, {"void", ""},  {"any", "NULL"}};
  for (const auto& fresh : cases) {
    const Value value = Make(fresh.typeName);
    ASSERT_TRUE(value) << fresh.typeName;
    EXPECT_EQ(value->GetTypeName(), fresh.typeName);
    EXPECT_EQ(value->GetName(), "value");
    EXPECT_EQ(TextOf(*value), fresh.text);
  }
}

TEST_F(Alpha, BoolReadsItsTwoWordsOnly) {
  EXPECT_EQ(Through("bool", "true"), "true");
  EXPECT_EQ(Through("bool", "false"), "false");
  for (const char* const text : {"", "1", "0", "True", "TRUE", " true", "true ", "truee", "yes"})
    EXPECT_EQ(Through("bool", text), "refused") << text;
}

TEST_F(Alpha, IntAndLongRead32Bits) {
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

TEST_F(Alpha, LongHolds32BitsOnEveryPlatform) {
  const Value value = Make("long", "-2");
  const unsigned char expected[] = {0xFE, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(std::memcmp(value->GetValuePtr(), expected, sizeof(expected)), 0);
}

TEST_F(Alpha, DoubleIsWrittenInItsShortestForm) {
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

TEST_F(Alpha, DoubleRefusesWhatIsNoNumberOrOutOfRange) {
  for (const char* const text : {"", ".", "-", "+1", " 1", "1 ", "1,5", "1e", "1e+", "0x1p3",
                                 "1e400", "-1e400", "1e-400", "1.2.3", "x", "1x", "--1"}) {
    EXPECT_EQ(Through("double", text), "refused") << text;
  }
}

TEST_F(Alpha, ANulEndsNoNumber) {
  EXPECT_EQ(Through("int", MRBUnicodeString("1\0", 2)), "refused");
  EXPECT_EQ(Through("double", MRBUnicodeString("1\0", 2)), "refused");
  EXPECT_EQ(Through("bool", MRBUnicodeString("true\0", 5)), "refused");
}

TEST_F(Alpha, EveryDoubleReadsBackToTheSameBits) {
  constexpr unsigned int Seed = 42;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937_64 random(Seed);
  const Value value = Make("double");
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

TEST_F(Alpha, TheLocaleChangesNothing) {
  const std::string former = std::setlocale(LC_ALL, nullptr);
  for (const char* const locale : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "German"}) {
    if (std::setlocale(LC_ALL, locale)) break;
  }
  EXPECT_EQ(Through("double", "1234.5"), "1234.5");
  EXPECT_EQ(Through("double", "1234,5"), "refused");
  EXPECT_EQ(Through("int", "1234567"), "1234567");
  (void)std::setlocale(LC_ALL, former.c_str());
}

TEST_F(Alpha, StringIsItsOwnText) {
  const char* const texts[] = {"", " a b ", "\xC3\xA9\xFF", "[1", "say \"hi\"", "\\n", "a\nb"};
  for (const char* const text : texts)
    EXPECT_EQ(Through("string", text), text);
  const std::string nul("a\0b", 3);
  EXPECT_EQ(Through("string", MRBUnicodeString(nul.data(), 3)), nul);
}

TEST_F(Alpha, AStringThatBeginsWithAQuoteIsQuoted) {
  const Value value = Make("string", "\"\\\"a\\\\\\n\\r\\tb\\\"\"");
  EXPECT_EQ(*static_cast<MRBUnicodeString*>(value->GetValuePtr()), "\"a\\\n\r\tb\"");
  EXPECT_EQ(TextOf(*value), "\"\\\"a\\\\\\n\\r\\tb\\\"\"");
  EXPECT_EQ(Through("string", "\"plain\""), "plain");
  EXPECT_EQ(Through("string", "\"\""), "");
}

TEST_F(Alpha, AnIllFormedQuotedStringIsRefused) {
  for (const char* const text : {"\"", "\"a", "\"a\"b", "\"a\\\"", "\"\\x\"", "\"a\"\"", "\"\\"})
    EXPECT_EQ(Through("string", text), "refused") << text;
}

TEST_F(Alpha, AnyStringReadsBackToTheSameBytes) {
  constexpr unsigned int Seed = 7;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937 random(Seed);
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

TEST_F(Alpha, VoidHasTheEmptyTextOnly) {
  EXPECT_EQ(Through("void", ""), "");
  EXPECT_EQ(Through("void", " "), "refused");
  EXPECT_FALSE(Make("void")->IsValued());
}

TEST_F(Alpha, AssignmentBetweenEqualTypesCopiesTheData) {
  const Value source = Make("string", "\"\\\"quoted\"");
  const Value target = Make("string", "former");
  EXPECT_EQ(target->AssignFrom(context, *source), KVLResult_Success);
  EXPECT_EQ(TextOf(*target), TextOf(*source));
  EXPECT_EQ(target->AssignFrom(context, *target), KVLResult_Success);
  EXPECT_EQ(TextOf(*target), TextOf(*source));
}

}  // namespace
