// Base of every exception the framework and the library throw.
#pragma once

#include <stdexcept>
#include <string>

namespace Tev::Chart::Utility {

class Exception : public std::runtime_error {
public:
    explicit Exception(std::string const& p_message) : std::runtime_error(p_message) {}
    Exception(Exception const&) = default;
    Exception& operator=(Exception const&) = default;
    ~Exception() override = default;

    std::string Message() const { return what(); }
};

}  // namespace Tev::Chart::Utility
