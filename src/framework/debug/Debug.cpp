#include "framework/debug/Debug.h"

#include <iostream>

namespace Tev::Debug {

namespace {

struct SinkSlot {
    std::mutex mutex;
    std::shared_ptr<LogSink> sink = std::make_shared<StreamSink>();
};

SinkSlot& Slot() {
    static SinkSlot slot;
    return slot;
}

}  // namespace

char const* ChannelName(Channel p_channel) {
    switch (p_channel) {
        case Channel::Debug: return "debug";
        case Channel::Error: return "error";
        case Channel::Out: return "cout";
        case Channel::Assert: return "assert";
        case Channel::Sentry: return "sentry";
    }
    return "<unknown>";
}

void StreamSink::Write(LogEntry const& p_entry) {
    bool const toErr = p_entry.channel == Channel::Error || p_entry.channel == Channel::Assert;
    std::ostream& os = toErr ? std::cerr : std::cout;
    if (!p_entry.category.empty()) os << '[' << p_entry.category << "] ";
    if (p_entry.channel == Channel::Assert) os << "ASSERTION FAILED: ";
    os << p_entry.text;
    if (p_entry.text.empty() || p_entry.text.back() != '\n') os << '\n';
    os.flush();
}

std::shared_ptr<LogSink> SetSink(std::shared_ptr<LogSink> p_sink) {
    std::lock_guard lock(Slot().mutex);
    std::swap(Slot().sink, p_sink);
    return p_sink;
}

std::shared_ptr<LogSink> GetSink() {
    std::lock_guard lock(Slot().mutex);
    return Slot().sink;
}

void Write(Channel p_channel, std::string_view p_category, std::string p_text) {
    // Take a reference under the lock, write outside it: a sink may log.
    if (auto sink = GetSink()) sink->Write(LogEntry{p_channel, std::string(p_category), std::move(p_text)});
}

void ReportFailure(char const* p_condition, char const* p_signature) {
    Write(Channel::Assert, {}, std::string("\"") + p_condition + "\" - " + p_signature);
}

void ReportSentry(char const* p_text, char const* p_signature) {
    std::string text = p_text ? p_text : "";
    Write(Channel::Sentry, {}, text.empty() ? std::string(p_signature) : text + " - " + p_signature);
}

void HandleException(std::exception_ptr p_exception, char const* p_signature) {
    std::string what = "unknown exception";
    try {
        if (p_exception) std::rethrow_exception(p_exception);
    } catch (std::exception const& e) {
        what = e.what();
    } catch (...) {
    }
    Write(Channel::Error, {}, "Exception caught in " + std::string(p_signature) + ": " + what);
}

dbgostream::dbgostream(Channel p_channel, std::string_view p_category)
    : _channel(p_channel), _category(p_category) {}

dbgostream::~dbgostream() { Write(_channel, _category, _stream.str()); }

void CaptureSink::Write(LogEntry const& p_entry) {
    std::lock_guard lock(_mutex);
    _entries.push_back(p_entry);
}

std::vector<LogEntry> CaptureSink::Entries() const {
    std::lock_guard lock(_mutex);
    return _entries;
}

std::vector<std::string> CaptureSink::Texts(Channel p_channel) const {
    std::lock_guard lock(_mutex);
    std::vector<std::string> texts;
    for (auto const& e : _entries)
        if (e.channel == p_channel) texts.push_back(e.text);
    return texts;
}

void CaptureSink::Clear() {
    std::lock_guard lock(_mutex);
    _entries.clear();
}

CaptureScope::CaptureScope() : _sink(std::make_shared<CaptureSink>()), _previous(SetSink(_sink)) {}

CaptureScope::~CaptureScope() { SetSink(_previous); }

}  // namespace Tev::Debug
