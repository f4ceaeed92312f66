// A stack of levels, each collecting operations to run when it is closed.
//
// The facade keeps its scopes and undo stacks in these: a push opens a level
// and files its undo on it, the matching pop closes the level and runs what
// was filed. Nothing here checks whether a level is open; the owners do that
// with their own checks and messages, so a pop of an empty stack or a filing
// with no level open is silently ignored.
#pragma once

#include <boost/function.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Tev::Chart::Utility {

class OperationStack {
public:
    using Operation = boost::function<void()>;

    OperationStack() = default;
    OperationStack(OperationStack const&) = delete;
    OperationStack& operator=(OperationStack const&) = delete;
    // Levels still open are dropped without running their operations: by
    // then whatever they would undo may already be gone.
    ~OperationStack() = default;

    // Opens a level.
    void Push();
    // Closes the top level and runs its operations, last filed first. An
    // operation that throws is handed to the logger's exception handler and
    // the rest still run. Operations may use this stack themselves.
    void Pop();
    // The number of open levels.
    std::size_t Depth() const { return _levels.size(); }

    // Files p_operation under the label p_name on the top level.
    void InsertOperation(Operation p_operation, std::string p_name);

    // The labels filed on the top level so far, in filing order.
    std::vector<std::string> TopNames() const;

private:
    struct Entry {
        Operation operation;
        std::string name;
    };
    using Level = std::vector<Entry>;

    static void Run(Entry const& p_entry);

    std::vector<Level> _levels;
};

}  // namespace Tev::Chart::Utility
