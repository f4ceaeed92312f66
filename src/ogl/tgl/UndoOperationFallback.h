// The backstop a scope keeps for a scoped operation: if the operation's
// token is still alive when the scope closes, its undo is forced then.
#pragma once

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

namespace Tev::Chart::Ogl {

// What a scoped operation's token points at: the undo, callable with no
// arguments.
using UndoAction = boost::function<void()>;

class UndoOperationFallback {
public:
    // Watches p_undo without keeping it alive: releasing the last strong
    // reference means the undo has happened, and the fallback stands down.
    explicit UndoOperationFallback(boost::weak_ptr<UndoAction> p_undo) : _func(std::move(p_undo)) {}

    // Runs the undo at once, with a warning, when nobody ran it in time.
    void operator()() const;

private:
    boost::weak_ptr<UndoAction> _func;
};

}  // namespace Tev::Chart::Ogl
