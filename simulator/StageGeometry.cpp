#include "simulator/StageGeometry.h"

#include <algorithm>
#include <cmath>

namespace vss::sim {

namespace {
constexpr double kPi = 3.14159265358979323846;
double toRadians(double degrees) { return degrees * kPi / 180.0; }
double toDegrees(double radians) { return radians * 180.0 / kPi; }
double armLength(const StageGeometry& g) { return g.stage2Ref + g.stageOffset; }
} // namespace

double radiusAt(const StageGeometry& g, double angle) {
    const double d = g.stage2Spindle;
    const double l = armLength(g);
    const double mm = std::sqrt(std::max(0.0, d * d + l * l - 2.0 * d * l * std::cos(toRadians(angle))));
    return mm / 1000.0;
}

double skewAt(const StageGeometry& g, double radius) {
    const double r = radius * 1000.0;
    const double d = g.stage2Spindle;
    const double l = armLength(g);
    if (r <= 0.0 || l <= 0.0)
        return 0.0;
    return toDegrees(std::asin(std::clamp((l * l + r * r - d * d) / (2.0 * l * r), -1.0, 1.0)));
}

std::optional<double> angleFor(const StageGeometry& g, double radius) {
    const double r = radius * 1000.0;
    const double d = g.stage2Spindle;
    const double l = armLength(g);
    if (d <= 0.0 || l <= 0.0)
        return std::nullopt;
    const double c = (d * d + l * l - r * r) / (2.0 * d * l);
    if (!(c >= -1.0 && c <= 1.0))
        return std::nullopt;
    return toDegrees(std::acos(c));
}

double reportedRadius(double radius) { return std::round(radius * 1e6) / 1e6; }
double reportedSkew(double skew) { return std::round(skew * 100.0) / 100.0; }
double toPulses(double angle) { return std::round(angle * kPulsesPerDegree) / kPulsesPerDegree; }

} // namespace vss::sim
