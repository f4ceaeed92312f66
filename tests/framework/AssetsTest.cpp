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

TEST(AssetPath, NormalisesOnConstruction) {
    struct Case {
        char const* raw;
        char const* normal;
    };
    for (auto const& c : std::vector<Case>{
             {"", ""},
             {"/", ""},
             {"a/b.glsl", "a/b.glsl"},
             {"/a//b/./c/", "a/b/c"},
             {"a\\b\\c.glsl", "a/b/c.glsl"},
             {"a/b/../c", "a/c"},
             {"a/..", ""},
             {"../x", "../x"},
             {"a/../../x", "../x"},
             {"../../x/..", "../.."},
             {"./.", ""},
         }) {
        EXPECT_EQ(AssetPath(c.raw).str(), c.normal) << "'" << c.raw << "'";
    }
    EXPECT_TRUE(AssetPath("../x").LeavesRoot());
    EXPECT_TRUE(AssetPath("..").LeavesRoot());
    EXPECT_FALSE(AssetPath("..x/y").LeavesRoot());
    EXPECT_TRUE(AssetPath("/").IsRoot());
}

TEST(AssetPath, JoinsParentsAndNames) {
    EXPECT_EQ(AssetPath() + AssetPath("shaders/a.glsl"), AssetPath("shaders/a.glsl"));
    EXPECT_EQ(AssetPath("shaders") + AssetPath(), AssetPath("shaders"));
    EXPECT_EQ(AssetPath("shaders/generic") + AssetPath("../common/light.glsl"), AssetPath("shaders/common/light.glsl"));
    EXPECT_EQ((AssetPath("a") + AssetPath("../../b")).str(), "../b");

    AssetPath const file("shaders/generic/Generic.vert.glsl");
    EXPECT_EQ(file.Parent().str(), "shaders/generic");
    EXPECT_EQ(file.FileName(), "Generic.vert.glsl");
    EXPECT_EQ(file.Parts(), (std::vector<std::string>{"shaders", "generic", "Generic.vert.glsl"}));
    EXPECT_TRUE(AssetPath("top.glsl").Parent().IsRoot());
    EXPECT_TRUE(AssetPath().Parent().IsRoot());
    EXPECT_EQ(AssetPath().FileName(), "");
    EXPECT_TRUE(AssetPath().Parts().empty());
    EXPECT_LT(AssetPath("a"), AssetPath("b"));
}

std::vector<std::string> Lines(Volume const& p_volume, AssetPath const& p_path) {
    std::vector<std::string> lines;
    auto const stream = p_volume.Open(p_path);
    for (std::string line; std::getline(*stream, line);) lines.push_back(line);
    return lines;
}

TEST(MemoryVolume, ServesWhatWasAdded) {
    MemoryVolume volume;
    volume.Add("N/N.vert.glsl", "line 1\nline 2\n");
    volume.Add("./N/empty.glsl", "");
    EXPECT_TRUE(volume.Exists("N/N.vert.glsl"));
    EXPECT_TRUE(volume.Exists(AssetPath("N") + AssetPath("empty.glsl")));
    EXPECT_FALSE(volume.Exists("N")) << "folders are not files";
    EXPECT_FALSE(volume.Exists("N/N.frag.glsl"));

    EXPECT_EQ(Lines(volume, "N/N.vert.glsl"), (std::vector<std::string>{"line 1", "line 2"}));
    EXPECT_EQ(volume.ReadText("N/empty.glsl"), std::string());
    EXPECT_FALSE(volume.ReadText("missing.glsl"));
    auto const missing = volume.Open("missing.glsl");
    ASSERT_TRUE(missing);
    EXPECT_TRUE(missing->fail());
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

class DiskVolumeTest : public ::testing::Test {
protected:
    void SetUp() override {
        _base = std::filesystem::temp_directory_path() /
                ("tevogl-volume-" + std::to_string(::getpid()) + "-" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(_base / "root" / "shaders");
        Write(_base / "root" / "shaders" / "a.glsl", "void main() {}\n");
        Write(_base / "secret.txt", "outside");
    }
    void TearDown() override { std::filesystem::remove_all(_base); }

    static void Write(std::filesystem::path const& p_path, std::string const& p_text) {
        std::ofstream(p_path, std::ios::binary) << p_text;
    }

    std::filesystem::path _base;
};

TEST_F(DiskVolumeTest, ReadsFilesBelowItsRootOnly) {
    DiskVolume const volume(_base / "root");
    EXPECT_TRUE(volume.Exists("shaders/a.glsl"));
    EXPECT_TRUE(volume.Exists("shaders/x/../a.glsl"));
    EXPECT_FALSE(volume.Exists("shaders")) << "folders are not files";
    EXPECT_FALSE(volume.Exists("shaders/b.glsl"));
    EXPECT_EQ(volume.ReadText("shaders/a.glsl"), std::string("void main() {}\n"));

    ASSERT_TRUE(File::fileexists(_base / "secret.txt"));
    EXPECT_FALSE(volume.Exists("../secret.txt"));
    EXPECT_FALSE(volume.ReadText("../secret.txt"));
    EXPECT_TRUE(volume.Open("../secret.txt")->fail());

    EXPECT_FALSE(DiskVolume(_base / "no-such-folder").Exists("shaders/a.glsl"));
    EXPECT_FALSE(File::fileexists(_base / "root" / "shaders"));
    EXPECT_FALSE(File::fileexists(""));
}

TEST(TimeStamp, IsStrictlyIncreasingAndMeasuresDifferences) {
    using Core::TimeStamp;
    TimeStamp const never;
    TimeStamp previous = TimeStamp::Now();
    EXPECT_LT(never, previous);
    for (int i = 0; i < 10000; ++i) {
        TimeStamp const next = TimeStamp::Now();
        ASSERT_LT(previous, next) << "at call " << i;
        previous = next;
    }
    TimeStamp touched;
    touched.Touch();
    EXPECT_LT(previous, touched);
    EXPECT_GT(touched - previous, 0.0);
    EXPECT_DOUBLE_EQ(previous.MillisecondsSince(touched), -1000.0 * touched.SecondsSince(previous));
    EXPECT_GE(touched.ElapsedMilliseconds(), 0.0);
}

}  // namespace
}  // namespace Tev::Chart::Assets
