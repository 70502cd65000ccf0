#include "../../modules/eta/EtaUnit.h"
#include "RoundTrip.h"

namespace eta {

bool operator==(const Quantity& a, const Quantity& b) {
  return round_trip::IsSame(a.number, b.number) && a.unit == b.unit;
}

}  // namespace eta

namespace {

using namespace round_trip;

class QuantityRoundTrip : public LoadedModules {
 protected:
  QuantityRoundTrip() : LoadedModules({"Alpha", "Beta", "Gamma", "Eta"}) {}
};

rc::Gen<std::string> UnitTexts() {
  const rc::Gen<std::string> symbol = rc::gen::element<std::string>(
      "m", "mm", "kg", "s", "\xC2\xB5s", "h", "A", "K", "mol", "deg", "%", "kn", "N", "kPa", "eV");
  const rc::Gen<std::string> factor = rc::gen::map(
      rc::gen::pair(symbol, rc::gen::element<std::string>("", "", "^2", "^-1", "^-3")),
      [](const std::pair<std::string, std::string>& parts) { return parts.first + parts.second; });
  const rc::Gen<std::string> product =
      rc::gen::map(rc::gen::tuple(factor, rc::gen::element<std::string>("*", "/", " "), factor),
                   [](const std::tuple<std::string, std::string, std::string>& parts) {
                     return std::get<0>(parts) + std::get<1>(parts) + std::get<2>(parts);
                   });
  return rc::gen::oneOf(rc::gen::element<std::string>("", "degC", "degF"), factor, product);
}

// In the form in which the type keeps its units.
rc::Gen<eta::Quantity> Quantities() {
  return rc::gen::map(
      rc::gen::pair(Doubles(), UnitTexts()), [](const std::pair<double, std::string>& parts) {
        const KVLCodeContext context;
        const auto value = Make(context, "quantity");
        const std::string text = "0" + parts.second;
        RC_ASSERT(value->SetValueStr(context, text.c_str()) == KVLResult_Success);
        eta::Quantity quantity = *static_cast<const eta::Quantity*>(value->GetValuePtr());
        quantity.number = parts.first;
        return quantity;
      });
}

TEST_F(QuantityRoundTrip, Type) {
  ExpectRoundTrips<eta::Quantity>("quantity", Quantities());
}

}  // namespace
