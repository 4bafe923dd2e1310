#include "simulator/Instrument.h"

#include "driver/DriverError.h"
#include "simulator/InstrumentLists.h"
#include "simulator/StageGeometry.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <limits>
#include <thread>

namespace vss::sim {

namespace {

[[noreturn]] void refuse(std::string_view action, std::string_view reason) {
    throw DriverError("Cannot " + std::string(action) + ": " + std::string(reason) + ".");
}

std::string num(double v) { return traceformat::number(v); }

std::size_t at(Input input) { return static_cast<std::size_t>(input); }

std::string now() {
    const std::time_t t = std::time(nullptr);
    char text[32] = "";
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&t));
    return text;
}

void checkWhich(std::int16_t which) {
    if (which != loadposition::Load && which != loadposition::Unload)
        throw DriverError("Position selector " + std::to_string(which) +
                          " does not exist: use 1 (load position) or 2 (unload position).");
}

double roundSignificant(double v, int digits) {
    if (v == 0.0 || !std::isfinite(v))
        return v;
    const double scale = std::pow(10.0, digits - 1 - static_cast<int>(std::floor(std::log10(std::fabs(v)))));
    return std::round(v * scale) / scale;
}

// Travel time of the stage: about a second from one end of the travel to the other.
int travelMilliseconds(double fromAngle, double toAngle) {
    return static_cast<int>(std::fabs(toAngle - fromAngle) * 1000.0 / (kMaxStageAngle - kMinStageAngle));
}

} // namespace

Instrument::Instrument(const SimOptions& options)
    : file_(options.statePath == "-" || options.statePath == ":memory:" ? std::string()
            : options.statePath.empty()                                 ? SimInstrument::defaultStatePath()
                                                                        : options.statePath),
      powerCyclePending_(options.powerCycle), delays_(options.delays),
      headLoaderPresent_(options.headLoaderPresent), listLower_(options.listLower) {
    inputs_[at(Input::SpindleSet)] = true;
    inputs_[at(Input::StopperDownSensor)] = true;
    nonVolatile_ = Settings::factory();
    working = nonVolatile_;
    // What the instrument shows before its first session (the front panel's radius and skew). Each session
    // reads the files again under its lock and reports what is wrong with them.
    try {
        nonVolatile_ = file_.read();
        working = nonVolatile_;
        if (const auto kept = options.powerCycle ? std::nullopt : file_.readWorking()) {
            working = kept->settings;
            measurement = kept->measurement;
        }
    } catch (const DriverError&) {
    }
    kept_ = {working, measurement};
    spinstandTypes = sim::spinstandTypes();
    if (options.spinstandTypeCodes.size() == spinstandTypes.codes.size())
        spinstandTypes.codes = options.spinstandTypeCodes;
}

Instrument::~Instrument() = default;

// The instrument stays powered between programs: a session takes the working values the last one left (they
// were written as they changed), or, after a power cycle, the values of non-volatile memory. Another program
// may have used the instrument since this one last did, so both files are read as they stand now.
void Instrument::loadSession() {
    file_.removeLeftovers();
    nonVolatile_ = file_.read();
    std::optional<WorkingValues> kept;
    if (powerCyclePending_) {
        file_.forgetWorking();
        powerCyclePending_ = false;
    } else {
        kept = file_.readWorking();
    }
    working = kept ? kept->settings : nonVolatile_;
    measurement = kept ? kept->measurement : MeasurementSettings{};
    kept_ = {working, measurement};
}

// Every change reaches the working values file before the call that made it returns, so that a program
// interrupted later (Ctrl-C at a prompt, a window program ended by Exit) loses nothing it was told was done.
// A change that cannot be written fails its call with the file and the reason, and is undone.
void Instrument::keepChanges() {
    if (!session_ || (working == kept_.settings && measurement == kept_.measurement))
        return;
    try {
        file_.writeWorking({working, measurement});
    } catch (const DriverError& e) {
        working = kept_.settings;
        measurement = kept_.measurement;
        throw DriverError(e.description() + " The instrument keeps the values it had before this call.");
    }
    kept_ = {working, measurement};
}

void Instrument::pause(int milliseconds) const {
    if (delays_ && milliseconds > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// ---------------------------------------------------------------------------------------------------------------
// Controls

void Instrument::gate(std::string_view operation) {
    if (const auto f = failures_.find(operation); f != failures_.end()) {
        const std::string description = f->second.description;
        if (f->second.remaining > 0 && --f->second.remaining == 0)
            failures_.erase(f);
        throw DriverError(description);
    }
    // Outside a session the instrument answers only its state (CLOSED).
    if (!hw.open && operation != "IDriver.Open" && operation != "IDriver.Close" && operation != "IDriver.GetState" &&
        !operation.starts_with("CoDriver.QueryInterface"))
        throw DriverError("The instrument session is not open: call Open first.");
    if (!headLoaderPresent_ && operation.starts_with("IDriverHeadLoader."))
        throw DriverError("No head loader is installed on this instrument.");
}

void Instrument::failOperation(std::string_view operation, std::string description, int times) {
    if (times == 0)
        failures_.erase(std::string(operation));
    else
        failures_[std::string(operation)] = {std::move(description), times};
}

std::vector<InjectedFailure> Instrument::failures() const {
    std::vector<InjectedFailure> list;
    for (const auto& [operation, f] : failures_)
        list.push_back({operation, f.description, f.remaining});
    return list;
}

void Instrument::setInput(Input input, bool value) {
    inputs_[at(input)] = value;
    if (input == Input::Emergency && value) {
        // The emergency stop cuts the drives: the spindle coasts down, the heads retract and the instrument
        // has to be initialized again.
        hw.motor = false;
        hw.freeRunning = false;
        hw.headsDown = false;
        hw.stageMotor = 0;
        hw.initialized = false;
    }
}

// ---------------------------------------------------------------------------------------------------------------
// Session

void Instrument::open(const std::string& resource) {
    if (resource != kResource)
        throw DriverError("Cannot open the instrument \"" + resource +
                          "\": no instrument answers at this resource. This instrument answers at \"" +
                          std::string(kResource) + "\".");
    // One program at a time works on the instrument: a second one is refused here, with the name of the
    // first.
    if (file_.enabled() && !session_) {
        std::unique_ptr<MemoryFile::Hold> held = file_.hold();
        loadSession(); // a damaged file refuses the session and gives the instrument up again
        session_ = std::move(held);
    }
    pause(300);
    hw.open = true;
    hw.initialized = false;
}

void Instrument::close() {
    if (!hw.open)
        return;
    parkHeads();
    hw.motor = false;
    hw.freeRunning = false;
    hw.piezoLoop = false;
    hw.open = false;
    hw.initialized = false;
    session_.reset(); // every change is in the files already
}

void Instrument::parkHeads() {
    if (hw.headsDown)
        pause(500);
    hw.headsDown = false;
    hw.stopperUp = false;
    inputs_[at(Input::StopperUpSensor)] = false;
    inputs_[at(Input::StopperDownSensor)] = true;
    driveStage(kHomeAngle);
}

void Instrument::initialize() {
    if (input(Input::Emergency))
        refuse("initialize the instrument", "the emergency stop is active");
    pause(2000);
    parkHeads();
    hw.initialized = true;
    applyHomeState();
}

void Instrument::reset() {
    requireInitialized("reset the instrument");
    pause(1000);
    if (hw.headsDown) {
        if (const auto a = angleFor(working.customer.geometry, measurement.positions[1].position.radius))
            driveStage(std::clamp(toPulses(*a), kMinStageAngle, kMaxStageAngle));
    }
    parkHeads();
    applyHomeState();
}

// The service reset initializes the instrument whatever its state (right after Open, after an emergency stop),
// brings the stage home and frees it.
void Instrument::resetService() {
    if (input(Input::Emergency))
        refuse("reset the instrument", "the emergency stop is active");
    pause(1500);
    parkHeads();
    hw.initialized = true;
    setLockdown(false);
    applyHomeState();
}

bool Instrument::atHome() const { return std::fabs(hw.stageAngle - kHomeAngle) < 0.5 / kPulsesPerDegree; }

std::int32_t Instrument::stateCode() const {
    if (!hw.open)
        return state::Closed;
    if (!hw.initialized)
        return state::Uninitialized;
    if (hw.headsDown && !atHome())
        return state::Loaded;
    if (!hw.headsDown && atHome())
        return state::AtHome | (hw.motor ? homestate::Run : hw.clamp ? homestate::Standby : homestate::Stop);
    return state::Other;
}

void Instrument::requireInitialized(std::string_view action) const {
    if (input(Input::Emergency))
        refuse(action, "the emergency stop is active");
    if (!hw.initialized)
        refuse(action, "the instrument is not initialized (call Initialize first)");
}

void Instrument::requireSafe(std::string_view action) const {
    requireInitialized(action);
    if (input(Input::Interlock))
        refuse(action, "the interlock is detected");
    if (input(Input::OuterCover))
        refuse(action, "the outer cover is open");
}

void Instrument::requireSpindleRunning(std::string_view action) const {
    if (!spinning())
        refuse(action, "the spindle is not running at speed");
}

void Instrument::requireHeadsSafeAt(double angle, std::string_view action) const {
    if (hw.headsDown && radiusAt(working.customer.geometry, angle) <= working.spinstand.diskSize.max && !spinning())
        refuse(action, "the heads are down and the disk under them is not spinning");
}

// ---------------------------------------------------------------------------------------------------------------
// Spindle and clamp

void Instrument::setClamp(bool on) {
    requireInitialized(on ? "clamp the disk" : "release the clamp");
    if (on == hw.clamp)
        return;
    if (on && !input(Input::SpindleSet))
        refuse("clamp the disk", "no disk is set on the spindle");
    if (!on && hw.motor)
        refuse("release the clamp", "the spindle motor is running");
    pause(300);
    hw.clamp = on;
    inputs_[at(Input::Vacuum)] = on;
}

void Instrument::setMotor(bool on) {
    requireInitialized(on ? "start the spindle motor" : "stop the spindle motor");
    if (on) {
        if (!hw.clamp)
            refuse("start the spindle motor", "the disk is not clamped");
        if (input(Input::OuterCover))
            refuse("start the spindle motor", "the outer cover is open");
        if (!spinning())
            pause(1500);
        hw.motor = true;
        hw.freeRunning = false;
        return;
    }
    if (hw.headsDown && radiusAt(working.customer.geometry, hw.stageAngle) <= working.spinstand.diskSize.max)
        refuse("stop the spindle motor", "the heads are loaded on the disk");
    if (hw.motor)
        pause(1000);
    hw.motor = false;
    hw.freeRunning = false;
}

void Instrument::setSpindleState(std::int32_t code) {
    switch (code) {
    case spindlestate::Off:
        setMotor(false);
        setClamp(false);
        return;
    case spindlestate::Standby:
        setMotor(false);
        setClamp(true);
        return;
    case spindlestate::Run:
    case spindlestate::Unlock:
        setClamp(true);
        setMotor(true);
        hw.freeRunning = code == spindlestate::Unlock;
        return;
    default:
        throw DriverError("Spindle state " + std::to_string(code) +
                          " cannot be commanded: use 0 (OFF), 1 (STANDBY), 2 (RUN) or 3 (UNLOCK).");
    }
}

std::int32_t Instrument::spindleState() const {
    if (input(Input::Emergency))
        return spindlestate::Unknown;
    if (hw.motor)
        return hw.freeRunning ? spindlestate::Unlock : spindlestate::Run;
    return hw.clamp ? spindlestate::Standby : spindlestate::Off;
}

void Instrument::setSpindleSpeed(std::int32_t rpm) {
    checkSpeed(rpm, "");
    if (spinning() && rpm != measurement.spindleSpeed)
        pause(500);
    measurement.spindleSpeed = rpm;
}

void Instrument::checkSpeed(std::int32_t rpm, std::string_view alternative) const {
    const SpeedRange range = working.spindle.speedRange;
    if (rpm < range.min || rpm > range.max)
        throw DriverError("The spindle speed " + std::to_string(rpm) + " rpm is outside the range " +
                          std::to_string(range.min) + " to " + std::to_string(range.max) + " rpm" +
                          std::string(alternative) + ".");
}

void Instrument::setSpeedRange(std::int32_t min, std::int32_t max) {
    checkSpeedRange(min, max);
    working.spindle.speedRange = {min, max};
    measurement.spindleSpeed = std::clamp(measurement.spindleSpeed, min, max);
}

void Instrument::setHomeState(std::int32_t code) {
    checkHomeState(code);
    if (hw.initialized && !input(Input::Emergency) && !hw.headsDown && atHome()) {
        // At home the spindle takes the new state at once. A refusal part-way (the clamp on, then the motor
        // refused) puts the spindle and clamp back, and the setting stays as it was.
        const Hardware before = hw;
        const bool vacuum = input(Input::Vacuum);
        try {
            setSpindleState(spindleStateAtHome(code));
        } catch (const DriverError&) {
            hw = before;
            inputs_[at(Input::Vacuum)] = vacuum;
            throw;
        }
    }
    measurement.homeState = code;
}

std::int32_t Instrument::spindleStateAtHome(std::int32_t homeState) {
    return homeState == homestate::Run       ? spindlestate::Run
           : homeState == homestate::Standby ? spindlestate::Standby
                                             : spindlestate::Off;
}

// What the spindle does whenever the heads come home.
void Instrument::applyHomeState() { setSpindleState(spindleStateAtHome(measurement.homeState)); }

// ---------------------------------------------------------------------------------------------------------------
// Heads and stage

void Instrument::driveStage(double angle) {
    pause(travelMilliseconds(hw.stageAngle, angle));
    hw.lockdown = false;
    inputs_[at(Input::LockdownSensor)] = false;
    hw.stageMotor = 1;
    hw.stageAngle = angle;
}

void Instrument::load() {
    const double r = measurement.positions[0].position.radius;
    requireSafe("load the heads");
    if (hw.headsDown)
        refuse("load the heads", "they are already loaded");
    if (!atHome())
        refuse("load the heads", "the stage is not at home (reset the instrument first)");
    if (r <= working.spinstand.diskSize.max) // off the disk the heads land on nothing that must spin
        requireSpindleRunning("load the heads");
    if (measurement.diskSizeRestriction && r > working.spinstand.diskSize.max)
        refuse("load the heads at " + num(r) + " m",
               "the disk size restriction allows radii up to " + num(working.spinstand.diskSize.max) + " m");
    const auto angle = angleFor(working.customer.geometry, r);
    if (!angle || *angle < kMinStageAngle || *angle > kMaxStageAngle)
        refuse("load the heads at " + num(r) + " m", "the stage cannot reach that radius");
    driveStage(toPulses(*angle));
    pause(1000);
    hw.headsDown = true;
}

void Instrument::unload() {
    requireInitialized("unload the heads");
    if (!hw.headsDown)
        refuse("unload the heads", "they are not loaded");
    if (const auto a = angleFor(working.customer.geometry, measurement.positions[1].position.radius))
        driveStage(std::clamp(toPulses(*a), kMinStageAngle, kMaxStageAngle));
    pause(500);
    hw.headsDown = false;
    driveStage(kHomeAngle);
    applyHomeState();
}

void Instrument::setHeadsDown(bool down) {
    const char* action = down ? "lower the heads" : "raise the heads";
    if (!headLoaderPresent_)
        throw DriverError("No head loader is installed on this instrument.");
    if (down) {
        requireSafe(action);
        if (!hw.headsDown && radiusAt(working.customer.geometry, hw.stageAngle) <= working.spinstand.diskSize.max)
            requireSpindleRunning(action);
    } else {
        requireInitialized(action);
    }
    if (hw.headsDown != down)
        pause(500);
    hw.headsDown = down;
}

double Instrument::stopperRadius(std::size_t index) const {
    return reportedRadius(radiusAt(working.customer.geometry, working.customer.stopper[index]));
}

void Instrument::moveTo(double& radius) {
    requireSafe("move the stage");
    if (!hw.headsDown)
        refuse("move the stage", "the heads are not loaded");
    const double inner = std::min(stopperRadius(0), stopperRadius(1));
    const double outer = std::max(stopperRadius(0), stopperRadius(1));
    if (!std::isfinite(radius) || radius < inner || radius > outer)
        refuse("move the stage to " + num(radius) + " m",
               "moves are limited to the stoppers, " + num(inner) + " to " + num(outer) + " m");
    const auto& stopper = working.customer.stopper;
    const double angle = std::clamp(toPulses(angleFor(working.customer.geometry, radius).value_or(stopper[0])),
                                    std::min(stopper[0], stopper[1]), std::max(stopper[0], stopper[1]));
    requireHeadsSafeAt(angle, "move the stage");
    driveStage(angle);
    radius = this->radius();
}

void Instrument::moveToPosition(std::int16_t position) {
    requireInitialized("move the stage");
    switch (position) {
    case stageposition::Home:
        if (hw.headsDown)
            refuse("move the stage home", "the heads are loaded (unload them first)");
        setStopper(false);
        driveStage(kHomeAngle);
        return;
    case stageposition::Outer:
    case stageposition::Inner: {
        const double angle = working.customer.stopper[position == stageposition::Inner ? 0 : 1];
        requireHeadsSafeAt(angle, "move the stage");
        setStopper(true);
        driveStage(angle);
        return;
    }
    default:
        throw DriverError("Stage position " + std::to_string(position) +
                          " does not exist: use 0 (home), 1 (outer) or 2 (inner).");
    }
}

void Instrument::jog(bool toInner, std::int32_t pulses) {
    requireInitialized("jog the stage");
    if (pulses < 1 || pulses > 100000)
        throw DriverError("The pulse count " + std::to_string(pulses) + " is outside the range 1 to 100000.");
    const double from = hw.stageAngle;
    const double to = toPulses(from + (toInner ? -pulses : pulses) / kPulsesPerDegree);
    if (to < kMinStageAngle || to > kMaxStageAngle) {
        const double room = toInner ? from - kMinStageAngle : kMaxStageAngle - from;
        refuse("jog " + std::to_string(pulses) + " pulses " + (toInner ? "to inner" : "to home"),
               "the stage would pass the end of its travel (at most " +
                   std::to_string(static_cast<long>(std::floor(room * kPulsesPerDegree + 1e-6))) + " pulses that way)");
    }
    requireHeadsSafeAt(to, "jog the stage");
    driveStage(to);
}

void Instrument::setStopper(bool up) {
    requireInitialized(up ? "raise the stopper" : "lower the stopper");
    if (hw.stopperUp != up)
        pause(200);
    hw.stopperUp = up;
    inputs_[at(Input::StopperUpSensor)] = up;
    inputs_[at(Input::StopperDownSensor)] = !up;
}

void Instrument::setLockdown(bool on) {
    requireInitialized(on ? "lock the stage down" : "free the stage");
    if (on && hw.headsDown)
        refuse("lock the stage down", "the heads are loaded");
    if (hw.lockdown != on)
        pause(300);
    hw.lockdown = on;
    inputs_[at(Input::LockdownSensor)] = on;
}

void Instrument::setStageMotor(std::int32_t code) {
    if (code != 0 && code != 1)
        throw DriverError("Stage motor code " + std::to_string(code) + " is not allowed: use 0 (off) or 1 (standby).");
    hw.stageMotor = code;
}

void Instrument::setLoadPosition(std::int16_t which, const PositionRecord& position, std::int32_t rpm) {
    checkWhich(which);
    const StageGeometry& g = working.customer.geometry;
    const double nearest = reportedRadius(radiusAt(g, kMinStageAngle));
    const double farthest = reportedRadius(radiusAt(g, kMaxStageAngle));
    if (!std::isfinite(position.radius) || position.radius < nearest || position.radius > farthest)
        throw DriverError("The radius " + num(position.radius) + " m is out of the stage's reach, " + num(nearest) +
                          " to " + num(farthest) + " m.");
    if (which == loadposition::Load && measurement.diskSizeRestriction &&
        position.radius > working.spinstand.diskSize.max)
        throw DriverError("The load radius " + num(position.radius) + " m lies beyond the disk (largest radius " +
                          num(working.spinstand.diskSize.max) + " m) while the disk size restriction is on.");
    if (position.skew != kNoSkew && !(std::fabs(position.skew) <= 45.0))
        throw DriverError("The skew " + num(position.skew) + " deg is outside the range -45 to 45 deg (or " +
                          num(kNoSkew) + " for none).");
    if (rpm != -1)
        checkSpeed(rpm, " (or -1 to keep it)");
    LoadPosition& p = measurement.positions[static_cast<std::size_t>(which - 1)];
    p.position = {reportedRadius(position.radius), position.skew};
    if (rpm != -1)
        p.rpm = rpm;
}

LoadPosition Instrument::loadPosition(std::int16_t which) const {
    checkWhich(which);
    LoadPosition p = measurement.positions[static_cast<std::size_t>(which - 1)];
    if (p.position.skew == kNoSkew)
        p.position.skew = reportedSkew(skewAt(working.customer.geometry, p.position.radius));
    return p;
}

void Instrument::setDiskSizeRestriction(bool on) { measurement.diskSizeRestriction = on; }

double Instrument::radius() const { return reportedRadius(radiusAt(working.customer.geometry, hw.stageAngle)); }

HeadPosition Instrument::position() const {
    const double r = radiusAt(working.customer.geometry, hw.stageAngle);
    const DataArea& area = measurement.dataArea;
    const double track = std::round((r - area.innerRadius) / area.pitch);
    return {static_cast<std::int32_t>(std::clamp(track, -1.0e9, 1.0e9)), reportedRadius(r),
            reportedSkew(skewAt(working.customer.geometry, r))};
}

PositionRecord Instrument::measurementPosition(std::int16_t index) const {
    checkStopperIndex(index);
    const double r = radiusAt(working.customer.geometry, working.customer.stopper[static_cast<std::size_t>(index)]);
    return {reportedRadius(r), reportedSkew(skewAt(working.customer.geometry, r))};
}

StagePositionFlags Instrument::positionFlags() const {
    const auto near = [&](double angle) { return std::fabs(hw.stageAngle - angle) < 0.5 / kPulsesPerDegree; };
    return {atHome(), near(working.customer.stopper[0]), near(working.customer.stopper[1])};
}

// Region codes: 0 home, 1 outside the outer stopper, 2 between the stoppers, 3 inside the inner stopper.
std::int16_t Instrument::region() const {
    const auto& stopper = working.customer.stopper;
    if (atHome())
        return 0;
    if (hw.stageAngle > std::max(stopper[0], stopper[1]) + 0.5 / kPulsesPerDegree)
        return 1;
    if (hw.stageAngle < std::min(stopper[0], stopper[1]) - 0.5 / kPulsesPerDegree)
        return 3;
    return 2;
}

// The piezo moves the head along the arm: its radial resolution is the calibration's slope at mid-stroke
// (m per V) times the cosine of the skew where the head stands.
double Instrument::piezoResolution() const {
    const PiezoCalCoef& c = working.piezo.calCoef;
    const double v = (c.vmin + c.vmax) / 2.0;
    double slope = 0.0;
    for (std::size_t k = c.coef.size(); k-- > 1;)
        slope = slope * v + static_cast<double>(k) * c.coef[k];
    const double skew = skewAt(working.customer.geometry, radiusAt(working.customer.geometry, hw.stageAngle));
    return roundSignificant(slope * std::cos(skew * 3.14159265358979323846 / 180.0), 4);
}

// With the loop closed the piezo balances when the zero adjust sits within 16 counts of the null point, which
// the gain adjust shifts by an eighth of its distance from mid-scale.
bool Instrument::piezoBalanced() const {
    const auto& a = working.piezo.adjust;
    const double null = 2048.0 + (a[1] - 2048) / 8.0;
    return hw.piezoLoop && std::fabs(a[0] - null) <= 16.0;
}

// ---------------------------------------------------------------------------------------------------------------
// Configuration

void Instrument::save(Group g) {
    Settings saved = working;
    if (g == Group::BacklashCompensation)
        saved.backlash.date = now();
    pause(300);
    // The file is read again before the group is replaced: a hand edit of another group stays.
    nonVolatile_ = file_.saveGroup(g, saved, nonVolatile_);
    if (g == Group::BacklashCompensation)
        working.backlash.date = saved.backlash.date;
}

void Instrument::recall(Group g) {
    pause(300);
    if (file_.enabled())
        nonVolatile_ = file_.read(); // as it stands; a damaged file refuses the recall
    copyGroup(g, nonVolatile_, working);
    measurement.spindleSpeed =
        std::clamp(measurement.spindleSpeed, working.spindle.speedRange.min, working.spindle.speedRange.max);
}

void Instrument::resetNonVolatile() {
    // Outside a session the reset holds the instrument while it writes, as a session would.
    const std::unique_ptr<MemoryFile::Hold> held = session_ ? nullptr : file_.hold();
    for (const Group g : kGroups)
        nonVolatile_ = file_.saveGroup(g, Settings::factory(), nonVolatile_);
}

} // namespace vss::sim
