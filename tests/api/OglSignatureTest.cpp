// Holds the entry-point table against the Khronos headers and registry: each
// member's type must be exactly the type of the function it is loaded from (a
// mismatch fails to compile), its symbol and forwarded arguments must follow
// its name and parameters, the table keeps its order, and only what OpenGL
// 1.1 exports is bound directly.

// The table is declared with nothing but the library's own GL types in scope,
// so an entry that needs a type only the Khronos headers declare fails here;
// including those headers afterwards proves that the two sets of typedefs
// agree (a typedef naming a different type is a redefinition error).
#include "ogl/api/OglApi.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>

// Each member's prototype is found as gl##Member; the members that do not
// follow that rule get an alias of the same function type, used only inside
// decltype. The symbol check below keeps an alias from standing for another
// function than its entry's symbol.
decltype(::glMemoryBarrier) glMemoryBarrierTGL;
#define TGL_GLU(R) decltype(::glu##R) glGlu##R;
TGL_GLU(Ortho2D) TGL_GLU(PickMatrix) TGL_GLU(Perspective) TGL_GLU(Build2DMipmaps) TGL_GLU(Cylinder) TGL_GLU(DeleteQuadric)
TGL_GLU(DeleteTess) TGL_GLU(Disk) TGL_GLU(ErrorString) TGL_GLU(NewQuadric) TGL_GLU(NewTess) TGL_GLU(PartialDisk)
TGL_GLU(QuadricDrawStyle) TGL_GLU(QuadricNormals) TGL_GLU(QuadricOrientation) TGL_GLU(Sphere) TGL_GLU(TessBeginContour)
TGL_GLU(TessBeginPolygon) TGL_GLU(TessCallback) TGL_GLU(TessEndContour) TGL_GLU(TessEndPolygon) TGL_GLU(TessNormal)
TGL_GLU(TessProperty) TGL_GLU(TessVertex) TGL_GLU(UnProject) TGL_GLU(Project)
#undef TGL_GLU

namespace {

using Tev::Chart::Ogl::EntryKind;
using Tev::Chart::Ogl::OglApi;

// Instantiated once per entry; on a mismatch the compiler names both types.
template <class Member, class Prototype>
constexpr EntryKind Checked(EntryKind p_kind) {
    static_assert(std::is_same_v<Member, Prototype*>, "table member type differs from the Khronos prototype");
    return p_kind;
}

struct Entry { EntryKind kind; std::string member, symbol, params, args; };
std::vector<Entry> const Entries = {
#define TEV_OGL_ENTRY(K, Ret, Member, Symbol, Params, Args) \
    {Checked<decltype(OglApi::Member), decltype(gl##Member)>(EntryKind::K), #Member, Symbol, #Params, #Args},
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY
};
char const* const KindNames[] = {"Direct", "Required", "Optional", "Glu"};

// The names p_pattern's first group finds in p_text.
std::vector<std::string> Names(std::string const& p_text, char const* p_pattern) {
    std::vector<std::string> names;
    std::regex const name(p_pattern);
    for (std::sregex_iterator it(p_text.begin(), p_text.end(), name), last; it != last; ++it) names.push_back((*it)[1]);
    return names;
}

// The symbol is "gl" + member, for GLU "glu" + the member less its "Glu", and
// glMemoryBarrier for the one renamed member; the arguments are the
// parameters' own names (the last word before each comma), in order; no
// member or symbol twice; and the table runs in this order, GLU last.
TEST(OglSignature, EveryEntryIsNamedForwardedAndPlacedAsListed) {
    std::set<std::string> members, symbols;
    for (Entry const& e : Entries) {
        EXPECT_EQ(e.symbol, e.member == "MemoryBarrierTGL"  ? "glMemoryBarrier"
                            : e.kind == EntryKind::Glu ? (e.member.starts_with("Glu") ? "glu" + e.member.substr(3) : "") : "gl" + e.member);
        EXPECT_EQ(Names(e.params, R"((\w+)\s*[,)])"), Names(e.args, R"((\w+))")) << e.symbol << ' ' << e.params;
        EXPECT_TRUE(members.insert(e.member).second && symbols.insert(e.symbol).second) << e.symbol;
    }
    std::vector<std::string> runs;  // "kind count first..last" for each run of one kind
    for (std::size_t start = 0, i = 1; i <= Entries.size(); ++i)
        if (i == Entries.size() || Entries[i].kind != Entries[start].kind) {
            runs.push_back(KindNames[int(Entries[start].kind)] + (' ' + std::to_string(i - start)) + ' ' +
                           Entries[start].symbol + ".." + Entries[i - 1].symbol);
            start = i;
        }
    EXPECT_EQ(runs, (std::vector<std::string>{
                        "Direct 65 glAlphaFunc..glTexImage2D", "Required 1 glTexImage3D..glTexImage3D",
                        "Direct 50 glGetTexImage..glPopClientAttrib",
                        "Required 15 glDrawRangeElements..glDrawBuffers",
                        "Direct 1 glGetTexLevelParameteriv..glGetTexLevelParameteriv",
                        "Required 83 glMapBufferRange..glDrawElementsInstanced",
                        "Optional 24 glGenVertexArrays..glDrawElementsInstancedBaseInstance",
                        "Required 10 glBindFramebufferEXT..glCheckFramebufferStatusEXT",
                        "Optional 8 glDebugMessageCallback..glDebugMessageInsertARB",
                        "Glu 26 gluOrtho2D..gluProject"}));
}

// The commands the registry assigns to OpenGL 1.0 and 1.1 are the ones every
// GL library exports by name, and so exactly the ones bound directly; the
// framebuffer objects must be there at least through the EXT extension.
TEST(OglSignature, LoadingKindsFollowWhatLibrariesExport) {
    std::ifstream file("/usr/share/khronos-api/gl.xml");
    ASSERT_TRUE(file) << "the Khronos registry (Debian's khronos-api) is not installed";
    std::string const xml{std::istreambuf_iterator<char>(file), {}};
    std::set<std::string> gl11;
    for (char const* feature : {"GL_VERSION_1_0", "GL_VERSION_1_1"}) {
        std::size_t const start = xml.find(std::string("<feature api=\"gl\" name=\"") + feature + '"');
        ASSERT_NE(start, std::string::npos) << feature;
        for (std::string const& name : Names(xml.substr(start, xml.find("</feature>", start) - start), R"x(<command name="(\w+)"/>)x"))
            gl11.insert(name);
    }
    std::map<std::string, EntryKind> kindOf;
    for (Entry const& e : Entries) {
        kindOf[e.symbol] = e.kind;
        if (e.kind != EntryKind::Glu) { EXPECT_EQ(e.kind == EntryKind::Direct, gl11.contains(e.symbol)) << e.symbol; }
    }
    for (std::string core : {"BindFramebuffer", "BindRenderbuffer", "DeleteFramebuffers", "DeleteRenderbuffers",
                             "FramebufferRenderbuffer", "FramebufferTexture2D", "GenFramebuffers", "GenRenderbuffers",
                             "RenderbufferStorage", "CheckFramebufferStatus"})
        EXPECT_TRUE(kindOf["gl" + core] == EntryKind::Optional && kindOf["gl" + core + "EXT"] == EntryKind::Required) << core;
    EXPECT_TRUE(kindOf["glDispatchCompute"] == EntryKind::Optional && kindOf["glDebugMessageCallbackARB"] == EntryKind::Optional);
    EXPECT_EQ(kindOf["glGenBuffers"], EntryKind::Required);
}

}  // namespace
