#include <gtest/gtest.h>

#include <cmath>

#include "KitModule.h"
#include "KitShapes.h"

KVL_CONVERSION(int, double);
KVL_CONVERSION(Spot, MRBUnicodeString);
KVL_CONVERSION(MRBUnicodeString, Spot);
KVL_CONVERSION_WITH(double, int, [](const double& from, int& to) {
  if (std::trunc(from) != from) return false;
  to = static_cast<int>(from);
  return true;
});
KVL_CONVERSION_WITH(Spot, double, [](const Spot& from) { return std::hypot(from.x, from.y); });
KVL_CONVERSION_WITH(double, bool, [](const double& from, bool& to) -> long {
  if (from != 0 && from != 1) return KVLResult_NotImplemented;
  to = from != 0;
  return KVLResult_Success;
});

namespace {

template <class From, class To>
long Convert(const From& from, To& to) {
  const KVLCodeContext context;
  kvl::Value target(kvl::TableOf<To>, "");
  const KVLSmartPtr<KVLCodeValue> source = kvl::MakeValueOf(from);
  const long result = context.Convert(*source, target);
  to = target.Get<To>();
  return result;
}

TEST(KVLKitConversion, CppConvertsWhereNothingElseIsSaid) {
  double number = 0;
  EXPECT_EQ(Convert(3, number), 0);
  EXPECT_EQ(number, 3);
  EXPECT_EQ(KitDeclaration("_conversions/int/double"), "double double(int from)");
}

TEST(KVLKitConversion, TextsAreReadAndWrittenByTheTypesOwnForm) {
  MRBUnicodeString text;
  EXPECT_EQ(Convert(Spot{1, 2}, text), 0);
  EXPECT_EQ(text, "(1, 2)");
  Spot spot;
  EXPECT_EQ(Convert(MRBUnicodeString("(3,4)"), spot), 0);
  EXPECT_EQ(spot.y, 4);
  EXPECT_EQ(Convert(MRBUnicodeString("3,4"), spot), KVLResult_InvalidArgument);
}

TEST(KVLKitConversion, AFunctionMayRefuse) {
  int number = 0;
  EXPECT_EQ(Convert(2.0, number), 0);
  EXPECT_EQ(number, 2);
  EXPECT_EQ(Convert(2.5, number), KVLResult_InvalidArgument);
  EXPECT_EQ(KitDeclaration("_conversions/double/int"), "long int(double from, int& to)");
}

TEST(KVLKitConversion, ACodeThatAFunctionReturnsIsPassedOn) {
  bool flag = false;
  EXPECT_EQ(Convert(1.0, flag), 0);
  EXPECT_TRUE(flag);
  EXPECT_EQ(Convert(0.5, flag), KVLResult_NotImplemented);
}

TEST(KVLKitConversion, AFunctionMayReturnTheTarget) {
  double length = 0;
  EXPECT_EQ(Convert(Spot{3, 4}, length), 0);
  EXPECT_EQ(length, 5);
}

TEST(KVLKitConversion, AConversionHasADocOfItsOwn) {
  EXPECT_EQ(KitVariable("doc/conversions/double/int"), "Converts double to int.");
}

}  // namespace
