// A recording stand-in for a GL driver: an OglApi whose every entry records
// its call and arguments and answers from a script. Unit tests state the
// exact calls the library makes ("glDrawElements(0x0007, 8, 0x1403, 8)") and
// play any driver: a GL 2.0 version string, missing entries, chosen integer
// query answers.
//
// The entries are plain functions, so the recorder they report to is a
// process-wide current one: one FakeGl at a time, on the test's thread.
#pragma once

#include "ogl/api/OglApi.h"

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace Tev::Test {

// One recorded argument: integers, floating-point values and pointers.
using FakeArg = std::variant<std::int64_t, double, void const*>;

struct FakeCall {
    std::string name;  // the GL symbol, "glClear"
    std::vector<FakeArg> args;

    std::int64_t Int(std::size_t p_index) const;
    double Double(std::size_t p_index) const;
    void const* Ptr(std::size_t p_index) const;
    // "glViewport(0, 0, 100, 50)": integers in decimal, pointers in hex.
    std::string ToString() const;
};

// What a scripted entry returns: an integer or a pointer; converted to the
// entry's own return type.
using FakeResult = std::variant<std::int64_t, void const*>;

class FakeGl {
public:
    using Handler = std::function<FakeResult(FakeCall const&)>;

    // Becomes the current recorder. Answers a GL 4.5 compatibility driver
    // with an empty extension string until told otherwise.
    FakeGl();
    FakeGl(FakeGl const&) = delete;
    FakeGl& operator=(FakeGl const&) = delete;
    ~FakeGl();

    // A table whose entries record into this fake; the named entries are
    // left null (the driver "lacks" them).
    Chart::Ogl::OglApi Api(std::set<std::string> const& p_missing = {}) const;

    // Script.
    void SetString(GLenum p_name, std::string p_value);  // glGetString
    void SetInteger(GLenum p_name, std::vector<GLint> p_values);  // glGetIntegerv
    void SetExtensions(std::vector<std::string> const& p_extensions);
    void QueueError(GLenum p_error);  // returned by the next glGetError
    void On(std::string const& p_name, Handler p_handler);

    // Record.
    std::vector<FakeCall> const& Calls() const { return _calls; }
    std::vector<FakeCall> Calls(std::string const& p_name) const;
    std::vector<std::string> CallStrings() const;
    void ClearCalls() { _calls.clear(); }

    // Used by the generated entries.
    static FakeGl& Current();
    FakeResult Record(FakeCall p_call);

private:
    void InstallDefaultHandlers();

    std::vector<FakeCall> _calls;
    std::map<std::string, Handler> _handlers;
    std::map<GLenum, std::string> _strings;
    std::map<GLenum, std::vector<GLint>> _integers;
    std::vector<GLenum> _errors;
};

}  // namespace Tev::Test
