// A point in time on the monotonic clock, for "changed since" questions
// (a program relinks when a shader was attached after its last link).
#pragma once

#include <chrono>
#include <compare>
#include <cstdint>

namespace Tev::Chart::Core {

class TimeStamp {
public:
    using Clock = std::chrono::steady_clock;

    // Older than every Now().
    TimeStamp() = default;

    // The current time. Successive calls in one process give strictly
    // increasing stamps, even where the clock's resolution would give two
    // equal ones: a touch right after a link must still count as newer.
    static TimeStamp Now();

    // Sets this stamp to Now().
    void Touch() { *this = Now(); }

    Clock::time_point TimePoint() const { return _time; }

    // Seconds and milliseconds from p_earlier to this stamp; negative when
    // p_earlier is the later one.
    double SecondsSince(TimeStamp const& p_earlier) const;
    double MillisecondsSince(TimeStamp const& p_earlier) const;
    // From this stamp to now.
    double ElapsedSeconds() const { return Now().SecondsSince(*this); }
    double ElapsedMilliseconds() const { return Now().MillisecondsSince(*this); }

    friend double operator-(TimeStamp const& p_later, TimeStamp const& p_earlier) {
        return p_later.SecondsSince(p_earlier);
    }
    auto operator<=>(TimeStamp const&) const = default;

private:
    explicit TimeStamp(Clock::time_point p_time) : _time(p_time) {}

    Clock::time_point _time{};
};

}  // namespace Tev::Chart::Core
