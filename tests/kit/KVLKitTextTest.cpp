#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "KVLKitText.h"
#include "KVLKitTraits.h"

namespace {

template <class T>
long Read(const char* text, T& data) {
  return kvl::Parse(MRBUnicodeString(text), data);
}

TEST(KVLKitText, NumbersAreReadWholeOrNotAtAll) {
  int number = 7;
  for (const char* const text : {"", " 1", "1 ", "+1", "1.0", "0x1", "1e0", "--1", "2147483648",
                                 "-2147483649", "1\n", "one"}) {
    EXPECT_EQ(Read(text, number), KVLResult_InvalidArgument) << text;
    EXPECT_EQ(number, 7) << text;
  }
  EXPECT_EQ(Read("-2147483648", number), 0);
  EXPECT_EQ(number, std::numeric_limits<int>::min());
  std::int64_t big = 0;
  EXPECT_EQ(Read("9223372036854775807", big), 0);
  EXPECT_EQ(big, std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(Read("9223372036854775808", big), KVLResult_InvalidArgument);
}

TEST(KVLKitText, ATextWithANulIsNoNumber) {
  int number = 7;
  EXPECT_EQ(kvl::Parse(MRBUnicodeString("1\0", 2), number), KVLResult_InvalidArgument);
}

TEST(KVLKitText, DoublesAreWrittenInTheShortestFormThatReadsBack) {
  EXPECT_EQ(kvl::Print(0.1), "0.1");
  EXPECT_EQ(kvl::Print(7.75), "7.75");
  EXPECT_EQ(kvl::Print(1e300), "1e+300");
  EXPECT_EQ(kvl::Print(-0.0), "-0");
  EXPECT_EQ(kvl::Print(5.0), "5");
  double number = 1;
  EXPECT_EQ(Read("-inf", number), 0);
  EXPECT_EQ(number, -std::numeric_limits<double>::infinity());
  EXPECT_EQ(Read("nan", number), 0);
  EXPECT_TRUE(std::isnan(number));
  EXPECT_EQ(kvl::Print(number), "nan");
  EXPECT_EQ(kvl::Print(std::copysign(number, -1.0)), "nan");
  EXPECT_EQ(Read("1e999", number), KVLResult_InvalidArgument);
}

TEST(KVLKitText, BoolsAreTwoWords) {
  bool flag = false;
  EXPECT_EQ(Read("true", flag), 0);
  EXPECT_TRUE(flag);
  for (const char* const text : {"True", "1", "", "true "})
    EXPECT_EQ(Read(text, flag), KVLResult_InvalidArgument) << text;
  EXPECT_TRUE(flag);
  EXPECT_EQ(kvl::Print(false), "false");
}

TEST(KVLKitText, LongHas32Bits) {
  kvl::Long number;
  EXPECT_EQ(sizeof(number), 4u);
  EXPECT_EQ(Read("-5", number), 0);
  EXPECT_EQ(number, -5);
  EXPECT_EQ(Read("2147483648", number), KVLResult_InvalidArgument);
}

TEST(KVLKitText, AStringIsRawUnlessItBeginsWithAQuote) {
  MRBUnicodeString text;
  EXPECT_EQ(Read("say \"hi\"", text), 0);
  EXPECT_EQ(text, "say \"hi\"");
  EXPECT_EQ(Read("\"a\\\"b\\\\c\\n\\r\\td\"", text), 0);
  EXPECT_EQ(text, "a\"b\\c\n\r\td");
  EXPECT_EQ(kvl::Print(MRBUnicodeString("say \"hi\"")), "say \"hi\"");
  EXPECT_EQ(kvl::Print(MRBUnicodeString("\"hi\"\n")), "\"\\\"hi\\\"\\n\"");
}

TEST(KVLKitText, AMalformedQuotedStringIsRefused) {
  MRBUnicodeString text = "kept";
  for (const char* const malformed :
       {"\"", "\"a", "\"a\"b", "\"a\"b\"", "\"\\x\"", "\"\\\"", "\"a\\"}) {
    EXPECT_EQ(Read(malformed, text), KVLResult_InvalidArgument) << malformed;
    EXPECT_EQ(text, "kept");
  }
}

TEST(KVLKitText, QuotingKeepsEveryByte) {
  MRBUnicodeString all;
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    all += MRBUnicodeString(&character, 1);
  }
  MRBUnicodeString read;
  EXPECT_EQ(kvl::Unquote(kvl::Quote(all), read), 0);
  EXPECT_EQ(read, all);
}

TEST(KVLKitText, ItemsAreCutOutsideBracketsAndQuotes) {
  KVLVector<MRBUnicodeString> items;
  EXPECT_EQ(kvl::ParseItems("[ a , (b, c), \"d, e\" ]", '[', ']', items), 0);
  ASSERT_EQ(items.GetCount(), 3);
  EXPECT_EQ(items[0], "a");
  EXPECT_EQ(items[1], "(b, c)");
  EXPECT_EQ(items[2], "\"d, e\"");
}

TEST(KVLKitText, NothingBetweenTheBracketsIsNoItem) {
  KVLVector<MRBUnicodeString> items;
  EXPECT_EQ(kvl::ParseItems("[]", '[', ']', items), 0);
  EXPECT_EQ(kvl::ParseItems("[ \t]", '[', ']', items), 0);
  EXPECT_EQ(items.GetCount(), 0);
}

TEST(KVLKitText, MissingBracketsAndEmptyItemsAreRefused) {
  for (const char* const text : {"", "[", "]", "a]", "[a", "[a,]", "[,a]", "[a,,b]", "(a)"}) {
    KVLVector<MRBUnicodeString> items;
    EXPECT_EQ(kvl::ParseItems(text, '[', ']', items), KVLResult_InvalidArgument) << text;
  }
}

TEST(KVLKitText, ARecordIsReadWholeOrNotAtAll) {
  double x = 1;
  double y = 2;
  for (const char* const text : {"(3)", "(3, 4, 5)", "(3, y)", "[3, 4]", "3, 4", "()"}) {
    EXPECT_EQ(kvl::ParseRecord(MRBUnicodeString(text), x, y), KVLResult_InvalidArgument) << text;
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, 2);
  }
  EXPECT_EQ(kvl::ParseRecord(MRBUnicodeString("( 3 ,4 )"), x, y), 0);
  EXPECT_EQ(x, 3);
  EXPECT_EQ(y, 4);
  EXPECT_EQ(kvl::PrintRecord(x, y), "(3, 4)");
}

}  // namespace
