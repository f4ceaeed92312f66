// Asset paths, the volumes that serve them, the file helpers and time stamps.
#include "framework/assets/AssetPath.h"
#include "framework/assets/DiskVolume.h"
#include "framework/assets/MemoryVolume.h"
#include "framework/core/TimeStamp.h"
#include "framework/file/File.h"
#include "support/LogCapture.h"

#include <boost/optional/optional_io.hpp>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace Tev::Chart::Assets {
namespace {

using Strings = std::vector<std::string>;

TEST(AssetPath, NormalisesJoinsAndSplits) {
    std::pair<char const*, char const*> const normal[] = {
        {"", ""}, {"/", ""}, {"a/b.glsl", "a/b.glsl"}, {"/a//b/./c/", "a/b/c"}, {"a\\b\\c.glsl", "a/b/c.glsl"},
        {"a/b/../c", "a/c"}, {"a/..", ""}, {"../x", "../x"}, {"a/../../x", "../x"}, {"../../x/..", "../.."},
        {"./.", ""}};
    for (auto const& [raw, expected] : normal) EXPECT_EQ(AssetPath(raw).str(), expected) << "'" << raw << "'";
    EXPECT_TRUE(AssetPath("../x").LeavesRoot() && AssetPath("..").LeavesRoot() && AssetPath("/").IsRoot());
    EXPECT_FALSE(AssetPath("..x/y").LeavesRoot());

    EXPECT_EQ(AssetPath() + AssetPath("shaders/a.glsl"), AssetPath("shaders/a.glsl"));
    EXPECT_EQ(AssetPath("shaders") + AssetPath(), AssetPath("shaders"));
    EXPECT_EQ(AssetPath("shaders/generic") + AssetPath("../common/light.glsl"), AssetPath("shaders/common/light.glsl"));
    EXPECT_EQ((AssetPath("a") + AssetPath("../../b")).str(), "../b");

    AssetPath const file("shaders/generic/Generic.vert.glsl");
    EXPECT_EQ(file.Parent().str(), "shaders/generic");
    EXPECT_EQ(file.FileName(), "Generic.vert.glsl");
    EXPECT_EQ(file.Parts(), (Strings{"shaders", "generic", "Generic.vert.glsl"}));
    EXPECT_TRUE(AssetPath("top.glsl").Parent().IsRoot() && AssetPath().Parent().IsRoot());
    EXPECT_TRUE(AssetPath().FileName().empty() && AssetPath().Parts().empty());
    EXPECT_LT(AssetPath("a"), AssetPath("b"));
}

Strings Lines(Volume const& p_volume, AssetPath const& p_path) {
    Strings lines;
    auto const stream = p_volume.Open(p_path);
    for (std::string line; std::getline(*stream, line);) lines.push_back(line);
    return lines;
}

TEST(MemoryVolume, ServesWhatWasAdded) {
    MemoryVolume volume;
    volume.Add("N/N.vert.glsl", "line 1\nline 2\n");
    volume.Add("./N/empty.glsl", "");
    EXPECT_TRUE(volume.Exists(AssetPath("N") + AssetPath("empty.glsl")));
    EXPECT_FALSE(volume.Exists("N")) << "folders are not files";
    EXPECT_FALSE(volume.Exists("N/N.frag.glsl"));
    EXPECT_EQ(Lines(volume, "N/N.vert.glsl"), (Strings{"line 1", "line 2"}));
    EXPECT_EQ(volume.ReadText("N/empty.glsl"), std::string());
    EXPECT_FALSE(volume.ReadText("missing.glsl"));
    EXPECT_TRUE(volume.Open("missing.glsl")->fail());
    EXPECT_TRUE(Lines(volume, "missing.glsl").empty());

    volume.Add("N/N.vert.glsl", "replaced");
    EXPECT_EQ(volume.ReadText("N/N.vert.glsl"), std::string("replaced"));
    volume.Remove("N/N.vert.glsl");
    EXPECT_FALSE(volume.Exists("N/N.vert.glsl"));

    Debug::CaptureScope capture;
    volume.Add("../outside.glsl", "x");
    volume.Add("", "x");
    EXPECT_EQ(volume.Count(), 1u);
    EXPECT_EQ(::Tev::Test::Assertions(capture).size(), 2u);
}

TEST(DiskVolume, ReadsFilesBelowItsRootOnly) {
    struct Folder {
        std::filesystem::path base = std::filesystem::temp_directory_path() /
                                     ("tevogl-volume-" + std::to_string(::getpid()));
        ~Folder() { std::filesystem::remove_all(base); }
    } const folder;
    std::filesystem::create_directories(folder.base / "root" / "shaders");
    std::ofstream(folder.base / "root" / "shaders" / "a.glsl") << "void main() {}\n";
    std::ofstream(folder.base / "secret.txt") << "outside";

    DiskVolume const volume(folder.base / "root");
    EXPECT_TRUE(volume.Exists("shaders/x/../a.glsl"));
    EXPECT_FALSE(volume.Exists("shaders")) << "folders are not files";
    EXPECT_FALSE(volume.Exists("shaders/b.glsl"));
    EXPECT_EQ(volume.ReadText("shaders/a.glsl"), std::string("void main() {}\n"));

    ASSERT_TRUE(File::fileexists(folder.base / "secret.txt"));
    EXPECT_FALSE(volume.Exists("../secret.txt"));
    EXPECT_FALSE(volume.ReadText("../secret.txt"));
    EXPECT_TRUE(volume.Open("../secret.txt")->fail());

    EXPECT_FALSE(DiskVolume(folder.base / "no-such-folder").Exists("shaders/a.glsl"));
    EXPECT_FALSE(File::fileexists(folder.base / "root" / "shaders"));
    EXPECT_FALSE(File::fileexists(""));
}

TEST(TimeStamp, IsStrictlyIncreasingAndMeasuresDifferences) {
    using Core::TimeStamp;
    TimeStamp previous = TimeStamp::Now();
    EXPECT_LT(TimeStamp(), previous);
    for (int i = 0; i < 10000; ++i) {
        TimeStamp const next = TimeStamp::Now();
        ASSERT_LT(previous, next) << "at call " << i;
        previous = next;
    }
    TimeStamp touched;
    touched.Touch();
    EXPECT_GT(touched - previous, 0.0);
    EXPECT_DOUBLE_EQ(previous.MillisecondsSince(touched), -1000.0 * touched.SecondsSince(previous));
    EXPECT_GE(touched.ElapsedMilliseconds(), 0.0);
}

}  // namespace
}  // namespace Tev::Chart::Assets
