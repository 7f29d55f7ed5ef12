#include "tools/vrtool/TimecodeCommand.h"

#include "tools/vrtool/CommandLine.h"
#include "tools/vrtool/Console.h"
#include "tools/vrtool/ExitCodes.h"
#include "tools/vrtool/Facts.h"
#include "tools/vrtool/FrameClock.h"
#include "tools/vrtool/JsonText.h"
#include "tools/vrtool/Utf8.h"
#include "vrUtils/OverMidnightInPointAdjuster.h"

#include <limits>
#include <stdexcept>

namespace {

constexpr char timecodeExplanation[] =
    R"(Timecode begins anew at midnight: what a recording holds behind it has smaller
values than its start. Tells whether the in-point is moved up by a day, test by
test; those behind the first "no" are not made.

Frames count from midnight, as numbers or times hh:mm:ss:ff. The rates:
  1 25   2 30   3 29.97 drop-frame   4 24   5 23.98   6 50   7 60
  8 59.94 drop-frame   any other: not known, and every in-point stays

Ends with 0, with 2 if the arguments are wrong.

Example:
  vrtool timecode --start 23:59:20:00 --duration 2000 --in 500 --rate 1)";

struct Recording {
    std::uint32_t start;
    std::uint32_t duration;
    std::uint32_t inPoint;
};

Json::Value timeOf(FrameClock const& clock, std::uint32_t frames) {
    auto const time = clock.timeOf(frames);
    return time.empty() ? Json::Value() : Json::Value(time);
}

// The outcome of a test, unless one before it has settled the matter.
Json::Value outcome(bool& isOpen, bool result) {
    if (!isOpen)
        return {};
    isOpen = result;
    return result;
}

Facts factsOf(Recording const& recording, EFrameRate rate) {
    FrameClock const clock(rate);
    auto const [start, duration, inPoint] = recording;
    auto const day = clock.dayLength();
    auto const end = start + duration;
    auto const moved = day + inPoint;
    std::uint32_t const result =
        OverMidnightInPointAdjuster(start, duration, inPoint, rate).Adjust();

    Facts facts{
        {"rate", static_cast<std::int32_t>(rate)},
        {"dayLength", day},
        {"start", start},
        {"startTime", timeOf(clock, start)},
        {"duration", duration},
        {"end", end},
        {"endTime", timeOf(clock, end)},
        {"in", inPoint},
        {"inTime", timeOf(clock, inPoint)},
    };
    bool isOpen = true;
    facts.push_back({"startsInFirstDay", outcome(isOpen, start < day)});
    facts.push_back({"endsBehindMidnight", outcome(isOpen, end > day)});
    facts.push_back({"inPointBeforeStart", outcome(isOpen, inPoint < start)});
    facts.push_back({"moved", isOpen ? Json::Value(moved) : Json::Value()});
    facts.push_back({"movedBeforeEnd", outcome(isOpen, moved < end)});
    facts.push_back({"result", result});
    facts.push_back({"resultTime", timeOf(clock, result)});
    return facts;
}

} // namespace

TimecodeCommand::TimecodeCommand()
    : Command(
          "timecode", "Find an in-point of a recording that runs past midnight",
          timecodeExplanation) {}

void TimecodeCommand::declare(CLI::App& arguments) {
    using Limits = std::numeric_limits<std::int32_t>;
    auto const frames = [&](char const* name, char const* description) {
        auto* const option = arguments.add_option(name)->required()->type_name("FRAMES");
        option->description(description);
        return option;
    };
    m_start = frames("--start", "The first frame of the recording");
    m_duration = frames("--duration", "Its length");
    m_inPoint = frames("--in", "The frame that is asked for");
    arguments.add_option("--rate", m_rate, "The number of a rate")
        ->check(CLI::Range(Limits::min(), Limits::max()).description(""))
        ->type_name("RATE")
        ->required();
    arguments.add_flag("--json", m_json, "Print an object instead of the table");
    arguments.final_callback([this] {
        for (auto const* option : {m_start, m_duration, m_inPoint})
            framesOf(*option);
    });
}

std::uint32_t TimecodeCommand::framesOf(CLI::Option const& option) const {
    try {
        return FrameClock(static_cast<EFrameRate>(m_rate))
            .framesOf(toUtf8(CommandLine::textOf(option)));
    } catch (std::invalid_argument const& wrong) {
        throw CLI::ValidationError(option.get_name(), wrong.what());
    }
}

int TimecodeCommand::run(Console& console) const {
    auto const facts = factsOf(
        {framesOf(*m_start), framesOf(*m_duration), framesOf(*m_inPoint)},
        static_cast<EFrameRate>(m_rate));
    console.out(m_json ? jsonText(objectOf(facts)) : tableOf(facts, console.width()));
    return ExitCode::success;
}
