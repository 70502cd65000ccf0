#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

#include "LoadedModules.h"

namespace {

class Zeta : public LoadedModules {
 protected:
  Zeta() : LoadedModules({"Alpha", "Zeta"}) {}

  double Number(const MRBUnicodeString& path, std::initializer_list<const char*> texts) const {
    return std::stod(Result(path, texts));
  }
};

// Any double: an even choice of bits, and the ones that are easily got wrong.
class Numbers {
 public:
  explicit Numbers(unsigned int seed) : random(seed) {}

  std::string Text(bool isNanAllowed) {
    static const char* const special[] = {
        "0", "-0", "1", "-1", "inf", "-inf", "nan", "5e-324", "1.7976931348623157e+308"};
    for (;;) {
      if (random() % 4 == 0) {
        const char* const text = special[random() % 9];
        if (isNanAllowed || std::strcmp(text, "nan") != 0) return text;
        continue;
      }
      const std::uint64_t bits = random();
      double number;
      std::memcpy(&number, &bits, sizeof(number));
      if (std::isnan(number)) continue;
      char text[40];
      std::snprintf(text, sizeof(text), "%.17g", number);
      return text;
    }
  }
  std::string Triple(bool isNanAllowed) {
    return "(" + Text(isNanAllowed) + "," + Text(isNanAllowed) + "," + Text(isNanAllowed) + ")";
  }
  std::mt19937_64 random;
};

TEST_F(Zeta, FreshValues) {
  EXPECT_EQ(TextOf(*Make("Point")), "(0, 0)");
  EXPECT_EQ(TextOf(*Make("Vector")), "(0, 0, 0)");
  EXPECT_EQ(TextOf(*Make("Direction")), "(1, 0, 0)");
  EXPECT_EQ(TextOf(*Make("Box")), "()");
  EXPECT_EQ(TextOf(*Make("Transform")), "((1, 0, 0), (0, 1, 0), (0, 0, 1), (0, 0, 0))");
  EXPECT_EQ(TextOf(*Make("Axis")), "X");
  EXPECT_EQ(TextOf(*Make("KVLVector<Point>")), "[]");
  EXPECT_EQ(TextOf(*Make("KVLVector<Vector>")), "[]");
}

TEST_F(Zeta, APointIsTwoOrThreeNumbers) {
  EXPECT_EQ(Through("Point", "(1,2)"), "(1, 2)");
  EXPECT_EQ(Through("Point", "( -1.5 , 1e2 )"), "(-1.5, 100)");
  EXPECT_EQ(Through("Point", "(1,2,3)"), "(1, 2, 3)");
  EXPECT_EQ(Through("Point", "(1,2,0)"), "(1, 2)");
  EXPECT_EQ(Through("Point", "(-0,0,-0)"), "(-0, 0, -0)");
  for (const char* const text :
       {"",     "(",    ")",         "()",      "(1)",    "(1,)",     "(,1)",  "1,2",
        "(1,2", "1,2)", "(1,2,3,4)", "(1,2,)",  " (1,2)", "(1,2) ",   "(a,b)", "(1;2)",
        ",",    "(,)",  "((1,2))",   "(1,(2))", "[1,2]",  "(1e999,0)"}) {
    EXPECT_EQ(Through("Point", text), "refused") << text;
  }
}

TEST_F(Zeta, AVectorIsWrittenInFull) {
  EXPECT_EQ(Through("Vector", "(1,2)"), "(1, 2, 0)");
  EXPECT_EQ(Through("Vector", "(1,2,-0)"), "(1, 2, -0)");
  EXPECT_EQ(Through("Vector", "(1)"), "refused");
}

TEST_F(Zeta, ADirectionIsBroughtToLengthOne) {
  EXPECT_EQ(Through("Direction", "(0, 0, 7)"), "(0, 0, 1)");
  EXPECT_EQ(Through("Direction", "(3, 4)"), "(0.6, 0.8, 0)");
  EXPECT_EQ(Through("Direction", "(0, -1e308)"), "(0, -1, 0)");
  EXPECT_EQ(Through("Direction", "(0, 5e-324, 0)"), "(0, 1, 0)");
  EXPECT_EQ(Through("Direction", "(1.5e308, 1.5e308)"), Through("Direction", "(1, 1)"));
}

TEST_F(Zeta, WhatHasNoDirectionIsRefused) {
  for (const char* const text : {"(0, 0, 0)", "(0, -0)", "(inf, 0)", "(1, nan)", "(nan, nan, nan)",
                                 "(-inf, inf, 0)", "()", "(1)"}) {
    EXPECT_EQ(Through("Direction", text), "refused") << text;
  }
  EXPECT_EQ(Converted("Vector", "(0,0,0)", "Direction"), "refused");
  EXPECT_EQ(Thrown("geom/normalize", {"(0,0,0)"}), "the vector has no direction");
  EXPECT_EQ(Thrown("geom/normalize", {"(inf,0,0)"}), "the vector has no direction");
}

TEST_F(Zeta, ADirectionIsAVector) {
  const KVLSmartPtr<const KVLCodeType> direction = context.GetTypeFromName("Direction");
  EXPECT_EQ(direction->GetParentTypeName(), "Vector");
  EXPECT_TRUE(direction->IsSubTypeOf(context, "Vector"));
  EXPECT_EQ(Converted("Direction", "(0,2,0)", "Vector"), "(0, 1, 0)");
}

TEST_F(Zeta, ABoxSortsItsCorners) {
  EXPECT_EQ(Through("Box", "((0,0),(1,1,1))"), "((0, 0), (1, 1, 1))");
  EXPECT_EQ(Through("Box", "((1,0,3),(0,2,-1))"), "((0, 0, -1), (1, 2, 3))");
  EXPECT_EQ(Through("Box", "((0,0),(-inf,inf))"), "((-inf, 0), (0, inf))");
  EXPECT_EQ(Through("Box", "((0,-0),(-0,0))"), "((0, -0), (-0, 0))");
  EXPECT_EQ(Through("Box", "()"), "()");
  EXPECT_EQ(Through("Box", "( )"), "()");
  for (const char* const text : {"", "(())", "((0,0))", "((0,0),(1,1),(2,2))", "(0,0)",
                                 "((nan,0),(0,0))", "((0,0),(0,0,nan))", "((0,0),)"}) {
    EXPECT_EQ(Through("Box", text), "refused") << text;
  }
}

TEST_F(Zeta, AnAxisHasAName) {
  KVLVector<MRBUnicodeString> values;
  EXPECT_TRUE(context.GetTypeFromName("Axis")->GetEnumValues(values));
  ASSERT_EQ(values.GetCount(), 3);
  for (const MRBUnicodeString& value : values)
    EXPECT_EQ(Through("Axis", value), Bytes(value));
  for (const char* const text : {"", "x", "W", "X,Y", "0", " X"})
    EXPECT_EQ(Through("Axis", text), "refused") << text;
  EXPECT_EQ(Result("geom/axis/direction", {"Y"}), "(0, 1, 0)");
  EXPECT_EQ(Converted("Axis", "Z", "Direction"), "(0, 0, 1)");
  EXPECT_EQ(Refused("geom/axis/direction", {"W"}), KVLResult_InvalidArgument);
}

TEST_F(Zeta, EveryPointVectorAndTransformReadsBackToTheSameBits) {
  constexpr unsigned int Seed = 20261;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  Numbers numbers(Seed);
  const struct {
    const char* typeName;
    std::size_t size;
  } types[] = {{"Point", 24}, {"Vector", 24}, {"Box", 48}, {"Transform", 96}};
  for (const auto& type : types) {
    const bool isBox = std::strcmp(type.typeName, "Box") == 0;
    for (int i = 0; i < 2000; ++i) {
      std::string text = numbers.Triple(!isBox);
      if (type.size > 24) {
        for (std::size_t size = 24; size < type.size; size += 24)
          text += ", " + numbers.Triple(!isBox);
        text = "(" + text + ")";
      }
      const Value value = Make(type.typeName, text.c_str());
      const std::string written = TextOf(*value);
      const Value back = Make(type.typeName, written.c_str());
      ASSERT_EQ(std::memcmp(value->GetValuePtr(), back->GetValuePtr(), type.size), 0) << text;
      ASSERT_EQ(TextOf(*back), written);
    }
  }
}

TEST_F(Zeta, EveryDirectionReadsBackToTheSameBits) {
  constexpr unsigned int Seed = 20262;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  Numbers numbers(Seed);
  std::uniform_real_distribution<double> even(-1, 1);
  for (int i = 0; i < 5000; ++i) {
    char text[100];
    std::snprintf(text, sizeof(text), "(%.17g,%.17g,%.17g)", even(numbers.random),
                  even(numbers.random), even(numbers.random));
    const Value value = Make("Direction", text);
    const auto* const data = static_cast<const double*>(value->GetValuePtr());
    ASSERT_NEAR(std::hypot(data[0], data[1], data[2]), 1, 1e-15);
    const Value back = Make("Direction", TextOf(*value).c_str());
    ASSERT_EQ(std::memcmp(data, back->GetValuePtr(), 24), 0) << text;
  }
}

TEST_F(Zeta, TextsAreConvertedBothWays) {
  EXPECT_EQ(Converted("string", "(1,2)", "Point"), "(1, 2)");
  EXPECT_EQ(Converted("string", "1,2", "Point"), "refused");
  EXPECT_EQ(Converted("Point", "(1,2)", "string"), "(1, 2)");
  EXPECT_EQ(Converted("string", "(1,2)", "Vector"), "(1, 2, 0)");
  EXPECT_EQ(Converted("string", "(0,2)", "Direction"), "(0, 1, 0)");
  EXPECT_EQ(Converted("string", "(0,0)", "Direction"), "refused");
  EXPECT_EQ(Converted("Box", "((1,1),(0,0))", "string"), "((0, 0), (1, 1))");
  EXPECT_EQ(Converted("string", "()", "Box"), "()");
  EXPECT_EQ(Converted("string", "(0,0)", "Transform"), "refused");
  EXPECT_EQ(Converted("Axis", "X", "string"), "X");
  EXPECT_EQ(Converted("string", "Q", "Axis"), "refused");
}

TEST_F(Zeta, PointsAndVectorsAreConverted) {
  EXPECT_EQ(Converted("Point", "(1,2)", "Vector"), "(1, 2, 0)");
  EXPECT_EQ(Converted("Vector", "(1,2,0)", "Point"), "(1, 2)");
  EXPECT_EQ(Converted("Vector", "(0,0,-3)", "Direction"), "(0, 0, -1)");
  EXPECT_EQ(Converted("Direction", "(0,0,-3)", "Point"), "(0, 0, -1)");
  EXPECT_EQ(Converted("Point", "(1,2)", "double"), "refused");
  EXPECT_EQ(Converted("int", "1", "Point"), "refused");
}

TEST_F(Zeta, ListsHoldPointsAndVectors) {
  EXPECT_EQ(Through("KVLVector<Point>", "[(1,2), (1,2,3) ]"), "[(1, 2),(1, 2, 3)]");
  EXPECT_EQ(Through("KVLVector<Vector>", "[(1,2)]"), "[(1, 2, 0)]");
  EXPECT_EQ(Through("KVLVector<Point>", "[]"), "[]");
  for (const char* const text : {"", "[(1,2)", "[1]", "[(1,2),]", "[[(1,2)]]"})
    EXPECT_EQ(Through("KVLVector<Point>", text), "refused") << text;
}

TEST_F(Zeta, MembersOfPoints) {
  const KVLSmartPtr<KVLCodeObject> distance =
      KVLCodeEnv::GetDefaultMembersRoot().FindObject("Point/Distance");
  ASSERT_TRUE(distance && distance->AsFunction());
  EXPECT_TRUE(distance->AsFunction()->IsMethod());
  EXPECT_EQ(Result("_members/Point/Distance", {"(0,0)", "(3,4)"}), "5");
  EXPECT_EQ(Result("_members/Point/Distance", {"(1e200,0)", "(-1e200,0)"}), "2e+200");
  EXPECT_EQ(OutputOf("_members/Point/Move", {"(1,2)", "0.5"}, 0), "(1.5, 2)");
  EXPECT_EQ(OutputOf("_members/Point/Move", {"(1,2)", "1", "1", "1"}, 0), "(2, 3, 1)");
  EXPECT_EQ(Result("_members/Point/Translated", {"(1,2)", "(0,0,5)"}), "(1, 2, 5)");
  EXPECT_EQ(Result("_members/Point/VectorTo", {"(1,2)", "(0,0,5)"}), "(-1, -2, 5)");
}

TEST_F(Zeta, ABindingFixesTheObjectOfAMethod) {
  const KVLSmartPtr<KVLCodeObject> fromOrigin =
      KVLCodeEnv::GetDefault().FindObject("geom/from_origin");
  ASSERT_TRUE(fromOrigin && fromOrigin->AsFunction());
  EXPECT_FALSE(fromOrigin->AsFunction()->IsMethod());
  EXPECT_EQ(fromOrigin->ToStringCode(), "double Distance(Point other)");
  EXPECT_EQ(Result("geom/from_origin", {"(5,12)"}), "13");
  EXPECT_EQ(Result("geom/from_origin", {"(2,3,6)"}), "7");
}

TEST_F(Zeta, VectorsAndDirections) {
  EXPECT_EQ(Result("geom/distance", {"(0,0)", "(2,3,6)"}), "7");
  EXPECT_EQ(Result("geom/length", {"(2,3,6)"}), "7");
  EXPECT_EQ(Result("geom/dot", {"(1,2,3)", "(4,-5,6)"}), "12");
  EXPECT_EQ(Result("geom/cross", {"(1,0,0)", "(0,1,0)"}), "(0, 0, 1)");
  EXPECT_EQ(Result("geom/cross", {"(1,2,3)", "(2,4,6)"}), "(0, 0, 0)");
  EXPECT_EQ(Result("geom/normalize", {"(0,0,-2)"}), "(0, 0, -1)");
  EXPECT_EQ(Result("_members/Vector/Length", {"(3,4)"}), "5");
  EXPECT_EQ(Result("_members/Vector/Scaled", {"(3,4)", "-2"}), "(-6, -8, 0)");
  EXPECT_EQ(Result("_members/Vector/Plus", {"(3,4)", "(1,1,1)"}), "(4, 5, 1)");
  EXPECT_EQ(Result("_members/Direction/Reversed", {"(0,0,9)"}), "(0, 0, -1)");
}

TEST_F(Zeta, AnglesAreExactNearZeroAndPi) {
  EXPECT_DOUBLE_EQ(Number("geom/angle", {"(1,0,0)", "(0,5,0)"}), std::acos(-1.0) / 2);
  EXPECT_EQ(Number("geom/angle", {"(1,1,1)", "(2,2,2)"}), 0);
  EXPECT_DOUBLE_EQ(Number("geom/angle", {"(1,0,0)", "(-3,0,0)"}), std::acos(-1.0));
  EXPECT_DOUBLE_EQ(Number("geom/angle", {"(1,0,0)", "(1,1e-9,0)"}), 1e-9);
  EXPECT_EQ(Thrown("geom/angle", {"(1,0,0)", "(0,0,0)"}), "the vector has no direction");
}

TEST_F(Zeta, PointsBetweenAndAmongOthers) {
  EXPECT_EQ(Result("geom/between", {"(0,0)", "(2,4,6)"}), "(1, 2, 3)");
  EXPECT_EQ(Result("geom/between", {"(0,0)", "(2,4)", "2"}), "(4, 8)");
  EXPECT_EQ(Result("geom/centroid", {"[(0,0), (3,0), (0,3)]"}), "(1, 1)");
  EXPECT_EQ(Thrown("geom/centroid", {"[]"}), "no points have no centroid");
  EXPECT_EQ(Result("geom/between", {"(1e17,0)", "(1,2)", "1"}), "(1, 2)");
  EXPECT_EQ(Result("geom/between", {"(-1.5e308,0)", "(1.5e308,2)"}), "(0, 1)");
  EXPECT_EQ(Result("geom/centroid", {"[(1,7),(1,7),(3,7)]"}), "(1.6666666666666667, 7)");
  EXPECT_EQ(Result("geom/centroid", {"[(1e308,0),(1e308,0)]"}), "(1e+308, 0)");
}

TEST_F(Zeta, AnInfiniteVectorIsInfinitelyLong) {
  for (const char* const vector : {"(inf,0)", "(0,-inf,1)", "(0,0,inf)", "(inf,inf,inf)"})
    EXPECT_EQ(Result("geom/length", {vector}), "inf") << vector;
}

TEST_F(Zeta, BoxesGrowUniteAndIntersect) {
  EXPECT_EQ(Result("geom/box/around", {"[(1,5), (3,2,1)]"}), "((1, 2), (3, 5, 1))");
  EXPECT_EQ(Result("geom/box/around", {"[]"}), "()");
  EXPECT_EQ(Thrown("geom/box/around", {"[(nan,0)]"}), "the point lies nowhere");
  EXPECT_EQ(OutputOf("_members/Box/Add", {"()", "(1,2)"}, 0), "((1, 2), (1, 2))");
  EXPECT_EQ(OutputOf("_members/Box/Add", {"((0,0),(1,1))", "(5,-1)"}, 0), "((0, -1), (5, 1))");
  EXPECT_EQ(Result("geom/box/unite", {"()", "((0,0),(1,1))"}), "((0, 0), (1, 1))");
  EXPECT_EQ(Result("geom/box/unite", {"()", "()"}), "()");
  EXPECT_EQ(Result("geom/box/intersect", {"((0,0),(2,2))", "((1,1),(3,3))"}), "((1, 1), (2, 2))");
  EXPECT_EQ(Result("geom/box/intersect", {"((0,0),(1,1))", "((1,1),(3,3))"}), "((1, 1), (1, 1))");
  EXPECT_EQ(Result("geom/box/intersect", {"((0,0),(1,1))", "((0,2),(1,3))"}), "()");
  EXPECT_EQ(Result("geom/box/intersect", {"((0,0),(1,1))", "()"}), "()");
  EXPECT_EQ(Result("geom/box/grow", {"((0,0),(2,2))", "1"}), "((-1, -1, -1), (3, 3, 1))");
  EXPECT_EQ(Result("geom/box/grow", {"((0,0),(2,2,2))", "-0.5"}),
            "((0.5, 0.5, 0.5), (1.5, 1.5, 1.5))");
  EXPECT_EQ(Result("geom/box/grow", {"((0,0),(2,2))", "-0.5"}), "()");
  EXPECT_EQ(Result("geom/box/grow", {"()", "5"}), "()");
  EXPECT_EQ(Thrown("geom/box/grow", {"()", "nan"}), "by must be finite");
  EXPECT_EQ(Thrown("geom/box/grow", {"((inf,0),(inf,0))", "inf"}), "by must be finite");
}

TEST_F(Zeta, BoxesAnswerQuestions) {
  EXPECT_EQ(Result("geom/box/contains", {"((0,0),(2,2))", "(2,0)"}), "true");
  EXPECT_EQ(Result("_members/Box/Contains", {"((0,0),(2,2))", "(2,0,0.1)"}), "false");
  EXPECT_EQ(Result("_members/Box/Contains", {"((0,0),(2,2))", "(nan,0)"}), "false");
  EXPECT_EQ(Result("_members/Box/Contains", {"()", "(0,0)"}), "false");
  EXPECT_EQ(Result("_members/Box/IsEmpty", {"()"}), "true");
  EXPECT_EQ(Result("_members/Box/IsEmpty", {"((0,0),(0,0))"}), "false");
  EXPECT_EQ(Result("geom/box/center", {"((0,0),(2,4,6))"}), "(1, 2, 3)");
  EXPECT_EQ(Result("_members/Box/Center", {"((1e308,0),(1.5e308,0))"}), "(1.25e+308, 0)");
  EXPECT_EQ(Thrown("geom/box/center", {"()"}), "the box is empty");
  EXPECT_EQ(Result("_members/Box/Size", {"((1,1),(2,4,6))"}), "(1, 3, 6)");
  EXPECT_EQ(Result("_members/Box/Size", {"()"}), "(0, 0, 0)");
  EXPECT_EQ(Result("geom/box/volume", {"((1,1),(2,4,6))"}), "18");
  EXPECT_EQ(Result("geom/box/volume", {"()"}), "0");
}

TEST_F(Zeta, TransformsAreComposedInOrder) {
  const char* const move = "((1,0,0),(0,1,0),(0,0,1),(1,0,0))";
  const char* const twice = "((2,0,0),(0,2,0),(0,0,2),(0,0,0))";
  EXPECT_EQ(Result("geom/transform/translation", {"(1,0,0)"}),
            "((1, 0, 0), (0, 1, 0), (0, 0, 1), (1, 0, 0))");
  EXPECT_EQ(Result("geom/transform/scaling", {"2"}),
            "((2, 0, 0), (0, 2, 0), (0, 0, 2), (0, 0, 0))");
  EXPECT_EQ(Result("geom/transform/scaling", {"2", "(1,1)"}),
            "((2, 0, 0), (0, 2, 0), (0, 0, 2), (-1, -1, 0))");
  EXPECT_EQ(Result("geom/transform/compose", {move, twice}),
            "((2, 0, 0), (0, 2, 0), (0, 0, 2), (2, 0, 0))");
  EXPECT_EQ(Result("_members/Transform/Then", {twice, move}),
            "((2, 0, 0), (0, 2, 0), (0, 0, 2), (1, 0, 0))");
  EXPECT_EQ(Result("geom/transform/apply", {move, "(1,1)"}), "(2, 1)");
  EXPECT_EQ(Result("_members/Transform/Apply", {twice, "(1,2,3)"}), "(2, 4, 6)");
  EXPECT_EQ(Result("geom/transform/apply_to_vector", {move, "(1,1,0)"}), "(1, 1, 0)");
  EXPECT_EQ(Result("geom/transform/apply_to_all", {twice, "[(1,1),(0,0,1)]"}),
            "[(2, 2),(0, 0, 2)]");
  EXPECT_EQ(Result("geom/transform/identity", {}), "((1, 0, 0), (0, 1, 0), (0, 0, 1), (0, 0, 0))");
  EXPECT_EQ(Result("_members/Transform/Determinant", {twice}), "8");
}

TEST_F(Zeta, TransformsAreInverted) {
  const char* const singular = "((1,0,0),(2,0,0),(0,0,1),(1,0,0))";
  const char* const mixed = "((2,1,0),(0,1,0),(0,0,-4),(5,6,8))";
  const std::string inverse = Result("geom/transform/invert", {mixed});
  EXPECT_EQ(Result("geom/transform/compose", {mixed, inverse.c_str()}),
            "((1, 0, 0), (0, 1, 0), (0, 0, 1), (0, 0, 0))");
  EXPECT_EQ(Result("_members/Transform/Inverted", {inverse.c_str()}), Through("Transform", mixed));
  EXPECT_EQ(Thrown("geom/transform/invert", {singular}), "the transformation has no inverse");
  EXPECT_EQ(Thrown("geom/transform/invert", {"((inf,0,0),(0,1,0),(0,0,1),(0,0,0))"}),
            "the transformation has no inverse");
  EXPECT_EQ(Thrown("geom/transform/invert", {"((1e-320,0,0),(0,1,0),(0,0,1),(0,0,0))"}),
            "the transformation has no inverse");
}

TEST_F(Zeta, TransformsOfAnySizeAreInverted) {
  for (const char* const factors : {"1e-110 1e+110", "1e-200 1e+200", "1e+120 1e-120"}) {
    const std::string text = factors;
    const std::size_t blank = text.find(' ');
    const std::string scaling = Result("geom/transform/scaling", {text.substr(0, blank).c_str()});
    const double inverse = std::stod(Result("geom/transform/invert", {scaling.c_str()}).substr(2));
    EXPECT_DOUBLE_EQ(inverse, std::stod(text.substr(blank)));
  }
  const std::string least = Result("geom/transform/scaling", {"5e-324"});
  EXPECT_EQ(Thrown("geom/transform/invert", {least.c_str()}), "the transformation has no inverse");
}

TEST_F(Zeta, ARotationTurnsCounterClockwiseAboutItsCenter) {
  const std::string quarter =
      Result("geom/transform/rotation", {"(0,0,1)", "1.5707963267948966", "(1,1)"});
  const Value turned =
      Make("Point", Result("geom/transform/apply", {quarter.c_str(), "(2,1,7)"}).c_str());
  const auto* const data = static_cast<const double*>(turned->GetValuePtr());
  EXPECT_NEAR(data[0], 1, 1e-15);
  EXPECT_NEAR(data[1], 2, 1e-15);
  EXPECT_EQ(data[2], 7);
  EXPECT_NEAR(Number("_members/Transform/Determinant", {quarter.c_str()}), 1, 1e-15);
  EXPECT_EQ(Thrown("geom/transform/rotation", {"(0,0,1)", "inf"}), "the angle must be finite");
  EXPECT_EQ(Refused("geom/transform/rotation", {"(0,0,0)", "1"}), KVLResult_InvalidArgument);
}

}  // namespace
