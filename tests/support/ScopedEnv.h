// Sets or clears an environment variable for a scope and puts the previous
// value back afterwards.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace Tev::Test {

class ScopedEnv {
public:
    // A null p_value clears the variable.
    ScopedEnv(char const* p_name, char const* p_value) : _name(p_name) {
        if (char const* previous = std::getenv(p_name)) _previous = previous;
        Set(p_value);
    }
    ScopedEnv(ScopedEnv const&) = delete;
    ScopedEnv& operator=(ScopedEnv const&) = delete;
    ~ScopedEnv() { Set(_previous ? _previous->c_str() : nullptr); }

private:
    void Set(char const* p_value) {
        if (p_value) ::setenv(_name.c_str(), p_value, 1);
        else ::unsetenv(_name.c_str());
    }

    std::string _name;
    std::optional<std::string> _previous;
};

}  // namespace Tev::Test
