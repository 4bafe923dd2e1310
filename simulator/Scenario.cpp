#include "simulator/Scenario.h"

#include "driver/DriverError.h"
#include "driver/FileName.h"
#include "driver/Interfaces.h"
#include "driver/ShownText.h"
#include "simulator/SimInterfaces.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace vss::sim {

namespace {

struct Token {
    std::string text;
    bool quoted = false;
};

// A wrong line: the parser reports it with the file and line around it.
struct LineProblem {
    std::string what;
};

[[noreturn]] void wrong(std::string what) {
    throw LineProblem{std::move(what)};
}

std::vector<Token> tokenize(std::string_view line) {
    std::vector<Token> tokens;
    std::size_t i = 0;
    while (i < line.size()) {
        if (std::isspace(static_cast<unsigned char>(line[i]))) {
            ++i;
            continue;
        }
        if (line[i] == ':') {
            tokens.push_back({":", false});
            ++i;
            continue;
        }
        if (line[i] == '"') {
            std::string text;
            for (++i; i < line.size() && line[i] != '"'; ++i) {
                if (line[i] == '\\' && i + 1 < line.size() && (line[i + 1] == '"' || line[i + 1] == '\\'))
                    ++i;
                text += line[i];
            }
            if (i == line.size())
                wrong("the text " + inQuotes(text) + " has no closing quote");
            ++i;
            tokens.push_back({std::move(text), true});
            continue;
        }
        const std::size_t end = line.find_first_of(" \t:\"", i);
        tokens.push_back({std::string(line.substr(i, end - i)), false});
        i = end == std::string_view::npos ? line.size() : end;
    }
    return tokens;
}

// Reads the tokens of one line in order.
class Reader {
public:
    explicit Reader(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

    bool atEnd() const { return next_ == tokens_.size(); }
    bool peek(std::string_view word) const {
        return !atEnd() && !tokens_[next_].quoted && tokens_[next_].text == word;
    }
    bool accept(std::string_view word) {
        if (!peek(word))
            return false;
        ++next_;
        return true;
    }
    const Token& take(std::string_view expected) {
        if (atEnd())
            wrong("the line ends where " + std::string(expected) + " should follow");
        return tokens_[next_++];
    }
    std::string word(std::string_view expected) {
        const Token& t = take(expected);
        if (t.quoted)
            wrong("expected " + std::string(expected) + " instead of the text " + inQuotes(t.text));
        return t.text;
    }
    void expectEnd() {
        if (!atEnd())
            wrong("unexpected " + inQuotes(tokens_[next_].text) + " at the end of the line");
    }

private:
    std::vector<Token> tokens_;
    std::size_t next_ = 0;
};

std::chrono::milliseconds parseTime(const std::string& t) {
    const std::size_t digits = t.find_first_not_of("0123456789.");
    const std::string number = t.substr(0, digits);
    const std::string unit = digits == std::string::npos ? "" : t.substr(digits);
    const bool wellFormed = !number.empty() && number.front() != '.' && number.back() != '.' &&
                            std::count(number.begin(), number.end(), '.') <= 1 &&
                            (unit == "s" || unit == "ms");
    if (!wellFormed)
        wrong("bad time " + inQuotes(t) +
              ": write a number of seconds or milliseconds, such as 2.5s or 500ms");
    // Read in microseconds with whole numbers only: the decimal point is a point whatever the user's locale.
    const std::size_t point = number.find('.');
    const std::string whole = number.substr(0, point);
    std::string fraction = point == std::string::npos ? "" : number.substr(point + 1);
    const int fractionDigits = unit == "s" ? 6 : 3;
    if (whole.size() > 9 || fraction.size() > static_cast<std::size_t>(fractionDigits))
        wrong("bad time " + inQuotes(t) + ": a step waits 24 hours at most, timed to the millisecond");
    fraction.resize(static_cast<std::size_t>(fractionDigits), '0');
    const long long scale = unit == "s" ? 1'000'000 : 1'000;
    const long long us = std::stoll(whole) * scale + std::stoll(fraction);
    if (us > kMaxScenarioDelay.count() * 1000)
        wrong("bad time " + inQuotes(t) + ": a step waits 24 hours at most");
    return std::chrono::milliseconds((us + 500) / 1000);
}

std::string parseOperation(Reader& r) {
    const std::string op = r.word("an operation");
    if (!isOperationName(op))
        wrong("unknown operation " + inQuotes(op) +
              ": name it Interface.Operation, as in the trace (IDriver.Load)");
    return op;
}

void parseTrigger(Reader& r, ScenarioStep& step) {
    if (r.accept("when")) {
        step.whenOperation = parseOperation(r);
        if (!r.accept("after"))
            return;
    } else if (!r.accept("after")) {
        wrong("a step starts with \"after TIME\" or \"when OPERATION\"");
    }
    step.after = parseTime(r.word("a time"));
}

int parseCount(Reader& r) {
    if (r.accept("once"))
        return 1;
    if (r.accept("until")) {
        if (!r.accept("cleared"))
            wrong("write \"until cleared\"");
        return -1;
    }
    const std::string n = r.word("\"once\", \"N times\" or \"until cleared\"");
    const bool isNumber = !n.empty() && std::all_of(n.begin() + (n[0] == '-' ? 1 : 0), n.end(), [](char c) {
        return std::isdigit(static_cast<unsigned char>(c)) != 0;
    }) && n != "-";
    if (!isNumber)
        wrong("bad count " + inQuotes(n) + ": write \"once\", \"N times\" or \"until cleared\"");
    if (n[0] == '-' || n.size() > 4 || std::stoi(n) < 1 || std::stoi(n) > kMaxFailureCount)
        wrong("bad count " + n + ": a failure repeats 1 to " + std::to_string(kMaxFailureCount) + " times");
    if (!r.accept("times") && !r.accept("time"))
        wrong("write \"" + n + " times\"");
    return std::stoi(n);
}

void parseAction(Reader& r, ScenarioStep& step) {
    const std::string verb = r.word("an action (set, fail or clear)");
    if (verb == "set") {
        step.action = ScenarioStep::Action::SetInput;
        const std::string name = r.word("an input");
        const auto input = inputNamed(name);
        if (!input) {
            std::string names;
            for (const InputName& i : switchableInputs())
                names += (names.empty() ? "" : ", ") + std::string(i.name);
            wrong("unknown input " + inQuotes(name) + ": the inputs are " + names);
        }
        step.input = *input;
        const std::string value = r.word("on or off");
        if (value != "on" && value != "off")
            wrong("an input is set \"on\" or \"off\", not " + inQuotes(value));
        step.value = value == "on";
    } else if (verb == "fail") {
        step.action = ScenarioStep::Action::Fail;
        step.operation = parseOperation(r);
        step.times = parseCount(r);
        const Token& text = r.take("the failure's text in double quotes");
        if (!text.quoted)
            wrong("the failure's text goes in double quotes");
        step.text = text.text;
        if (const std::string problem = failureProblem(step.operation, step.text, step.times);
            !problem.empty())
            wrong(problem);
    } else if (verb == "clear") {
        if (r.accept("all")) {
            step.action = ScenarioStep::Action::ClearAll;
        } else {
            step.action = ScenarioStep::Action::Clear;
            step.operation = parseOperation(r);
        }
    } else {
        wrong("unknown action " + inQuotes(verb) + ": the actions are set, fail and clear");
    }
    r.expectEnd();
}

ScenarioStep parseStep(std::string_view line) {
    Reader r(tokenize(line));
    ScenarioStep step;
    parseTrigger(r, step);
    if (!r.accept(":"))
        wrong("a colon should follow the trigger (\"after 2s: set interlock on\")");
    parseAction(r, step);
    return step;
}

template <class I> void addOperations(std::vector<std::string>& names) {
    for (const OperationSlot& op : I::kOperations)
        names.push_back(std::string(I::kName) + "." + std::string(op.name));
}

} // namespace

Scenario parseScenario(std::string_view text, const std::string& name) {
    Scenario scenario{name, {}};
    int lineNumber = 0;
    std::istringstream lines{std::string(withoutByteOrderMark(text))};
    for (std::string line; std::getline(lines, line);) {
        ++lineNumber;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        const std::size_t first = line.find_first_not_of(" \t");
        if (first == std::string::npos || line[first] == '#')
            continue;
        try {
            ScenarioStep step = parseStep(line);
            step.line = lineNumber;
            scenario.steps.push_back(std::move(step));
        } catch (const LineProblem& p) {
            throw DriverError(name + ", line " + std::to_string(lineNumber) + ": " + p.what + ".");
        }
    }
    return scenario;
}

Scenario readScenario(const std::string& path) {
    // Only a regular file is a scenario: a named pipe would block the program until someone writes to it, and
    // a folder would read as a scenario without steps.
    std::error_code ec;
    const auto status = std::filesystem::status(pathFromUtf8(path), ec);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw DriverError("The scenario file " + path +
                          " is not a regular file: name a file of scenario steps.");
    std::ifstream in(pathFromUtf8(path), std::ios::binary);
    if (!in)
        throw DriverError("Cannot read the scenario file " + path + ".");
    constexpr std::streamsize kMaxSize = 1 << 20;
    std::string text;
    text.resize(kMaxSize + 1);
    in.read(text.data(), kMaxSize + 1);
    text.resize(static_cast<std::size_t>(in.gcount()));
    if (static_cast<std::streamsize>(text.size()) > kMaxSize)
        throw DriverError("The scenario file " + path + " is larger than 1 MB: it cannot be a scenario.");
    return parseScenario(text, path);
}

const std::vector<InputName>& switchableInputs() {
    static const std::vector<InputName> inputs{
        {Input::Interlock, "interlock"},    {Input::Emergency, "emergency"},
        {Input::OuterCover, "outer-cover"}, {Input::Vacuum, "vacuum"},
        {Input::SpindleSet, "spindle-set"},
    };
    return inputs;
}

std::optional<Input> inputNamed(std::string_view name) {
    for (const InputName& i : switchableInputs())
        if (i.name == name)
            return i.input;
    return std::nullopt;
}

const std::vector<std::string>& operationNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all{"CoDriver.QueryInterface"};
        addOperations<IDriver>(all);
        addOperations<IDriverPiezo>(all);
        addOperations<IDriverStage>(all);
        addOperations<IDriverLoadPosition>(all);
        addOperations<IDriverHeadLoader>(all);
        addOperations<IDriverSpindle>(all);
        addOperations<IDriverClamp>(all);
        addOperations<IDriverHeadFace>(all);
        addOperations<IDriverIndex>(all);
        addOperations<IDriverInterlock>(all);
        addOperations<IDriverDiskSize>(all);
        addOperations<IDriverService>(all);
        return all;
    }();
    return names;
}

std::string failureProblem(std::string_view operation, std::string_view text, int times) {
    if (!isOperationName(operation))
        return "unknown operation " + inQuotes(operation) + ": name it Interface.Operation, as in the trace";
    if (times == 0 || times < -1 || times > kMaxFailureCount)
        return "bad count " + std::to_string(times) + ": a failure repeats 1 to " +
               std::to_string(kMaxFailureCount) + " times, or until cleared";
    if (text.find_first_not_of(" \t") == std::string_view::npos)
        return "the failure's text is empty: write the message the instrument gives";
    if (text.size() > kMaxFailureText)
        return "the failure's text is " + std::to_string(text.size()) +
               " characters long: " + std::to_string(kMaxFailureText) + " at most";
    if (std::any_of(text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\0'; }))
        return "the failure's text is one line";
    return {};
}

ScenarioRun::ScenarioRun(Scenario scenario, ScenarioClock::time_point start)
    : scenario_(std::move(scenario)), start_(start), progress_(scenario_.steps.size()) {}

std::vector<ScenarioStep> ScenarioRun::due(ScenarioClock::time_point now, std::string_view calling) {
    std::vector<ScenarioStep> steps;
    for (std::size_t i = 0; i < scenario_.steps.size(); ++i) {
        const ScenarioStep& step = scenario_.steps[i];
        Progress& p = progress_[i];
        if (p.done)
            continue;
        if (!step.whenOperation.empty() && !p.armedAt && step.whenOperation == calling)
            p.armedAt = now;
        const std::optional<ScenarioClock::time_point> from = step.whenOperation.empty() ? start_ : p.armedAt;
        if (from && now - *from >= step.after) {
            p.done = true;
            steps.push_back(step);
        }
    }
    return steps;
}

std::size_t ScenarioRun::stepsDone() const {
    return static_cast<std::size_t>(
        std::count_if(progress_.begin(), progress_.end(), [](const Progress& p) { return p.done; }));
}

} // namespace vss::sim
