// Include expansion over random include graphs from fixed seeds: trees,
// shared targets, cycles and files including themselves, targets under the
// root, only under a second include path, or under both with different
// texts, and names that resolve nowhere; two files appended to one builder.
// Every expansion ends (a loop would hang the test), and its lines and their
// origins equal those of a reference expansion written here.
#include "tgl/FakeTgl.h"

#include "framework/assets/MemoryVolume.h"
#include "ogl/shaders/GLSLShaderBuilder.h"

#include <boost/algorithm/string/join.hpp>
#include <gtest/gtest.h>

#include <random>
#include <set>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Files = std::map<std::string, std::vector<std::string>>;

// Up to eight files f0..f7, each at the root, under lib/ or in both; lines
// of code and includes of f0..f8, which resolve nowhere past the files drawn.
Files RandomFiles(std::mt19937& p_random) {
    Files files;
    int const count = 1 + int(p_random() % 8);
    for (int file = 0; file < count; ++file) {
        std::vector<std::string> lines;
        for (int line = int(p_random() % 7); line > 0; --line)
            lines.push_back(p_random() % 2 ? "#pragma include(\"f" + std::to_string(p_random() % 9) + ".glsl\")"
                                          : "float v" + std::to_string(p_random()) + ";");
        int const place = int(p_random() % 3);
        std::string const name = "f" + std::to_string(file) + ".glsl";
        if (place != 1) files[name] = lines;
        if (place != 0) files["lib/" + name] = (lines.push_back("// lib"), lines);
    }
    return files;
}

// The expansion as described, over the files as written: lines and origins.
struct Reference {
    Files const& files;
    std::set<std::string> included;
    std::vector<std::string> lines, origins;

    void Add(std::string const& p_text, std::string const& p_at) { lines.push_back(p_text + "\n"), origins.push_back("in " + p_at); }
    void Expand(std::string const& p_file, std::string const& p_chain) {
        for (std::size_t i = 0; i < files.at(p_file).size(); ++i) {
            std::string const& line = files.at(p_file)[i];
            std::string const at = p_file + ":" + std::to_string(i + 1) + p_chain;
            std::string const target = line.rfind("#pragma", 0) ? "" : line.substr(17, line.size() - 19);
            std::string const resolved = files.count(target) ? target : files.count("lib/" + target) ? "lib/" + target : "";
            if (target.empty()) Add(line, at);
            else if (resolved.empty()) continue;
            else if (!included.insert(resolved).second) Add("// Already included above: " + line, at);
            else Add("// Expanded: " + line, at), Add("// Resolved as: " + resolved, at), Expand(resolved, ", included from " + at);
        }
    }
};

TEST(GLSLIncludeGraphs, RandomTreesAndCyclesExpandLikeTheReference) {
    FakeTgl fake;
    fake.Build();
    for (unsigned seed = 1; seed <= 300; ++seed) {
        std::mt19937 random(seed);
        Files const files = RandomFiles(random);
        Chart::Assets::MemoryVolume volume;
        for (auto const& [name, lines] : files) volume.Add(name, boost::algorithm::join(lines, "\n"));
        GLSLShaderBuilder builder(fake->ConstHandle(), GLSL_3_3, {});
        builder.AddIncludePath("lib");
        Reference reference{files, {}, {}, {}};
        for (auto const& file : {files.begin()->first, files.rbegin()->first})
            builder.Append(volume, file), reference.Expand(file, "");
        fake.capture.Sink().Clear();

        std::vector<std::string> origins;
        for (std::size_t i = 1; i < builder.Source().size(); ++i) origins.push_back(builder.Origin(i).Describe());
        ASSERT_EQ(std::vector<std::string>(builder.Source().begin() + 1, builder.Source().end()), reference.lines) << "seed " << seed;
        ASSERT_EQ(origins, reference.origins) << "seed " << seed;
        for (auto const& target : reference.included)
            EXPECT_EQ(std::count(builder.Source().begin(), builder.Source().end(), "// Resolved as: " + target + "\n"), 1)
                << "seed " << seed << ", " << target;
    }
}

}  // namespace
}  // namespace Tev::Test
