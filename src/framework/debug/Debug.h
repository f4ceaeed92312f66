// The framework's debug logger: reporting checks and named log channels.
//
// A check reports a failed condition and lets execution carry on; it never
// aborts. The report is the condition's text in double quotes, " - ", then the
// full signature of the enclosing function, for instance
//   "p_id != 0" - unsigned Foo::Bar(unsigned)
// A failed condition is evaluated a second time after the report (the shape of
// the original assertion macros), so a side effect inside a failing check runs
// twice.
#pragma once

#include <exception>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace Tev::Debug {

// Where a log entry goes.
enum class Channel {
    Debug,     // dlog: routine messages and dumps
    Error,     // derr: warnings and errors
    Out,       // dout: console-style output ("cout")
    Assert,    // failed ensure/chkrng/chkptr
    Sentry,    // sentry trace lines
};

char const* ChannelName(Channel p_channel);

struct LogEntry {
    Channel channel;
    std::string category;  // "ogl", "GLSL", "FBO", "ogldebug", ... or empty
    std::string text;
};

// Receives every log entry. Sinks are called on the thread that logs; a sink
// that is shared between threads locks for itself.
class LogSink {
public:
    virtual ~LogSink() = default;
    virtual void Write(LogEntry const& p_entry) = 0;
};

// The default sink: debug, out and sentry entries to stdout, the rest to
// stderr, each prefixed with its category in brackets.
class StreamSink final : public LogSink {
public:
    void Write(LogEntry const& p_entry) override;
};

// Installs a sink for the whole process and returns the previous one.
std::shared_ptr<LogSink> SetSink(std::shared_ptr<LogSink> p_sink);
std::shared_ptr<LogSink> GetSink();

void Write(Channel p_channel, std::string_view p_category, std::string p_text);

// Failed checks. p_condition is the condition text as written.
void ReportFailure(char const* p_condition, char const* p_signature);
void ReportSentry(char const* p_text, char const* p_signature);

// The logger's exception handler: exceptions caught where they must not
// propagate (scope-guard constructors and destructors) end up here and are
// logged on the error channel.
void HandleException(std::exception_ptr p_exception, char const* p_signature);

// One log entry, assembled with operator<< and written when the stream goes.
class dbgostream {
public:
    dbgostream(Channel p_channel, std::string_view p_category);
    dbgostream(dbgostream const&) = delete;
    dbgostream& operator=(dbgostream const&) = delete;
    ~dbgostream();

    template <typename T>
    dbgostream& operator<<(T const& p_value) {
        _stream << p_value;
        return *this;
    }
    dbgostream& operator<<(std::ostream& (*p_manip)(std::ostream&)) {
        _stream << p_manip;
        return *this;
    }

private:
    Channel _channel;
    std::string _category;
    std::ostringstream _stream;
};

inline dbgostream dlog(std::string_view p_category = {}) { return {Channel::Debug, p_category}; }
inline dbgostream derr(std::string_view p_category = {}) { return {Channel::Error, p_category}; }
inline dbgostream dout(std::string_view p_category = {}) { return {Channel::Out, p_category}; }

// A sink that keeps every entry, for tests. Install it with CaptureScope.
class CaptureSink final : public LogSink {
public:
    void Write(LogEntry const& p_entry) override;

    std::vector<LogEntry> Entries() const;
    // The texts of the entries on one channel, in order.
    std::vector<std::string> Texts(Channel p_channel) const;
    void Clear();

private:
    mutable std::mutex _mutex;
    std::vector<LogEntry> _entries;
};

// Installs a capturing sink for its lifetime and restores the previous one.
class CaptureScope {
public:
    CaptureScope();
    CaptureScope(CaptureScope const&) = delete;
    CaptureScope& operator=(CaptureScope const&) = delete;
    ~CaptureScope();

    CaptureSink& Sink() { return *_sink; }
    std::vector<std::string> Texts(Channel p_channel) const { return _sink->Texts(p_channel); }
    std::vector<LogEntry> Entries() const { return _sink->Entries(); }

private:
    std::shared_ptr<CaptureSink> _sink;
    std::shared_ptr<LogSink> _previous;
};

}  // namespace Tev::Debug

#define TEV_SIGNATURE __PRETTY_FUNCTION__

// ensure(condition): report when false, then carry on. Yields the condition's
// truth so that callers may branch on it.
#define ensure(p_condition)                                                      \
    (static_cast<bool>(p_condition)                                              \
         ? true                                                                  \
         : (::Tev::Debug::ReportFailure(#p_condition, TEV_SIGNATURE),            \
            static_cast<void>(p_condition), false))

// ensure_as(condition, "text"): as ensure, reporting the given condition
// text where the condition as written cannot be compiled as it reads.
#define ensure_as(p_condition, p_text)                                           \
    (static_cast<bool>(p_condition)                                              \
         ? true                                                                  \
         : (::Tev::Debug::ReportFailure(p_text, TEV_SIGNATURE), false))

// chkrng(value, low, high): low <= value <= high.
#define chkrng(p_value, p_low, p_high) ensure((p_value) >= (p_low) && (p_value) <= (p_high))

// chkptr(pointer): the pointer is not null.
#define chkptr(p_pointer) ensure((p_pointer) != nullptr)

// sentry(text): a trace line naming the enclosing function; also marks
// branches that should not be reached.
#define sentry(p_text) ::Tev::Debug::ReportSentry(p_text, TEV_SIGNATURE)
