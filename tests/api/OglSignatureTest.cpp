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
#include "support/Golden.h"

#include <array>
#include <fstream>
#include <map>
#include <regex>

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

namespace {

using Tev::Chart::Ogl::EntryKind;

// Instantiated once per entry; on a mismatch the compiler names both types.
template <class Member, class Prototype>
constexpr EntryKind Checked(EntryKind p_kind) {
    static_assert(std::is_same_v<Member, Prototype*>, "table member type differs from the Khronos prototype");
    return p_kind;
}

struct Entry { EntryKind kind; std::string member, symbol, params, args; };
std::vector<Entry> const Entries = {
#define TEV_OGL_ENTRY(K, Ret, Member, Symbol, Params, Args) \
    {Checked<decltype(Tev::Chart::Ogl::OglApi::Member), decltype(gl##Member)>(EntryKind::K), #Member, Symbol, #Params, #Args},
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY
};

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
// symbol twice; the table runs in this order, GLU last; the
// commands the registry assigns to OpenGL 1.0 and 1.1, which every GL library
// exports by name, are exactly the ones bound directly; and each framebuffer
// command is required at least through its EXT form.
TEST(OglSignature, EveryEntryIsNamedForwardedPlacedAndLoadedAsListed) {
    std::ifstream file("/usr/share/khronos-api/gl.xml");
    ASSERT_TRUE(file) << "the Khronos registry (Debian's khronos-api) is not installed";
    std::string const xml{std::istreambuf_iterator<char>(file), {}};
    std::size_t const gl10 = xml.find("name=\"GL_VERSION_1_0\""), gl12 = xml.find("name=\"GL_VERSION_1_2\"");
    std::map<std::string, EntryKind> kindOf;
    for (Entry const& e : Entries) {
        EXPECT_EQ(e.symbol, e.member == "MemoryBarrierTGL"  ? "glMemoryBarrier"
                            : e.kind == EntryKind::Glu ? (e.member.starts_with("Glu") ? "glu" + e.member.substr(3) : "") : "gl" + e.member);
        EXPECT_EQ(Names(e.params, R"((\w+)\s*[,)])"), Names(e.args, R"((\w+))")) << e.symbol << ' ' << e.params;
        EXPECT_TRUE(kindOf.emplace(e.symbol, e.kind).second) << e.symbol << " twice";
        EXPECT_EQ(e.kind == EntryKind::Direct, xml.find("<command name=\"" + e.symbol + "\"/>", gl10) < gl12) << e.symbol;
    }
    std::vector<std::string> runs;  // "kind count first..last" for each run of one kind
    for (std::size_t start = 0, i = 1; i <= Entries.size(); ++i)
        if (i == Entries.size() || Entries[i].kind != Entries[start].kind) {
            runs.push_back(std::array{"Direct", "Required", "Optional", "Glu"}[int(Entries[start].kind)] +
                           (' ' + std::to_string(i - start)) + ' ' + Entries[start].symbol + ".." + Entries[i - 1].symbol);
            start = i;
        }
    EXPECT_TRUE(Tev::Test::MatchesGolden("api/entry-kind-runs.txt", Tev::Test::Lines(runs)));
    for (auto const& [symbol, kind] : kindOf)
        EXPECT_TRUE(!symbol.ends_with("EXT") ||
                    (kind == EntryKind::Required && kindOf[symbol.substr(0, symbol.size() - 3)] == EntryKind::Optional)) << symbol;
}

}  // namespace
