#include <cmath>
#include <string>

#include "KVLKit.h"
#include "KappaPairs.h"

namespace {

using Elements = KVLCodeListValue::Elements;
using kappa::Pairs;

struct Place {
  double x = 0;
  double y = 0;
  double z = 0;
};

bool AreEqual(const Place& a, const Place& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z;
}

// Of three at once the library's std::hypot makes nan where one is infinite.
double Distance(const Place& a, const Place& b) {
  return std::hypot(std::hypot(b.x - a.x, b.y - a.y), b.z - a.z);
}

void RefuseTolerance(double tolerance) {
  // Written so that a NaN is refused.
  if (!(tolerance >= 0)) throw std::invalid_argument("the tolerance must not be negative");
}

Pairs ByTolerance(KVLCodeSession* session, const KVLVector<double>& left,
                  const KVLVector<double>& right, double tolerance) {
  RefuseTolerance(tolerance);
  return kappa::Match(left.GetCount(), right.GetCount(), session, [&](int i, int j) {
    return left[i] == right[j] || std::abs(left[i] - right[j]) <= tolerance;
  });
}

// Points are another module's: their text is all that is known of them here.
bool ReadPlace(const KVLCodeContext& context, const KVLCodeValue& element, Place& place) {
  MRBUnicodeString text;
  const KVLSmartPtr<const KVLCodeType> type = context.GetTypeFromName("Point");
  if (type && element.GetTypeName() != "Point") {
    const KVLSmartPtr<KVLCodeValue> point = type->CreateValue("");
    if (!point || KVLFailed(point->AssignFrom(context, element)) ||
        KVLFailed(point->GetValueStr(context, text))) {
      return false;
    }
  } else if (KVLFailed(element.GetValueStr(context, text))) {
    return false;
  }
  return !KVLFailed(kvl::ParseRecord(text, place.x, place.y, place.z)) ||
         !KVLFailed(kvl::ParseRecord(text, place.x, place.y));
}

KVLVector<Place> ReadPlaces(const KVLCodeContext& context, const Elements& elements) {
  KVLVector<Place> places;
  places.Resize(elements.GetCount());
  for (int i = 0; i < elements.GetCount(); ++i) {
    if (!elements[i] || !ReadPlace(context, *elements[i], places[i])) {
      throw std::invalid_argument("element " + std::to_string(i) + " is no Point");
    }
  }
  return places;
}

Pairs Points(const KVLCodeContext& context, KVLCodeSession* session, const Elements& left,
             const Elements& right, double tolerance) {
  RefuseTolerance(tolerance);
  const KVLVector<Place> from = ReadPlaces(context, left);
  const KVLVector<Place> to = ReadPlaces(context, right);
  return kappa::Match(from.GetCount(), to.GetCount(), session, [&](int i, int j) {
    return AreEqual(from[i], to[j]) || Distance(from[i], to[j]) <= tolerance;
  });
}

}  // namespace

KVL_FUNCTION("match/by_tolerance", "left, right, tolerance",
             "As many pairs as there can be of numbers that differ by no more than the tolerance. "
             "Fails when that is negative.",
             ByTolerance);
KVL_FUNCTION("match/points", "left, right, tolerance",
             "As many pairs as there can be of points no farther from each other than the "
             "tolerance. Fails when that is negative, and for elements that are no points.",
             Points);
