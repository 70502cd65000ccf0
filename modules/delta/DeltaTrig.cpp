#include <cmath>
#include <stdexcept>

#include "KVLKit.h"

namespace {

constexpr double DegreesOfHalfCircle = 180;
constexpr double HalfCircle = 3.14159265358979312;

double ExpectCosine(double x) {
  if (x < -1 || x > 1) throw std::domain_error("x must lie between -1 and 1");
  return x;
}

}  // namespace

KVL_DOC("math/trig", "Trigonometry. Angles are in radians.");
KVL_FUNCTION("math/trig/sin", "angle", "The sine; nan of an infinite angle.",
             [](double angle) { return std::sin(angle); });
KVL_FUNCTION("math/trig/cos", "angle", "The cosine; nan of an infinite angle.",
             [](double angle) { return std::cos(angle); });
KVL_FUNCTION("math/trig/tan", "angle", "The tangent; nan of an infinite angle.",
             [](double angle) { return std::tan(angle); });
KVL_FUNCTION("math/trig/asin", "x",
             "The angle, -pi/2 to pi/2, whose sine is x. Fails unless x lies between -1 and 1.",
             [](double x) { return std::asin(ExpectCosine(x)); });
KVL_FUNCTION("math/trig/acos", "x",
             "The angle, 0 to pi, whose cosine is x. Fails unless x lies between -1 and 1.",
             [](double x) { return std::acos(ExpectCosine(x)); });
KVL_FUNCTION("math/trig/atan", "x", "The angle, -pi/2 to pi/2, whose tangent is x.",
             [](double x) { return std::atan(x); });
KVL_FUNCTION("math/trig/atan2", "y, x", "The angle, -pi to pi, of the vector (x, y).",
             [](double y, double x) { return std::atan2(y, x); });
KVL_FUNCTION("math/trig/to_degrees", "angle", "The angle in degrees.",
             [](double angle) { return angle / HalfCircle * DegreesOfHalfCircle; });
KVL_FUNCTION("math/trig/to_radians", "degrees", "The angle that is so many degrees.",
             [](double degrees) { return degrees / DegreesOfHalfCircle * HalfCircle; });
