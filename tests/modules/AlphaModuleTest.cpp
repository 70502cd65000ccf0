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

TEST_F(Alpha, Int64Reads64Bits) {
  for (const char* const text : {"0", "-7", "9223372036854775807", "-9223372036854775808"})
    EXPECT_EQ(Through("int64", text), text);
  for (const char* const text : {"", "+1", "1.0", "1e3", " 1", "9223372036854775808", "x"})
    EXPECT_EQ(Through("int64", text), "refused") << text;
}

TEST_F(Alpha, TheFormOfATextDecidesTheTypeOfAny) {
  const struct {
    const char* text;
    const char* type;
  } cases[] = {{"true", "bool"},
               {"1", "int"},
               {"2147483648", "int64"},
               {"9223372036854775808", "double"},
               {"1.0", "double"},
               {"nan", "double"},
               {"\"1\"", "string"},
               {"a b", "string"},
               {"[1]", List},
               {"NULL", "void"},
               {"", "void"},
               {"double(1)", "string"}};
  for (const auto& form : cases)
    EXPECT_EQ(Result("scalar/typeof", {form.text}), form.type) << form.text;
}

TEST_F(Alpha, CompareOrdersNumbersByTheirExactValues) {
  const struct {
    const char* a;
    const char* b;
    const char* order;
  } cases[] = {{"1", "2", "-1"},
               {"2", "1.5", "1"},
               {"2", "2.0", "0"},
               {"-1.5", "-1", "-1"},
               {"-0.0", "0", "0"},
               {"5e-324", "0", "1"},
               {"-5e-324", "0", "-1"},
               {"inf", "9223372036854775807", "1"},
               {"-inf", "-9223372036854775808", "-1"},
               {"-9223372036854775808", "-9223372036854775808.0", "0"},
               {"9223372036854775807", "9223372036854775808.0", "-1"},
               {"9007199254740993", "9007199254740992.0", "1"},
               {"9007199254740993", "9007199254740994.0", "-1"}};
  for (const auto& pair : cases) {
    EXPECT_EQ(Result("scalar/compare", {pair.a, pair.b}), pair.order) << pair.a << " " << pair.b;
    const std::string opposite = pair.order[0] == '-' ? "1" : pair.order[0] == '1' ? "-1" : "0";
    EXPECT_EQ(Result("scalar/compare", {pair.b, pair.a}), opposite) << pair.b << " " << pair.a;
  }
}

TEST_F(Alpha, CompareOrdersTextsByBytesAndFalseBeforeTrue) {
  EXPECT_EQ(Result("scalar/compare", {"a", "b"}), "-1");
  EXPECT_EQ(Result("scalar/compare", {"Z", "a"}), "-1");
  EXPECT_EQ(Result("scalar/compare", {"\xC3\xA9", "z"}), "1");
  EXPECT_EQ(Result("scalar/compare", {"ab", "a"}), "1");
  EXPECT_EQ(Result("scalar/compare", {"\"\"", "\"\""}), "0");
  EXPECT_EQ(Result("scalar/compare", {"false", "true"}), "-1");
  EXPECT_EQ(Result("scalar/compare", {"true", "true"}), "0");
}

TEST_F(Alpha, CompareRefusesWhatHasNoOrder) {
  EXPECT_EQ(Thrown("scalar/compare", {"1", "a"}), "cannot compare int with string");
  EXPECT_EQ(Thrown("scalar/compare", {"true", "1"}), "cannot compare bool with int");
  EXPECT_EQ(Thrown("scalar/compare", {"NULL", "1"}), "cannot compare void with int");
  EXPECT_EQ(Thrown("scalar/compare", {"NULL"}), "cannot compare void with void");
  EXPECT_EQ(Thrown("scalar/compare", {"[1]", "[1]"}),
            std::string("cannot compare ") + List + " with " + List);
  EXPECT_EQ(Thrown("scalar/compare", {"nan", "1"}), "nan has no place among the numbers");
  EXPECT_EQ(Thrown("scalar/compare", {"1", "nan"}), "nan has no place among the numbers");
}

TEST_F(Alpha, ParseIntReadsDigitsOfTheBase) {
  EXPECT_EQ(Result("scalar/parse_int", {"-42"}), "-42");
  EXPECT_EQ(Result("scalar/parse_int", {"ff", "16"}), "255");
  EXPECT_EQ(Result("scalar/parse_int", {"-Zz", "36"}), "-1295");
  EXPECT_EQ(Result("scalar/parse_int", {"0101", "2"}), "5");
  EXPECT_EQ(Result("scalar/parse_int", {"-8000000000000000", "16"}), "-9223372036854775808");
  EXPECT_EQ(Thrown("scalar/parse_int", {"8000000000000000", "16"}),
            "'8000000000000000' does not fit 64 bits");
  for (const char* const text : {"", "-", "+1", " 1", "1 ", "1.0", "2x", "--1"}) {
    EXPECT_EQ(Thrown("scalar/parse_int", {text}),
              "'" + std::string(text) + "' is no whole number of base 10");
  }
  EXPECT_EQ(Thrown("scalar/parse_int", {"2", "2"}), "'2' is no whole number of base 2");
  for (const char* const base : {"1", "0", "-10", "37", "2147483647"})
    EXPECT_EQ(Thrown("scalar/parse_int", {"1", base}), "base must lie between 2 and 36") << base;
}

TEST_F(Alpha, FormatPutsTheValueIntoThePattern) {
  const struct {
    const char* value;
    const char* pattern;
    const char* text;
  } cases[] = {
      {"1", "{}", "1"},
      {"x", "", ""},
      {"x", "{}{}", "xx"},
      {"x", "{{{}}}", "{x}"},
      {"0.1", "{}", "0.1"},
      {"1e300", "{}", "1e+300"},
      {"true", "{}!", "true!"},
      {"NULL", "<{}>", "<>"},
      {"[1, a]", "{}", "[1,\"a\"]"},
      {"255", "{:d} {:x} {:X} {:o} {:b}", "255 ff FF 377 11111111"},
      {"255", "{:#x} {:#X} {:#o} {:#b} {:#d}", "0xff 0xFF 0o377 0b11111111 255"},
      {"-255", "{:#06x}|{:+}|{:8}", "-0x0ff|-255|    -255"},
      {"-9223372036854775808", "{:x}", "-8000000000000000"},
      {"5", "{:+}", "+5"},
      {"5", "{:<4}|{:>4}|{:^4}|{:04}", "5   |   5| 5  |0005"},
      {"5", "{:*^5}", "**5**"},
      {"5", "{:\xC3\xA9>3}",
       "\xC3\xA9\xC3\xA9"
       "5"},
      {"5", "{:.2f}", "5.00"},
      {"2.5", "{:.0f} {:.3e} {:.2g}", "2 2.500e+00 2.5"},
      {"-2.5", "{:8.2f}|{:08.2f}|{:+.1f}", "   -2.50|-0002.50|-2.5"},
      {"-0.0", "{} {:.1f}", "-0 -0.0"},
      {"inf", "{:05}|{:+f}", "  inf|+inf"},
      {"nan", "{:6.1f}|", "   nan|"},
      {"0.1", "{:.20f}", "0.10000000000000000555"},
      {"abc", "{:5}|{:>5}|{:.2}|{:s}", "abc  |  abc|ab|abc"},
      {"\"\xC3\xA9\xC3\xA9\"", "{:>3}|{:.1}|", " \xC3\xA9\xC3\xA9|\xC3\xA9|"},
      {"7", "{:s}", "7"},
      {"true", "{:>6}", "  true"},
  };
  for (const auto& format : cases) {
    EXPECT_EQ(Result("scalar/format", {format.value, format.pattern}), format.text)
        << format.pattern;
  }
  EXPECT_EQ(Result("scalar/format", {"7"}), "7");
}

TEST_F(Alpha, FormatRefusesAMalformedPattern) {
  const struct {
    const char* value;
    const char* pattern;
    const char* message;
  } cases[] = {
      {"1", "{", "'{' without '}' in the pattern"},
      {"1", "a{:d", "'{' without '}' in the pattern"},
      {"1", "}", "'}' without '{' in the pattern"},
      {"1", "{0}", "'{0}' is neither '{}' nor '{:form}'"},
      {"1", "{:dd}", "form 'dd': something follows the type"},
      {"1", "{:q}", "form 'q': the type is one of d x X o b e f g s"},
      {"1", "{:10001}", "form '10001': the width goes up to 10000"},
      {"1", "{:99999999999}", "form '99999999999': the width goes up to 10000"},
      {"1.5", "{:.f}", "form '.f': the precision goes up to 1100"},
      {"1.5", "{:.-1f}", "form '.-1f': the precision goes up to 1100"},
      {"1.5", "{:.1101f}", "form '.1101f': the precision goes up to 1100"},
      {"1.5", "{:d}", "form 'd': the value is of type double"},
      {"x", "{:f}", "form 'f': the value is of type string"},
      {"NULL", "{:d}", "form 'd': the value is of type void"},
      {"1", "{:.2d}", "form '.2d': a whole number has no precision"},
      {"1.5", "{:#f}", "form '#f': '#' goes with a whole number"},
      {"x", "{:+}", "form '+': it is for numbers only"},
  };
  for (const auto& format : cases) {
    EXPECT_EQ(Thrown("scalar/format", {format.value, format.pattern}), format.message)
        << format.pattern;
  }
  // Every digit of the longest number there is.
  EXPECT_EQ(Result("scalar/format", {"-1.7976931348623157e308", "{:.1100f}"}).size(),
            1u + 309 + 1 + 1100);
  std::string many;
  for (int i = 0; i < 2000; ++i)
    many += "{:10000}";
  EXPECT_EQ(Thrown("scalar/format", {"1", many.c_str()}), "the text would be longer than 16 MiB");
}

}  // namespace
