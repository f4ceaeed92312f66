#include "framework/core/TimeStamp.h"

#include <atomic>

namespace Tev::Chart::Core {

TimeStamp TimeStamp::Now() {
    static std::atomic<Clock::rep> last{Clock::time_point{}.time_since_epoch().count()};
    Clock::rep now = Clock::now().time_since_epoch().count();
    Clock::rep previous = last.load();
    // Take the clock, or one tick past the last stamp given out when the
    // clock has not moved on since.
    do {
        if (now <= previous) now = previous + 1;
    } while (!last.compare_exchange_weak(previous, now));
    return TimeStamp(Clock::time_point(Clock::duration(now)));
}

double TimeStamp::SecondsSince(TimeStamp const& p_earlier) const {
    return std::chrono::duration<double>(_time - p_earlier._time).count();
}

double TimeStamp::MillisecondsSince(TimeStamp const& p_earlier) const {
    return std::chrono::duration<double, std::milli>(_time - p_earlier._time).count();
}

}  // namespace Tev::Chart::Core
