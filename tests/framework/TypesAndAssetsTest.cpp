// The value types' own rules over GLM and the standard library (refusals,
// empty values, clamping), asset paths and volumes, and time stamps.
#include "framework/assets/DiskVolume.h"
#include "framework/assets/MemoryVolume.h"
#include "framework/core/TimeStamp.h"
#include "framework/types/BoundingBox.h"
#include "framework/types/Math.h"
#include "framework/types/MinMax.h"
#include "framework/types/Projection.h"
#include "framework/types/Quaternion.h"
#include "support/LogCapture.h"

#include <boost/optional/optional_io.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace Tev::Chart {
namespace {

using namespace Types;
using namespace Assets;
using Strings = std::vector<std::string>;

// Where GLM would divide by zero or mislead, the types refuse: a point in
// the eye plane, a singular matrix, an empty pick region; quaternions of
// zero or non-finite parts are invalid and -q is the identity too; disjoint
// viewports meet in an empty one; an empty box adds nothing; inverted bounds
// clamp to the low one first.
TEST(Types, RefusalsAndEmptyValues) {
    Matrix4 const projection = Perspective(Angle::FromDegrees(45.0), 640.0 / 480.0, 1.0, 100.0);
    Viewport const viewport(10, 20, 640, 480);
    EXPECT_FALSE(Project({0.0, 0.0, 0.0}, Matrix4(), projection, viewport));
    EXPECT_FALSE(UnProject({1.0, 1.0, 0.5}, Matrix4::Scaling({1.0, 0.0, 1.0}), projection, viewport));
    EXPECT_TRUE(PickMatrix(Viewport(50, 25, 0, 4), viewport) == Matrix4() && PickMatrix({5, 5}, {3, -1}, viewport) == Matrix4());
    EXPECT_TRUE(Quaternion(-2.0, 0.0, 0.0, 0.0).IsIdentity() && Quaternion().Axis() == Vector3d(0.0, 0.0, 1.0));
    for (Quaternion const& invalid : {Quaternion(0, 0, 0, 0), Quaternion(NAN, 0, 0, 1), Quaternion(1, INFINITY, 0, 0)})
        EXPECT_FALSE(invalid.IsValid()) << invalid;
    EXPECT_EQ(Intersect(Viewport(0, 0, 100, 50), Viewport(50, 10, 100, 100)), Viewport(50, 10, 50, 40));
    EXPECT_EQ(Intersect(Viewport(0, 0, 100, 50), Viewport(200, 60, 10, 10)), Viewport(200, 60, 0, 0));
    BoundingBox box, empty;
    box.Extend(empty);
    EXPECT_TRUE(box.IsEmpty() && box.Extent() == Vector3d(0.0));
    box.Extend(empty), box.Extend(BoundingBox({-1.0, -2.0, 0.0}, {1.0, 4.0, 0.0})), box.Extend(empty);
    EXPECT_TRUE(box == BoundingBox({-1.0, -2.0, 0.0}, {1.0, 4.0, 0.0}) && box.Contains({0, 0, 0}) && !box.Contains({0, 0, 0.1}));
    MinMax_Base<unsigned> levels;
    EXPECT_TRUE(levels.IsEmpty() && levels.Range() == 0u && (levels.Extend(4), levels.Extend(1), levels.Range()) == 3u);
    EXPECT_TRUE(Math::Clamp(4.0, 5.0, 3.0) == 5.0 && Math::Clamp(6.0, 5.0, 3.0) == 3.0 && Math::Clamp(9.0, 1.0, 7.0) == 7.0);
}

// Paths normalise separators, "." and "..", climbing only while there is a
// part to climb over; a join normalises again; parts, parent, file name.
TEST(AssetPath, NormalisesJoinsAndSplits) {
    std::pair<char const*, char const*> const normal[] = {
        {"", ""}, {"/", ""}, {"/a//b/./c/", "a/b/c"}, {"a\\b\\c.glsl", "a/b/c.glsl"}, {"a/b/../c", "a/c"}, {"a/..", ""},
        {"../x", "../x"}, {"a/../../x", "../x"}, {"../../x/..", "../.."}, {"./.", ""}};
    for (auto const& [raw, expected] : normal) EXPECT_EQ(AssetPath(raw).str(), expected) << "'" << raw << "'";
    EXPECT_TRUE(AssetPath("../x").LeavesRoot() && AssetPath("..").LeavesRoot() && !AssetPath("..x/y").LeavesRoot());
    EXPECT_EQ(AssetPath("shaders/generic") + AssetPath("../common/light.glsl"), AssetPath("shaders/common/light.glsl"));
    EXPECT_EQ((AssetPath("a") + AssetPath("../../b")).str(), "../b");
    EXPECT_EQ((AssetPath() + AssetPath("a")).str(), "a");
    AssetPath const file("shaders/generic/Generic.vert.glsl");
    EXPECT_EQ(file.Parts(), (Strings{"shaders", "generic", "Generic.vert.glsl"}));
    EXPECT_TRUE(file.Parent().str() == "shaders/generic" && file.FileName() == "Generic.vert.glsl");
    EXPECT_TRUE(AssetPath("top.glsl").Parent().IsRoot() && AssetPath().FileName().empty() && AssetPath().Parts().empty());
}

// Both volumes serve files, not folders, nothing outside their root, and a
// failed stream for what they lack; memory refuses (and reports) bad names.
// Time stamps never repeat, however fast they are taken.
TEST(VolumesAndStamps, ServeFilesBelowTheirRootOnlyAndStampsIncrease) {
    auto const base = std::filesystem::temp_directory_path() / ("tevogl-volume-" + std::to_string(::getpid()));
    std::filesystem::create_directories(base / "root" / "shaders");
    std::ofstream(base / "root" / "shaders" / "a.glsl") << "line 1\nline 2\n";
    std::ofstream(base / "secret.txt") << "outside";
    MemoryVolume memory;
    memory.Add("./shaders/a.glsl", "line 1\nline 2\n"), memory.Add("shaders/b.glsl", ""), memory.Remove("shaders/b.glsl");
    Debug::CaptureScope capture;
    memory.Add("../secret.txt", "x"), memory.Add("", "x");
    EXPECT_EQ(::Tev::Test::Assertions(capture).size(), 2u);
    DiskVolume const disk(base / "root");
    for (Volume const* volume : std::initializer_list<Volume const*>{&memory, &disk}) {
        EXPECT_EQ(volume->ReadText("shaders/x/../a.glsl"), std::string("line 1\nline 2\n"));
        for (char const* absent : {"shaders", "shaders/b.glsl", "../secret.txt", ""})
            EXPECT_TRUE(!volume->Exists(absent) && !volume->ReadText(absent) && volume->Open(absent)->fail()) << absent;
    }
    std::filesystem::remove_all(base);
    std::vector<Core::TimeStamp> stamps(10000);
    for (Core::TimeStamp& stamp : stamps) stamp = Core::TimeStamp::Now();
    EXPECT_TRUE(std::ranges::adjacent_find(stamps, std::greater_equal<>()) == stamps.end());
}

}  // namespace
}  // namespace Tev::Chart
