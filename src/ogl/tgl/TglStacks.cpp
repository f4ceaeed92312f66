// The attribute, name and scissor stacks, program binding and render passes.
#include "ogl/tgl/Tgl.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/shaders/Program.h"
#include "ogl/shaders/RouteProgram.h"
#include "ogl/tgl/PixelRect.h"
#include "ogl/tgl/StateTracker.h"
#include "ogl/tgl/TglHotEntries.h"

#include <boost/optional.hpp>

#include <algorithm>
#include <cstdlib>

namespace Tev::Chart::Ogl {

// Workaround "mesa-color-material-push": once a Begin/End has run on a Mesa
// context (22.3, llvmpipe), a colour sent outside Begin/End reaches the
// colour-material only at the next flush, and glPushAttrib(GL_LIGHTING_BIT)
// saves the material from before it; the matching pop then brings that
// stale material back, and the next draw is lit with it. Seen as the same
// scene drawn twice on one context coming out different the second time.
// A glFlush first applies the pending update. Set
// TEVOGL_NO_COLOR_MATERIAL_FLUSH to leave it out.
bool Tgl::NeedsFlushBeforeLightingPush(Utility::VersionNo const& p_glVersion) {
    return p_glVersion.Text().find("Mesa") != std::string::npos &&
           !std::getenv("TEVOGL_NO_COLOR_MATERIAL_FLUSH");
}

void Tgl::PushAttrib(unsigned p_mask) {
    ensure(_scopes.Depth());
    if ((p_mask & Tokens::TGL_LIGHTING_BIT) && _flushBeforeLightingPush) _impl->Flush();
    _hot->PushAttrib(p_mask);
    _stateTracker->PushAttrib(p_mask);
    // The tracker's pop rides with GL's, so that a backstop unwinding a
    // forgotten pop restores both. GL's pop of the texture bit brings back
    // the active unit, and the facade's record of it follows.
    auto const popAttrib = _hot->PopAttrib;
    StateTracker* const tracker = _stateTracker.get();
    bool const restoresUnit = (p_mask & Tokens::TGL_TEXTURE_BIT) != 0;
    unsigned const activeTexture = _activeTexture;
    PushUndo(
        _attributeUndoStack,
        [this, popAttrib, tracker, restoresUnit, activeTexture] {
            tracker->PopAttrib();
            popAttrib();
            if (restoresUnit) _activeTexture = activeTexture;
        },
        "PopAttrib", "PopAttribute - Fallback");
}

void Tgl::PopAttrib() {
    ensure(_scopes.Depth() && _attributeUndoStack.Depth());
    _attributeUndoStack.Pop();
}

Tgl::Token Tgl::PushAttribScope(unsigned p_mask) {
    Token token = MakeToken(&Tgl::PopAttrib);
    PushAttrib(p_mask);
    return token;
}

// The name stack serves selection only; there is no shader-side copy.
void Tgl::PushName(unsigned p_name) {
    ensure(_scopes.Depth());
    _hot->PushName(p_name);
    PushUndo(_nameUndoStack, _hot->PopName, "PopName", "PopName - Fallback");
}

void Tgl::PopName() {
    ensure(_scopes.Depth());
    _nameUndoStack.Pop();
}

void Tgl::PushScissor() {
    ensure(_scopes.Depth());
    Types::Viewport const top = _scissorStack.empty() ? _currentScissor : _scissorStack.back();
    _scissorStack.push_back(top);
    PushUndo(
        _scissorUndoStack,
        [this] {
            if (!_scissorStack.empty()) _scissorStack.pop_back();
        },
        "PushScissor", "Push Scissor - Fallback");
}

void Tgl::PopScissor() {
    ensure(_scopes.Depth());
    ensure(!_scissorStack.empty());
    _scissorUndoStack.Pop();
}

void Tgl::Scissor(Types::Viewport const& p_rectangle) {
    Types::Viewport const& inForce = _scissorStack.empty() ? _currentScissor : _scissorStack.back();
    float const x = std::max(p_rectangle.x, inForce.x);
    float const y = std::max(p_rectangle.y, inForce.y);
    float width = p_rectangle.width;
    float height = p_rectangle.height;
    // A rectangle in force of no size clips nothing.
    if (inForce.width > 0 && inForce.height > 0) {
        width = std::min(p_rectangle.Right(), inForce.Right()) - x;
        height = std::min(p_rectangle.Top(), inForce.Top()) - y;
    }
    Types::Viewport const intersection(x, y, width, height);
    if (!_scissorStack.empty()) _scissorStack.back() = intersection;
    // An empty intersection leaves the GL scissor as it was.
    if (width <= 0 || height <= 0) return;
    PixelRect const pixels = OutwardPixels(intersection);
    _hot->Scissor(pixels.x, pixels.y, pixels.width, pixels.height);
}

namespace {

// The GL name of a program's object; none without a program or an object.
boost::optional<unsigned> ProgramName(boost::shared_ptr<Program> const& p_program) {
    if (!p_program || !p_program->Object()) return boost::none;
    return p_program->Object()->Handle();
}

}  // namespace

Tgl::Token Tgl::Bind(boost::shared_ptr<Program> const& p_program) {
    if (!ensure(p_program)) return Token();
    _programStack.push_back(_boundProgram);
    RestoreProgram(p_program);
    return MakeToken(&Tgl::UnbindProgram);
}

void Tgl::RestoreProgram(boost::shared_ptr<Program> const& p_program) {
    bool const needsSwitch = p_program != _boundProgram && ProgramName(p_program) != ProgramName(_boundProgram);
    if (needsSwitch && _boundProgram) _boundProgram->Deactivated(Handle());
    _boundProgram = p_program;
    _routeProgram = dynamic_cast<RouteProgram*>(p_program.get());
    if (!needsSwitch) return;
    // Changes made while a program was in force reached only the tracker.
    if (IsFixedFunction()) _stateTracker->SyncFixedFunction();
    if (p_program && p_program->Object())
        UseObject(*p_program->Object());
    else
        _hot->UseProgram(0);
    if (p_program) p_program->Activated(Handle());
}

void Tgl::UnbindProgram() {
    ensure(_boundProgram && "Must have a bound program to restore from program stack.");
    boost::shared_ptr<Program> previous;
    if (!_programStack.empty()) {
        previous = _programStack.back();
        _programStack.pop_back();
    }
    RestoreProgram(previous);
}

bool Tgl::IsFixedFunction() const {
    if (!_boundProgram) return true;
    return _boundProgram->Object() && _boundProgram->Object()->Handle() == 0;
}

bool Tgl::RequiresCompatibilityAttributes() const {
    return !_boundProgram || _boundProgram->RequiresCompatibilityAttributes();
}

boost::shared_ptr<ProgramObject> Tgl::GenFixedFunction() const {
    if (!ensure(_fixedFunction)) return {};
    return _fixedFunction->Object();
}

void Tgl::PushRenderPass(OutputStage const& p_stage) { _outputStageStack->push_back(p_stage); }

void Tgl::PopRenderPass() {
    if (ensure(!_outputStageStack->empty())) _outputStageStack->pop_back();
}

Tgl::Token Tgl::ScopedOutputStage(OutputStage const& p_stage) {
    PushRenderPass(p_stage);
    return MakeToken(&Tgl::PopRenderPass);
}

OutputStage Tgl::ActiveOutputStage() const {
    if (!ensure(!_outputStageStack->empty())) return OutputStage::Forward;
    return _outputStageStack->back();
}

}  // namespace Tev::Chart::Ogl
