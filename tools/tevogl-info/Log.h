// What tevogl-info shows of the library's log: routine lines only when
// asked for, everything else (dumps to "cout", warnings, failed checks)
// always.
#pragma once

#include "framework/debug/Debug.h"

#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace TevOglInfo {

inline void PrintHeading(char const* p_title) {
    std::cout << '\n' << p_title << '\n' << std::string(std::strlen(p_title), '-') << '\n';
}

inline void PrintEntry(Tev::Debug::LogEntry const& p_entry) {
    if (p_entry.channel == Tev::Debug::Channel::Assert) std::cout << "ASSERTION FAILED: ";
    std::cout << p_entry.text << (p_entry.text.empty() || p_entry.text.back() != '\n' ? "\n" : "");
}

// p_alsoShown picks routine lines to show without --log.
template <typename Pick>
void PrintLog(std::vector<Tev::Debug::LogEntry> const& p_entries, bool p_everything, Pick p_alsoShown) {
    for (auto const& entry : p_entries)
        if (p_everything || entry.channel != Tev::Debug::Channel::Debug || p_alsoShown(entry)) PrintEntry(entry);
}

inline void PrintLog(std::vector<Tev::Debug::LogEntry> const& p_entries, bool p_everything) {
    PrintLog(p_entries, p_everything, [](Tev::Debug::LogEntry const&) { return false; });
}

}  // namespace TevOglInfo
