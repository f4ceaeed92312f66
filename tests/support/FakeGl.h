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

struct FakeCall {
    std::string name;  // the GL symbol, "glClear"
    std::vector<std::variant<std::int64_t, double, void const*>> args;

    std::int64_t Int(std::size_t p_index) const { return std::get<std::int64_t>(args.at(p_index)); }
    void* Ptr(std::size_t p_index) const { return const_cast<void*>(std::get<void const*>(args.at(p_index))); }
};

// What a scripted entry returns, converted to the entry's own return type.
using FakeResult = std::variant<std::int64_t, void const*>;

class FakeGl {
public:
    // Becomes the current recorder. Answers a GL 4.5 compatibility driver
    // with an empty extension string until told otherwise.
    FakeGl();
    ~FakeGl();

    // A table whose entries record into this fake; the named entries are
    // left null (the driver "lacks" them).
    Chart::Ogl::OglApi Api(std::set<std::string> const& p_missing = {}) const;

    void SetString(GLenum p_name, std::string p_value) { _strings[p_name] = std::move(p_value); }  // glGetString
    void SetInteger(GLenum p_name, std::vector<GLint> p_values) { _integers[p_name] = std::move(p_values); }  // glGetIntegerv
    void SetExtensions(std::vector<std::string> const& p_extensions);
    void On(std::string const& p_name, std::function<FakeResult(FakeCall const&)> p_handler) { _handlers[p_name] = std::move(p_handler); }

    std::vector<FakeCall> Calls(std::string const& p_name) const;
    // "glViewport(0, 0, 100, 50)": integers in decimal, pointers in hex.
    std::vector<std::string> CallStrings() const;
    void ClearCalls() { _calls.clear(); }

    FakeResult Record(FakeCall p_call);  // by the entries

private:
    std::vector<FakeCall> _calls;
    std::map<std::string, std::function<FakeResult(FakeCall const&)>> _handlers;
    std::map<GLenum, std::string> _strings;
    std::map<GLenum, std::vector<GLint>> _integers;
};

}  // namespace Tev::Test
