// Holds the entry-point list against the Khronos headers and registry: every
// listed pointer type must be exactly the type of the function it is loaded
// from, the argument names must forward the parameters, and the table must
// keep its order and its loading kinds. A wrong signature fails to compile.

// The list is expanded first with nothing but the library's own GL types in
// scope, so an entry that needs a type only the Khronos headers declare fails
// here rather than in some client that happens to include <GL/gl.h>.
#include "ogl/api/GlTypes.h"

namespace ListOnly {
#define TEV_OGL_ENTRY(Kind, Ret, Member, Symbol, Params, Args) using Member = Ret(TGL_APIENTRY*) Params;
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY
}  // namespace ListOnly

// Including the Khronos headers after GlTypes.h also proves the two agree:
// a typedef that names a different type is a redefinition error.
#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>

// Each entry's prototype is found as gl##Member. The members that do not
// follow that rule get an alias here: a declaration of the same function
// type, used only inside decltype, so nothing needs linking (and, outside
// the anonymous namespace, nothing warns that it is never defined). The
// symbol check below makes sure an alias cannot stand for another function
// than the entry's symbol.
decltype(::glMemoryBarrier) glMemoryBarrierTGL;
#define TGL_GLU_PROTOTYPE(Rest) decltype(::glu##Rest) glGlu##Rest;
TGL_GLU_PROTOTYPE(Ortho2D) TGL_GLU_PROTOTYPE(PickMatrix) TGL_GLU_PROTOTYPE(Perspective)
TGL_GLU_PROTOTYPE(Build2DMipmaps) TGL_GLU_PROTOTYPE(Cylinder) TGL_GLU_PROTOTYPE(DeleteQuadric)
TGL_GLU_PROTOTYPE(DeleteTess) TGL_GLU_PROTOTYPE(Disk) TGL_GLU_PROTOTYPE(ErrorString) TGL_GLU_PROTOTYPE(NewQuadric)
TGL_GLU_PROTOTYPE(NewTess) TGL_GLU_PROTOTYPE(PartialDisk) TGL_GLU_PROTOTYPE(QuadricDrawStyle)
TGL_GLU_PROTOTYPE(QuadricNormals) TGL_GLU_PROTOTYPE(QuadricOrientation) TGL_GLU_PROTOTYPE(Sphere)
TGL_GLU_PROTOTYPE(TessBeginContour) TGL_GLU_PROTOTYPE(TessBeginPolygon) TGL_GLU_PROTOTYPE(TessCallback)
TGL_GLU_PROTOTYPE(TessEndContour) TGL_GLU_PROTOTYPE(TessEndPolygon) TGL_GLU_PROTOTYPE(TessNormal)
TGL_GLU_PROTOTYPE(TessProperty) TGL_GLU_PROTOTYPE(TessVertex) TGL_GLU_PROTOTYPE(UnProject) TGL_GLU_PROTOTYPE(Project)
#undef TGL_GLU_PROTOTYPE

namespace {

// Instantiated once per entry; on a mismatch the compiler names both types.
template <class Listed, class Prototype>
constexpr int SameType() {
    static_assert(std::is_same_v<Listed, std::decay_t<Prototype>>,
                  "listed pointer type differs from the Khronos prototype");
    return 1;
}

constexpr int TypeCheckedEntries = 0
#define TEV_OGL_ENTRY(Kind, Ret, Member, Symbol, Params, Args) \
    +SameType<ListOnly::Member, decltype(gl##Member)>()
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY
    ;

enum class Kind { Direct, Required, Optional, Glu };

struct Entry {
    Kind kind;
    std::string_view member;
    std::string_view symbol;
    std::string_view params;
    std::string_view args;
};

constexpr Entry Entries[] = {
#define TEV_OGL_ENTRY(K, Ret, Member, Symbol, Params, Args) {Kind::K, #Member, Symbol, #Params, #Args},
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY
};

constexpr int CountOf(Kind p_kind) {
    int count = 0;
    for (Entry const& entry : Entries) count += entry.kind == p_kind ? 1 : 0;
    return count;
}

static_assert(std::size(Entries) == 283);
static_assert(CountOf(Kind::Direct) == 116);
static_assert(CountOf(Kind::Required) == 109);
static_assert(CountOf(Kind::Optional) == 32);
static_assert(CountOf(Kind::Glu) == 26);

// The names p_pattern's first group finds in p_list.
std::vector<std::string> Names(std::string_view p_list, char const* p_pattern) {
    std::vector<std::string> names;
    std::string const list(p_list);
    std::regex const name(p_pattern);
    for (std::sregex_iterator it(list.begin(), list.end(), name), last; it != last; ++it) names.push_back((*it)[1]);
    return names;
}

// "(GLenum func, GLfloat ref)" and "(func, ref)": one argument per parameter,
// each the parameter's own name (the last word before its comma), in order.
bool ArgsForwardParams(std::string_view p_params, std::string_view p_args) {
    return Names(p_params, R"((\w+)\s*[,)])") == Names(p_args, R"((\w+))");
}

// The symbol a member must be loaded from: "gl" + member, or for GLU "glu" +
// the member without its "Glu"; MemoryBarrierTGL is the one renamed member.
std::string ExpectedSymbol(Entry const& p_entry) {
    if (p_entry.member == "MemoryBarrierTGL") return "glMemoryBarrier";
    if (p_entry.kind == Kind::Glu)
        return p_entry.member.starts_with("Glu") ? "glu" + std::string(p_entry.member.substr(3)) : "";
    return "gl" + std::string(p_entry.member);
}

std::size_t IndexOf(std::string_view p_symbol) {
    for (std::size_t index = 0; index < std::size(Entries); ++index)
        if (Entries[index].symbol == p_symbol) return index;
    ADD_FAILURE() << p_symbol << " is not in the list";
    return std::size(Entries);
}

Entry const& At(std::string_view p_symbol) { return Entries[IndexOf(p_symbol)]; }

// The commands the registry assigns to OpenGL 1.0 and 1.1: the ones every GL
// library exports by name, and so exactly the ones a loader may bind directly.
std::set<std::string> Gl11Commands() {
    std::ifstream file("/usr/share/khronos-api/gl.xml");
    EXPECT_TRUE(file) << "the Khronos registry (Debian's khronos-api) is not installed";
    const std::string xml{std::istreambuf_iterator<char>(file), {}};
    std::set<std::string> commands;
    for (char const* feature : {"GL_VERSION_1_0", "GL_VERSION_1_1"}) {
        const std::size_t start = xml.find(std::string("<feature api=\"gl\" name=\"") + feature + '"');
        const std::size_t end = xml.find("</feature>", start);
        EXPECT_NE(start, std::string::npos) << feature;
        const std::string block = xml.substr(start, end - start);
        const std::regex command("<command name=\"(\\w+)\"/>");
        for (std::sregex_iterator it(block.begin(), block.end(), command), last; it != last; ++it)
            commands.insert((*it)[1]);
    }
    return commands;
}

TEST(OglSignature, EveryEntryMatchesItsPrototypeOnceAndInItsPlace) {
    // The per-entry type checks are static; this keeps an entry from slipping
    // past them (a list expanded differently in the two places).
    EXPECT_EQ(TypeCheckedEntries, 283);
    std::set<std::string_view> members, symbols;
    for (Entry const& entry : Entries) {
        EXPECT_EQ(entry.symbol, ExpectedSymbol(entry)) << entry.member;
        EXPECT_TRUE(ArgsForwardParams(entry.params, entry.args))
            << entry.symbol << ' ' << entry.params << " vs " << entry.args;
        EXPECT_TRUE(members.insert(entry.member).second && symbols.insert(entry.symbol).second) << entry.symbol;
    }

    // Runs of the table that must stay together, in this order; GLU closes it.
    std::vector<std::vector<std::string_view>> const runs = {
        {"glTexImage2D", "glTexImage3D", "glGetTexImage"},
        {"glDrawBuffers", "glGetTexLevelParameteriv", "glMapBufferRange"},
        {"glPopClientAttrib", "glDrawRangeElements"},
        {"glDrawElementsInstanced", "glGenVertexArrays"},
        {"glDrawElementsInstancedBaseInstance", "glBindFramebufferEXT"},
        {"glCheckFramebufferStatusEXT", "glDebugMessageCallback"},
        {"glDebugMessageInsertARB", "gluOrtho2D"}};
    for (auto const& run : runs)
        for (std::size_t i = 1; i < run.size(); ++i) EXPECT_EQ(IndexOf(run[i]), IndexOf(run[i - 1]) + 1) << run[i];
    EXPECT_EQ(Entries[0].symbol, "glAlphaFunc");
    EXPECT_EQ(IndexOf("gluOrtho2D"), std::size(Entries) - 26);
    EXPECT_EQ(Entries[std::size(Entries) - 1].symbol, "gluProject");
    for (std::size_t index = IndexOf("gluOrtho2D"); index < std::size(Entries); ++index)
        EXPECT_EQ(Entries[index].kind, Kind::Glu) << Entries[index].symbol;
}

TEST(OglSignature, LoadingKindsFollowWhatLibrariesExport) {
    const std::set<std::string> gl11 = Gl11Commands();
    for (Entry const& entry : Entries) {
        if (entry.kind == Kind::Glu)
            EXPECT_TRUE(entry.symbol.starts_with("glu")) << entry.symbol;
        else
            EXPECT_EQ(entry.kind == Kind::Direct, gl11.contains(std::string(entry.symbol)))
                << entry.symbol << " is bound the wrong way for its GL version";
    }
    // Framebuffer objects must be there at least through the EXT extension;
    // the core family is only a preference.
    for (std::string_view core :
         {"glBindFramebuffer", "glBindRenderbuffer", "glDeleteFramebuffers", "glDeleteRenderbuffers",
          "glFramebufferRenderbuffer", "glFramebufferTexture2D", "glGenFramebuffers", "glGenRenderbuffers",
          "glRenderbufferStorage", "glCheckFramebufferStatus"}) {
        EXPECT_EQ(At(core).kind, Kind::Optional) << core;
        EXPECT_EQ(At(std::string(core) + "EXT").kind, Kind::Required) << core << "EXT";
    }
    EXPECT_TRUE(At("glDispatchCompute").kind == Kind::Optional && At("glDebugMessageCallbackARB").kind == Kind::Optional);
    EXPECT_EQ(At("glGenBuffers").kind, Kind::Required);
}

}  // namespace
