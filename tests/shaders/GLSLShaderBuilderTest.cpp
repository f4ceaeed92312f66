// The shader builder's texts against golden files: headers for scripted
// vendors, render passes, limits, extension sets, template flags per stage
// and versions, every version's text, with the reports of the geometry factory, of out-of-range
// versions and of an expired facade; the expanded source of a small template
// tree with the origin of every line and the "GLSL" log, across two appends
// on one builder and in a copy; ParseIncludeMacro on the directive's odd
// forms. Random include graphs are in IncludeGraphTest.cpp, the mapping of
// a driver's line numbers in ShaderLineOriginTest.cpp.
#include "support/Golden.h"
#include "support/LogCapture.h"
#include "tgl/FakeTgl.h"

#include "framework/assets/MemoryVolume.h"
#include "ogl/shaders/GLSLIncludeExpander.h"
#include "ogl/shaders/GLSLShaderBuilder.h"

#include <gtest/gtest.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Assets::MemoryVolume;
using Handle = Chart::Utility::WeakWatchedRef<const Tgl>;

// A label, the header when asked for, each source line with its origin, and
// what was logged since the last dump.
std::string Dump(std::string const& p_label, GLSLShaderBuilder const& p_builder, Debug::CaptureScope& p_capture,
                 bool p_header = true) {
    std::string text = "== " + p_label + "\n";
    for (std::string const& line : p_header ? p_builder.Header() : std::vector<std::string>{}) text += line;
    text += "-- source\n";
    for (std::size_t i = 0; i < p_builder.Source().size(); ++i) {
        std::string line = p_builder.Source()[i].substr(0, p_builder.Source()[i].size() - 1);
        text += line.append(line.size() < 50 ? 50 - line.size() : 0, ' ') + " <- " + p_builder.Origin(i).Describe() + "\n";
    }
    text += "-- log\n" + LogText(p_capture);
    return p_capture.Sink().Clear(), text;
}

// Rows without a factory use the constructor, with the bits as extensions.
TEST(GLSLShaderBuilderHeader, VendorsPassesLimitsExtensionsTemplateFlagsAndVersionsAsWritten) {
    using Factory = GLSLShaderBuilder (*)(Handle const&, Chart::Assets::Volume const&, GLSLTemplateFlags const&, GLSLVersion);
    struct Row { std::string label; Vendors vendor; bool geometry; OutputStage::Id stage; Factory factory; unsigned long bits; int version; };
    FakeTgl fake;
    std::string text;
    for (Row const& row : std::vector<Row>{
             {"extensions 0, 19, 22", NVIDIA, true, OutputStage::Deferred_Opaque, nullptr, 1 | 1 << 19 | 1 << 22, GLSL_3_3_Compatibility},
             {"vertex template, every flag", AMD, true, OutputStage::Forward, &GLSLShaderBuilder::TemplateVertexShader, 0x7FF, 13},
             {"geometry template, every flag", MESA, true, OutputStage::Forward_AlphaHandler, &GLSLShaderBuilder::TemplateGeometryShader, 0x7FF, GLSL_1_5},
             {"geometry template without geometry shaders", MESA, false, OutputStage::Forward, &GLSLShaderBuilder::TemplateGeometryShader, 1, GLSL_1_4},
             {"fragment template, every flag", UNKNOWN, true, OutputStage::WeightedAverage_Translucent_ForceOpaque, &GLSLShaderBuilder::TemplateFragmentShader, 0x7FF, 4},
             {"vendor 7", Vendors(7), true, OutputStage::Forward, nullptr, 0, 14},
             {"no extensions", UNKNOWN, true, OutputStage::Forward, nullptr, 0, 15}}) {
        fake.vendor = row.vendor;
        Tgl& tgl = fake.Build(row.geometry ? DeviceFeatureMask::PermitAll() : DeviceFeatureMask::DisableAll());
        Tgl::Token const pass = tgl.ScopedOutputStage(row.stage);
        GLSLVersion const version = GLSLVersion(row.version);
        text += Dump(row.label + ", version " + std::to_string(row.version),
                     row.factory ? row.factory(tgl.ConstHandle(), MemoryVolume(), GLSLTemplateFlags(row.bits), version)
                                 : GLSLShaderBuilder(tgl.ConstHandle(), version, ExtensionSet(row.bits)),
                     fake.capture);
    }
    text += "== GetVersionString\n";
    for (int version = GLSL_1_1; version < GLSLVersion_Count; ++version) text += GetVersionString(GLSLVersion(version)) + "\n";
    Handle const expired = fake->ConstHandle();
    fake.tgl.reset(), fake.capture.Sink().Clear();
    text += Dump("an expired facade", GLSLShaderBuilder(expired, GLSL_1_1, {}), fake.capture);
    EXPECT_TRUE(MatchesGolden("shaders/header.txt", text));
}

// Nested includes, a cycle, a repeated include, targets found under the root
// before the second include path and only under it, blanks inside the
// directive, a trailing comment holding ")", missing quotes, no parentheses,
// an unresolvable target, a file that includes the file appended first, a
// second append whose includes were expanded by the first, appended texts
// and a file the volume lacks.
TEST(GLSLShaderBuilderSource, TemplateTreeExpandsWithOriginsAndLog) {
    FakeTgl fake;
    fake.Build();
    MemoryVolume volume;
    volume.Add("D/N.vert.glsl",
               "void main() {\n#pragma include(\"common/util.glsl\")\n"
               "  #  pragma   include  ( \"common/light.glsl\" )   // blanks\n"
               "#pragma include(\"common/util.glsl\") // again\n"
               "#pragma include(\"common/light.glsl\" ) // trailing ) in a comment\n"
               "#pragma include \"common/util.glsl\"\n#pragma include(common/bare.glsl)\n"
               "#pragma include(\"missing.glsl\")\n#pragma include(\"shared.glsl\")\n#pragma include(\"only.glsl\")\n}");
    volume.Add("common/util.glsl", "// util\n#pragma include(\"common/math.glsl\")\nfloat util();\n");
    volume.Add("common/math.glsl", "#pragma include(\"common/util.glsl\")\nfloat math();\n");
    volume.Add("common/light.glsl", "float light();\n#pragma include(\"D/N.vert.glsl\")\n");
    volume.Add("ommon/bare.gls", "float bare();\n");
    volume.Add("shared.glsl", "float sharedAtRoot();\n");
    volume.Add("lib/shared.glsl", "float sharedInLib();\n");
    volume.Add("lib/only.glsl", "float onlyInLib();\n");
    volume.Add("D/N.frag.glsl", "#pragma include(\"common/math.glsl\")\n\nvoid main() {}\n");

    GLSLShaderBuilder builder(fake->ConstHandle(), GLSL_3_3, {});
    builder.AddIncludePath("lib");
    builder.Append(volume, "D/N.vert.glsl");
    // Copies have their own lines, origins and included set.
    GLSLShaderBuilder copy(builder), assigned(fake->ConstHandle(), GLSL_1_1, ExtensionSet(1));
    assigned = copy, assigned = static_cast<GLSLShaderBuilder const&>(assigned);
    copy.Append("only in the copy");
    builder.Append("");
    builder.Append("uniform int u;\n");
    builder.Append(volume, "D/N.frag.glsl");
    builder.Append(volume, "absent.glsl");
    std::string text = Dump("D/N.vert.glsl, two texts, D/N.frag.glsl, absent.glsl", builder, fake.capture, false);
    assigned.Append(volume, "D/N.frag.glsl");
    text += Dump("assigned a copy made after D/N.vert.glsl; D/N.frag.glsl", assigned, fake.capture);

    text += "== ParseIncludeMacro\n";
    for (char const* line : {"#pragma include()", "#pragma include(\")", "#pragma include(\"\")", "#pragma include",
                             "  #pragma include(\"a.glsl\")\t", "#pragmainclude(\"a.glsl\")", "x #pragma include(\"a\") y"}) {
        std::string const path = ParseIncludeMacro(line);
        text += std::string(line) + " => [" + path + "]\n" + LogText(fake.capture), fake.capture.Sink().Clear();
    }
    EXPECT_TRUE(MatchesGolden("shaders/source.txt", text));
}

}  // namespace
}  // namespace Tev::Test
