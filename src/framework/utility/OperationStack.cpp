#include "framework/utility/OperationStack.h"

#include "framework/debug/Debug.h"

#include <exception>

namespace Tev::Chart::Utility {

void OperationStack::Push() { _levels.emplace_back(); }

void OperationStack::Pop() {
    if (_levels.empty()) return;
    // Detach the level before running anything: an operation may push, pop
    // or file on this very stack.
    Level const level = std::move(_levels.back());
    _levels.pop_back();
    for (auto it = level.rbegin(); it != level.rend(); ++it) Run(*it);
}

void OperationStack::InsertOperation(Operation p_operation, std::string p_name) {
    if (_levels.empty()) return;
    _levels.back().push_back(Entry{std::move(p_operation), std::move(p_name)});
}

std::vector<std::string> OperationStack::TopNames() const {
    std::vector<std::string> names;
    if (!_levels.empty())
        for (auto const& entry : _levels.back()) names.push_back(entry.name);
    return names;
}

void OperationStack::Run(Entry const& p_entry) {
    if (!p_entry.operation) return;
    try {
        p_entry.operation();
    } catch (...) {
        std::string const place = std::string(TEV_SIGNATURE) + " [" + p_entry.name + "]";
        Debug::HandleException(std::current_exception(), place.c_str());
    }
}

}  // namespace Tev::Chart::Utility
