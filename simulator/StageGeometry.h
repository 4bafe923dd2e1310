#pragma once

// The positioning stage is a rotary arm. Its pivot (the stage centre) stands Stage2Spindle millimetres from the
// spindle centre; the head gap sits Stage2Ref + StageOffset millimetres out along the arm. The stage angle is the
// angle at the pivot between the line to the spindle centre and the arm, so a larger angle is a larger radius.
// The stage moves in motor pulses, kPulsesPerDegree to the degree.

#include <cstdint>
#include <optional>

namespace vss::sim {

struct StageGeometry {
    double stage2Spindle = 79.0; // mm
    double stage2Ref = 70.0;     // mm
    double stageOffset = 5.0;    // mm
};

inline constexpr double kPulsesPerDegree = 10000.0;
inline constexpr double kMinStageAngle = 2.0;  // inner end of the travel, degrees
inline constexpr double kMaxStageAngle = 42.0; // outer end of the travel: the home position
inline constexpr double kHomeAngle = kMaxStageAngle;

// The radius (m) of the head gap at a stage angle (degrees), exact.
double radiusAt(const StageGeometry& g, double angle);

// The skew (degrees) of the head at a radius (m): zero where the arm stands square to the radius, negative
// towards the inner diameter.
double skewAt(const StageGeometry& g, double radius);

// The stage angle that puts the gap at a radius, or nothing when the arm cannot reach it.
std::optional<double> angleFor(const StageGeometry& g, double radius);

// What the instrument reports: radii to the micrometre, skews to a hundredth of a degree.
double reportedRadius(double radius);
double reportedSkew(double skew);

// The stage angle rounded to whole motor pulses.
double toPulses(double angle);

} // namespace vss::sim
