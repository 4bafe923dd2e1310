#pragma once

// The simulated instrument's state and the rules of its hardware: the session, the spindle and clamp, the head
// loader, the rotary stage with its stoppers and lockdown, the inputs, and the two copies of the configuration.
// The driver interfaces of the simulator are thin: they check their arguments and call these rules.

#include "driver/Trace.h"
#include "driver/Types.h"
#include "simulator/MemoryFile.h"
#include "simulator/Settings.h"
#include "simulator/SimInstrument.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vss::sim {

inline constexpr std::string_view kResource = "QTB::R2208C";

// The hardware as it stands.
struct Hardware {
    bool open = false;
    bool initialized = false;
    bool clamp = false;
    bool motor = false;
    bool freeRunning = false; // the motor runs without speed lock (spindle state UNLOCK)
    bool headsDown = false;
    double stageAngle = kHomeAngle;
    bool stopperUp = false;
    bool lockdown = false;
    std::int32_t stageMotor = 0; // 0 off, 1 standby
    bool piezoLoop = false;
};

class Instrument {
public:
    explicit Instrument(const SimOptions& options);
    ~Instrument(); // gives the instrument up to other programs
    Instrument(const Instrument&) = delete;
    Instrument& operator=(const Instrument&) = delete;

    // The gate every call passes first: injected faults, then the session and the head loader's presence.
    void gate(std::string_view operation);
    // What every call does once it has run: writes the working values when it changed them. Throws DriverError
    // when they cannot be written; the call's change is then undone.
    void keepChanges();

    // Controls.
    void setInput(Input input, bool value);
    bool input(Input input) const { return inputs_[static_cast<std::size_t>(input)]; }
    void failOperation(std::string_view operation, std::string description, int times);
    void clearFailures() { failures_.clear(); }
    std::vector<InjectedFailure> failures() const;
    void setDelays(bool on) { delays_ = on; }
    bool delays() const { return delays_; }
    // Writes the factory values over every group of non-volatile memory; the working values stay. Refused
    // while another program holds the instrument.
    void resetNonVolatile();
    void setHeadLoaderPresent(bool present) { headLoaderPresent_ = present; }
    bool headLoaderPresent() const { return headLoaderPresent_; }
    std::int16_t listLower() const { return listLower_; } // the first index of the driver's lists
    const std::shared_ptr<TraceBuffer>& trace() const { return trace_; }

    // Session.
    void open(const std::string& resource);
    void close();
    void initialize();
    void reset();
    void resetService();
    std::int32_t stateCode() const;

    // Spindle and clamp.
    void setClamp(bool on);
    void setMotor(bool on);
    void setSpindleState(std::int32_t code);
    std::int32_t spindleState() const;
    void setSpindleSpeed(std::int32_t rpm);
    void setHomeState(std::int32_t code);

    // Heads and stage.
    void load();
    void unload();
    void setHeadsDown(bool down);
    void moveTo(double& radius);
    void moveToPosition(std::int16_t position);
    void jog(bool toInner, std::int32_t pulses);
    void setStopper(bool up);
    void setLockdown(bool on);
    void setStageMotor(std::int32_t code);
    void setLoadPosition(std::int16_t which, const PositionRecord& position, std::int32_t rpm);
    LoadPosition loadPosition(std::int16_t which) const;
    void setDiskSizeRestriction(bool on);

    // Where the head is, as the instrument reports it.
    double radius() const;
    HeadPosition position() const;
    PositionRecord measurementPosition(std::int16_t index) const;
    StagePositionFlags positionFlags() const;
    std::int16_t region() const;
    double piezoResolution() const;
    bool piezoBalanced() const;

    // Configuration: Save copies a group to non-volatile memory (and the memory file), Recall back.
    void save(Group g);
    void recall(Group g);
    void setSpeedRange(std::int32_t min, std::int32_t max);

    NamedCodes spinstandTypes; // the spinstand type list the instrument offers
    Settings working;
    MeasurementSettings measurement;
    Hardware hw;

private:
    void requireInitialized(std::string_view action) const;
    void requireSafe(std::string_view action) const;
    void requireSpindleRunning(std::string_view action) const;
    void requireHeadsSafeAt(double angle, std::string_view action) const;
    static std::int32_t spindleStateAtHome(std::int32_t homeState);
    void applyHomeState();
    void checkSpeed(std::int32_t rpm, std::string_view alternative) const;
    void parkHeads();
    void driveStage(double angle);
    bool atHome() const;
    bool spinning() const { return hw.motor && !hw.freeRunning; }
    void pause(int milliseconds) const;
    void loadSession();
    double stopperRadius(std::size_t index) const;

    struct Failure {
        std::string description;
        int remaining; // < 0: until cleared
    };

    MemoryFile file_;
    std::unique_ptr<MemoryFile::Hold>
        session_;                    // held from Open to Close: no other program works on the instrument
    bool powerCyclePending_ = false; // the first session starts as after a power cycle
    Settings nonVolatile_;
    WorkingValues kept_; // the working values as the file holds them
    std::array<bool, 8> inputs_{};
    std::map<std::string, Failure, std::less<>> failures_;
    bool delays_ = false;
    bool headLoaderPresent_ = true;
    std::int16_t listLower_ = 0;
    std::shared_ptr<TraceBuffer> trace_ = std::make_shared<TraceBuffer>();
};

} // namespace vss::sim
