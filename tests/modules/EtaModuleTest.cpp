#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

#include "KVLKit.h"
#include "LoadedModules.h"
#include "TestSession.h"

namespace {

class Eta : public LoadedModules {
 protected:
  Eta() : LoadedModules({"Alpha", "Beta", "Gamma", "Eta"}) {}

  std::string Convert(const char* quantity, const char* unit) const {
    return Result("units/convert", {quantity, unit});
  }

  std::vector<std::string> Symbols() const {
    std::vector<std::string> symbols;
    const Value list = Make("KVLVector<string>", Result("units/list", {}).c_str());
    for (const Value& symbol : *static_cast<KVLVector<Value>*>(list->GetValuePtr()))
      symbols.push_back(Bytes(*static_cast<const MRBUnicodeString*>(symbol->GetValuePtr())));
    return symbols;
  }
};

TEST_F(Eta, AQuantityIsANumberAndAUnit) {
  const struct {
    const char* text;
    const char* written;
  } cases[] = {{"12.5 mm", "12.5 mm"},
               {"12.5mm", "12.5 mm"},
               {"12.5", "12.5"},
               {"-0 m", "-0 m"},
               {"1e3m", "1000 m"},
               {"2eV", "2 eV"},
               {"nan s", "nan s"},
               {"inf m", "inf m"},
               {"5 in", "5 in"},
               {"3 kg*m/s^2", "3 kg*m/s^2"},
               {"3 kg m / s^2", "3 kg*m/s^2"},
               {"3  kg  *  m", "3 kg*m"},
               {"1 m*m", "1 m^2"},
               {"1 m/m", "1"},
               {"1 J/kg/K", "1 J/kg/K"},
               {"1 1/s", "1 s^-1"},
               {"1 s^-1*m", "1 s^-1*m"},
               {"1 m*s^-1", "1 m/s"},
               {"20 degC", "20 degC"},
               {"20 \xC2\xB0"
                "C",
                "20 \xC2\xB0"
                "C"},
               {"5 %", "5 %"},
               {"3 \xC2\xB5m", "3 \xC2\xB5m"},
               {"7 1", "7"}};
  for (const auto& quantity : cases)
    EXPECT_EQ(Through("quantity", quantity.text), quantity.written) << quantity.text;
  EXPECT_EQ(TextOf(*Make("quantity")), "0");
}

TEST_F(Eta, WhatIsNoQuantityIsRefused) {
  for (const char* const text :
       {"",         "mm",        " 5 m",           "5 m ",    "5 ",    "5 xyz",
        "5 m^",     "5 m^0",     "5 m^10",         "5 m^1.5", "5 m^x", "5 m**s",
        "5 m//s",   "5 *m",      "5 /s",           "5 m*",    "5 m/",  "5 (m)",
        "5 m,s",    "+5 m",      "1e999 m",        "5 kin",   "5 mmm", "5 kkg",
        "5 degC/s", "5 degC^2",  "5 J*degC",       "5 kdegC", "5 M",   "5 2",
        "m 5",      "5 m^5*m^5", "5 m^99999999999"}) {
    EXPECT_EQ(Through("quantity", text), "refused") << text;
  }
  EXPECT_EQ(Through("quantity", MRBUnicodeString("5 m\0s", 5)), "refused");
}

TEST_F(Eta, EveryQuantityReadsBackTheSame) {
  constexpr unsigned int Seed = 31;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937_64 random(Seed);
  const std::vector<std::string> symbols = Symbols();
  for (int i = 0; i < 5000; ++i) {
    const std::uint64_t bits = random();
    double number;
    std::memcpy(&number, &bits, sizeof(number));
    if (std::isnan(number)) continue;
    std::string unit;
    for (auto factors = random() % 4; factors > 0; --factors) {
      const std::string& symbol = symbols[random() % symbols.size()];
      const bool hasOffset = symbol.find('C') + 1 == symbol.size() && symbol != "C";
      if (hasOffset || (symbol.back() == 'F' && symbol != "F")) continue;
      unit += (unit.empty() ? "" : std::string(1, "*/ "[random() % 3])) + symbol;
      if (random() % 2 == 0) unit += "^" + std::to_string(1 + random() % 3);
    }
    char text[300];
    std::snprintf(text, sizeof(text), "%.17g %s", number, unit.empty() ? "1" : unit.c_str());
    const Value value = Make("quantity", text);
    const std::string written = TextOf(*value);
    const Value back = Make("quantity", written.c_str());
    ASSERT_EQ(TextOf(*back), written) << text;
    ASSERT_EQ(std::memcmp(value->GetValuePtr(), back->GetValuePtr(), sizeof(double)), 0) << text;
  }
}

TEST_F(Eta, ListsHoldQuantities) {
  EXPECT_EQ(Through("KVLVector<quantity>", "[12.5mm, 3 m/s]"), "[12.5 mm,3 m/s]");
  EXPECT_EQ(Through("KVLVector<quantity>", "[5 x]"), "refused");
  EXPECT_EQ(Converted("KVLVector<KVLCodeValue_var>", "[\"1 m\", 2, 2.5]", "KVLVector<quantity>"),
            "[1 m,2,2.5]");
}

TEST_F(Eta, LengthsMassesAndTimes) {
  EXPECT_EQ(Convert("12.5 mm", "m"), "0.0125 m");
  EXPECT_EQ(Convert("25.4 mm", "in"), "1 in");
  EXPECT_EQ(Convert("1 mi", "ft"), "5280 ft");
  EXPECT_EQ(Convert("1 mi", "km"), "1.609344 km");
  EXPECT_EQ(Convert("1 Qm", "qm"), "1e+60 qm");
  EXPECT_EQ(Convert("3 dam", "dm"), "300 dm");
  EXPECT_EQ(Convert("1 lb", "kg"), "0.45359237 kg");
  EXPECT_EQ(Convert("1 lb", "oz"), "16 oz");
  EXPECT_EQ(Convert("1 t", "kg"), "1000 kg");
  EXPECT_EQ(Convert("1 wk", "h"), "168 h");
  EXPECT_EQ(Convert("90 min", "h"), "1.5 h");
  EXPECT_EQ(Convert("1 \xC2\xB5s", "ns"), "1000 ns");
}

TEST_F(Eta, DerivedUnits) {
  EXPECT_EQ(Convert("36 km/h", "m/s"), "10 m/s");
  EXPECT_EQ(Convert("1 kn", "km/h"), "1.852 km/h");
  EXPECT_EQ(Convert("60 mph", "mi/h"), "60 mi/h");
  EXPECT_EQ(Convert("1 ha", "m^2"), "10000 m^2");
  EXPECT_EQ(Convert("1 acre", "yd^2"), "4840 yd^2");
  EXPECT_EQ(Convert("1 L", "cm^3"), "1000 cm^3");
  EXPECT_EQ(Convert("1 gal", "in^3"), "231 in^3");
  EXPECT_EQ(Convert("1 gal", "floz"), "128 floz");
  EXPECT_EQ(Convert("1 kN", "kg*m/s^2"), "1000 kg*m/s^2");
  EXPECT_EQ(Convert("1 bar", "kPa"), "100 kPa");
  EXPECT_EQ(Convert("1 atm", "Torr"), "760 Torr");
  EXPECT_EQ(Convert("1 psi", "lbf/in^2"), "1 lbf/in^2");
  EXPECT_EQ(Convert("1 kWh", "MJ"), "3.6 MJ");
  EXPECT_EQ(Convert("1 kcal", "J"), "4184 J");
  EXPECT_EQ(Convert("1 W*s", "J"), "1 J");
  EXPECT_EQ(Convert("1 V*A", "W"), "1 W");
  EXPECT_EQ(Convert("1 kohm", "V/mA"), "1 V/mA");
  EXPECT_EQ(Convert("1 mAh", "C"), "3.6 C");
  EXPECT_EQ(Convert("1 T", "Wb/m^2"), "1 Wb/m^2");
  EXPECT_EQ(Convert("120 rpm", "rev/min"), "120 rev/min");
  EXPECT_EQ(Convert("120 rpm", "rev/s"), "2 rev/s");
  EXPECT_DOUBLE_EQ(std::stod(Result("units/value", {"1 hp", "ft*lbf/s"})), 550);
}

TEST_F(Eta, AnglesAndRatiosAreNumbers) {
  EXPECT_DOUBLE_EQ(std::stod(Result("units/value", {"180 deg", "rad"})), std::acos(-1.0));
  EXPECT_EQ(Convert("0.5 rev", "deg"), "180 deg");
  EXPECT_EQ(Convert("1 deg", "arcmin"), "60 arcmin");
  EXPECT_EQ(Convert("90 deg", "gon"), "100 gon");
  EXPECT_EQ(Convert("5 %", "ppm"), "50000 ppm");
  EXPECT_EQ(Convert("5 %", ""), "0.05");
  EXPECT_EQ(Convert("0.05", "%"), "5 %");
  EXPECT_EQ(Convert("1 m/mm", ""), "1000");
}

TEST_F(Eta, TemperaturesHaveOffsets) {
  EXPECT_EQ(Convert("0 degC", "K"), "273.15 K");
  EXPECT_EQ(Convert("100 degC", "degF"), "212 degF");
  EXPECT_EQ(Convert("32 degF", "degC"), "0 degC");
  EXPECT_EQ(Convert("-40 degF", "degC"), "-40 degC");
  EXPECT_EQ(Convert("0 K", "degF"), "-459.67 degF");
  EXPECT_EQ(Convert("0 K", "degC"), "-273.15 degC");
  EXPECT_EQ(Convert("9 degR", "K"), "5 K");
  EXPECT_EQ(Convert("20 \xC2\xB0"
                    "C",
                    "degC"),
            "20 degC");
  EXPECT_EQ(Convert("1000 mK", "K"), "1 K");
}

TEST_F(Eta, TemperaturesAreAddedAsPointsAndDifferences) {
  EXPECT_EQ(Result("units/add", {"20 degC", "5 K"}), "25 degC");
  EXPECT_EQ(Result("units/add", {"5 K", "20 degC"}), "25 degC");
  EXPECT_EQ(Result("units/add", {"32 degF", "5 K"}), "41 degF");
  EXPECT_EQ(Result("units/add", {"1 K", "2 K"}), "3 K");
  EXPECT_EQ(Result("units/sub", {"20 degC", "5 degC"}), "15 K");
  EXPECT_EQ(Result("units/sub", {"212 degF", "0 degC"}), "100 K");
  EXPECT_EQ(Result("units/sub", {"20 degC", "5 K"}), "15 degC");
  EXPECT_EQ(Result("units/sub", {"274.15 K", "0 degC"}), "1 K");
  EXPECT_EQ(Thrown("units/add", {"20 degC", "5 degC"}),
            "'20 degC' and '5 degC' are points of a scale, and have no sum");
  EXPECT_EQ(Thrown("units/mul", {"20 degC", "2"}),
            "'20 degC' is a point of a scale: convert it to K first");
  EXPECT_EQ(Thrown("units/div", {"1 J", "20 degC"}),
            "'20 degC' is a point of a scale: convert it to K first");
  EXPECT_EQ(Result("units/compare", {"0 degC", "32 degF"}), "0");
}

TEST_F(Eta, MixedDimensionsAreRefused) {
  EXPECT_EQ(Thrown("units/convert", {"5 m", "s"}), "'5 m' cannot be measured in 's'");
  EXPECT_EQ(Thrown("units/convert", {"5 m", ""}), "'5 m' cannot be measured in ''");
  EXPECT_EQ(Thrown("units/value", {"5", "m"}), "'5' cannot be measured in 'm'");
  EXPECT_EQ(Thrown("units/convert", {"5 m", "nix"}), "'nix' is no unit");
  EXPECT_EQ(Thrown("units/value", {"5 m", "m^"}), "'m^' is no unit");
  EXPECT_EQ(Thrown("units/add", {"5 m", "1 s"}), "'5 m' and '1 s' measure different things");
  EXPECT_EQ(Thrown("units/sub", {"5 m", "1"}), "'5 m' and '1' measure different things");
  EXPECT_EQ(Thrown("units/compare", {"5 J", "1 N"}), "'5 J' and '1 N' measure different things");
  EXPECT_EQ(Thrown("units/sum", {"[1 m, 1 s]"}), "'1 m' and '1 s' measure different things");
}

TEST_F(Eta, SumsAreInTheFirstUnit) {
  EXPECT_EQ(Result("units/add", {"1 m", "25 cm"}), "1.25 m");
  EXPECT_EQ(Result("units/add", {"25 cm", "1 m"}), "125 cm");
  EXPECT_EQ(Result("units/sub", {"1 h", "15 min"}), "0.75 h");
  EXPECT_EQ(Result("units/add", {"1", "50 %"}), "1.5");
  EXPECT_EQ(Result("units/sum", {"[1 m, 50 cm, 500 mm]"}), "2 m");
  EXPECT_EQ(Thrown("units/sum", {"[]"}), "no quantities have no sum");
  TestSession session;
  session.pollsUntilInterrupted = 0;
  context.SetSession(&session);
  EXPECT_EQ(Thrown("units/sum", {"[1 m, 1 m]"}), "interrupted");
}

TEST_F(Eta, ProductsAndQuotientsDeriveTheirUnit) {
  EXPECT_EQ(Result("units/mul", {"2 m", "3 m"}), "6 m^2");
  EXPECT_EQ(Result("units/mul", {"2 m", "3"}), "6 m");
  EXPECT_EQ(Result("units/mul", {"10 N", "2 m"}), "20 N*m");
  EXPECT_EQ(Result("units/div", {"10 m", "2 s"}), "5 m/s");
  EXPECT_EQ(Result("units/div", {"10 m/s", "2 s"}), "5 m/s^2");
  EXPECT_EQ(Result("units/div", {"1", "4 s"}), "0.25 s^-1");
  EXPECT_EQ(Result("units/mul", {"3 s^-1", "2 s"}), "6");
  EXPECT_EQ(Result("units/div", {"1 m", "1 mm"}), "1000");
  EXPECT_EQ(Result("units/div", {"1 km", "4 km"}), "0.25");
  EXPECT_EQ(Result("units/mul", {"90 deg", "2"}), "180 deg");
  EXPECT_EQ(Result("units/div", {"6 J", "2 kg*K"}), "3 J/kg/K");
  EXPECT_EQ(Thrown("units/mul", {"1 m^9", "1 m"}), "the powers of the unit pass 9");
  EXPECT_EQ(Thrown("units/div", {"1 m", "0 s"}), "division by zero");
}

TEST_F(Eta, Comparisons) {
  EXPECT_EQ(Result("units/compare", {"1 m", "99 cm"}), "1");
  EXPECT_EQ(Result("units/compare", {"1 in", "25.4 mm"}), "0");
  const struct {
    const char* less;
    const char* greater;
    const char* result;
  } both[] = {{"0 degC", "273.15 K", "0"},
              {"25.0 degC", "298.15 K", "0"},
              {"13.2 in", "1.1 ft", "-1"},
              {"1 um", "1e308 m", "-1"},
              {"1e308 km", "inf m", "-1"},
              {"-inf m", "-1e308 km", "-1"},
              {"1e-20 degC", "2e-20 degC", "-1"},
              {"1 degC",
               "1.5 \xC2\xB0"
               "C",
               "-1"}};
  for (const auto& two : both) {
    EXPECT_EQ(Result("units/compare", {two.less, two.greater}), two.result) << two.less;
    EXPECT_EQ(Result("units/compare", {two.greater, two.less}), *two.result == '0' ? "0" : "1")
        << two.less;
  }
  EXPECT_EQ(Result("units/compare", {"1 min", "1 h"}), "-1");
  EXPECT_EQ(Thrown("units/compare", {"nan m", "1 m"}), "what is no number cannot be compared");
}

TEST_F(Eta, OnlyWhatHasNoDimensionIsANumber) {
  EXPECT_EQ(Converted("quantity", "5 %", "double"), "0.05");
  EXPECT_EQ(Converted("quantity", "7", "double"), "7");
  EXPECT_EQ(Converted("quantity", "2 m/cm", "double"), "200");
  EXPECT_EQ(Converted("quantity", "5 m", "double"), "refused");
  EXPECT_EQ(Converted("quantity", "20 degC", "double"), "refused");
  EXPECT_EQ(Converted("double", "2.5", "quantity"), "2.5");
  EXPECT_EQ(Converted("int", "2", "quantity"), "2");
  EXPECT_EQ(Converted("string", "2 mm", "quantity"), "2 mm");
  EXPECT_EQ(Converted("string", "2 xx", "quantity"), "refused");
  EXPECT_EQ(Converted("quantity", "2mm", "string"), "2 mm");
}

TEST_F(Eta, FormatRoundsToDigits) {
  EXPECT_EQ(Result("units/format", {"12.345 mm"}), "12.35 mm");
  EXPECT_EQ(Result("units/format", {"12.5 mm", "0"}), "12 mm");
  EXPECT_EQ(Result("units/format", {"1", "3"}), "1.000");
  EXPECT_EQ(Result("units/format", {"-1.7976931348623157e308 m", "100"}).size(),
            1 + 309 + 1 + 100 + 2u);
  EXPECT_EQ(Result("units/format", {"nan m", "2"}), "nan m");
  EXPECT_EQ(Thrown("units/format", {"1 m", "-1"}), "digits must be 0 to 100");
  EXPECT_EQ(Thrown("units/format", {"1 m", "101"}), "digits must be 0 to 100");
}

TEST_F(Eta, UnitsAreListedByWhatTheyMeasure) {
  EXPECT_EQ(Result("units/list", {"length"}),
            "[\"m\",\"in\",\"ft\",\"yd\",\"mi\",\"nmi\",\"mil\",\"au\",\"ly\"]");
  EXPECT_EQ(Result("units/list", {"speed"}), "[\"kn\",\"mph\"]");
  EXPECT_GT(Symbols().size(), 70u);
  EXPECT_EQ(Thrown("units/list", {"beauty"}), "there is no dimension 'beauty'");
  EXPECT_EQ(Result("units/dimensions", {}).substr(0, 24), "[\"length\",\"mass\",\"time\",");
}

TEST_F(Eta, EachUnitIsReadAndMeasuresWhatItsListSays) {
  const Value dimensions = Make("KVLVector<string>", Result("units/dimensions", {}).c_str());
  for (const Value& name : *static_cast<KVLVector<Value>*>(dimensions->GetValuePtr())) {
    const std::string dimension = TextOf(*name);
    const Value list = Make("KVLVector<string>", Result("units/list", {dimension.c_str()}).c_str());
    for (const Value& symbol : *static_cast<KVLVector<Value>*>(list->GetValuePtr())) {
      const std::string quantity = "1 " + TextOf(*symbol);
      EXPECT_EQ(Through("quantity", quantity.c_str()), quantity);
      EXPECT_EQ(Result("units/dimension", {quantity.c_str()}), dimension) << quantity;
    }
  }
}

TEST_F(Eta, DimensionsHaveWords) {
  EXPECT_EQ(Result("units/dimension", {"1 kg*m/s^2"}), "force");
  EXPECT_EQ(Result("units/dimension", {"1 km/h"}), "speed");
  EXPECT_EQ(Result("units/dimension", {"1"}), "ratio");
  EXPECT_EQ(Result("units/dimension", {"1 deg"}), "angle");
  EXPECT_EQ(Result("units/dimension", {"1 m^4"}), "m^4");
  EXPECT_EQ(Result("units/dimension", {"1 kg/m^3"}), "m^-3*kg");
}

TEST_F(Eta, ConversionsThereAndBackKeepTheNumber) {
  constexpr unsigned int Seed = 32;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937 random(Seed);
  std::uniform_real_distribution<double> numbers(-1e6, 1e6);
  const char* const pairs[][2] = {{"mm", "mi"},  {"degC", "degF"}, {"km/h", "kn"},  {"psi", "kPa"},
                                  {"Btu", "eV"}, {"deg", "rad"},   {"gal", "cm^3"}, {"yr", "ns"}};
  for (const auto& pair : pairs) {
    for (int i = 0; i < 200; ++i) {
      char text[60];
      const double number = numbers(random);
      std::snprintf(text, sizeof(text), "%.17g %s", number, pair[0]);
      const std::string there = Convert(text, pair[1]);
      const double back = std::stod(Result("units/value", {there.c_str(), pair[0]}));
      ASSERT_NEAR(back, number, 1e-9 + std::abs(number) * 1e-14) << text;
    }
  }
}

TEST_F(Eta, NumbersThatBecomeTooLargeAreRefused) {
  EXPECT_EQ(Thrown("units/convert", {"1e308 km", "mm"}), "the number is too large for the unit");
  // Only on the way is it.
  EXPECT_EQ(Convert("0 Qm^9", "qm^9"), "0 qm^9");
  EXPECT_DOUBLE_EQ(std::stod(Convert("1e300 ly", "au")), 6.324107708426628e304);
  EXPECT_DOUBLE_EQ(std::stod(Convert("1e-300 Qm^9", "qm^9")), 1e240);
  EXPECT_DOUBLE_EQ(std::stod(Convert("1e300 qm^9", "Qm^9")), 1e-240);
  EXPECT_EQ(Convert("inf Qm^9", "qm^9"), "inf qm^9");
  EXPECT_EQ(Convert("inf km", "mm"), "inf mm");
}

TEST_F(Eta, MembersOfQuantities) {
  EXPECT_EQ(Result("_members/quantity/In", {"1 m", "cm"}), "100 cm");
  EXPECT_EQ(Result("_members/quantity/Number", {"2.5 m"}), "2.5");
  EXPECT_EQ(Result("_members/quantity/Unit", {"2.5 m*s"}), "m*s");
  EXPECT_EQ(Result("_members/quantity/Unit", {"2.5"}), "");
}

}  // namespace
