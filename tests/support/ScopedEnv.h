// Sets an environment variable for a scope, or clears it for a null value,
// and puts the previous value back afterwards.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace Tev::Test {

class ScopedEnv {
public:
    ScopedEnv(char const* p_name, char const* p_value) : _name(p_name) {
        if (char const* previous = std::getenv(p_name)) _previous = previous;
        Set(p_value);
    }
    ~ScopedEnv() { Set(_previous ? _previous->c_str() : nullptr); }

private:
    void Set(char const* p_value) { p_value ? ::setenv(_name.c_str(), p_value, 1) : ::unsetenv(_name.c_str()); }

    std::string _name;
    std::optional<std::string> _previous;
};

}  // namespace Tev::Test
