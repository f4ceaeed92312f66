// Value types of the utility library: version numbers, hashed strings, the
// optional attribute and the environment flags.
#include "framework/utility/Attribute.h"
#include "framework/utility/Environment.h"
#include "framework/utility/HashedString.h"
#include "framework/utility/VersionNo.h"
#include "support/LogCapture.h"
#include "support/ScopedEnv.h"

#include <boost/unordered_map.hpp>
#include <boost/optional/optional_io.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

namespace Tev::Chart::Utility {
namespace {

TEST(VersionNo, ParsesDriverStringsAndOrdersByNumbersOnly) {
    auto const mesa = VersionNo::Parse("4.5 (Compatibility Profile) Mesa 22.3.6");
    EXPECT_EQ(mesa, VersionNo(4, 5, 0));
    EXPECT_EQ(mesa.Text(), "4.5 (Compatibility Profile) Mesa 22.3.6");

    EXPECT_EQ(VersionNo::Parse("4.50").Minor(), 50);
    EXPECT_EQ(VersionNo::Parse("<unknown>"), VersionNo(0, 0, 0));
    EXPECT_EQ(VersionNo::Parse("<unknown>").Text(), "<unknown>");
    EXPECT_EQ(VersionNo::Parse("OpenGL ES 3.2 Mesa 22.3.6"), VersionNo(3, 2, 0));
    EXPECT_EQ(VersionNo::Parse("1.2.3.4"), VersionNo(1, 2, 3));

    EXPECT_LT(VersionNo(2, 1, 0), VersionNo(3, 0, 0));
    EXPECT_LT(VersionNo(3, 1, 9), VersionNo(3, 2, 0));
    EXPECT_FALSE(mesa < VersionNo(4, 5, 0));
    EXPECT_FALSE(mesa < VersionNo(4, 3, 0)) << "a 4.5 driver passes a 4.3 gate";
    EXPECT_EQ(VersionNo(3, 0).Text(), "3.0.0");
}

// Every key lands in one bucket, so that only the text can tell them apart.
struct ConstantHash {
    std::size_t operator()(std::string const&) const { return 7; }
};

TEST(HashedString, EqualityHashingAndOrderingSurviveCollisions) {
    constexpr std::size_t literalHash = StaticUnboundedStringHash{}("attr_Position");
    HashedString const position("attr_Position");
    EXPECT_EQ(position.Hash(), literalHash);
    EXPECT_EQ(position, HashedString(std::string("attr_Position")));
    EXPECT_NE(position, HashedString("attr_Normal"));
    EXPECT_NE(StaticUnboundedStringHash{}("ab"), StaticUnboundedStringHash{}("ba"));

    boost::unordered_map<HashedString, int> locations;
    locations["attr_Position"] = 0;
    locations["attr_Normal"] = 2;
    EXPECT_EQ(locations.at(position), 0);
    EXPECT_EQ(locations.count("attr_Color"), 0u);

    using Colliding = HashedString_Base<std::string, ConstantHash>;
    EXPECT_NE(Colliding("a"), Colliding("b"));
    std::set<Colliding> const keys{"b", "a", "b"};
    EXPECT_EQ(keys.size(), 2u);
    EXPECT_EQ(keys.begin()->str(), "a");
}

TEST(Attribute, UndefinedReadsAreReportedAndYieldADefault) {
    Attribute<int> value;
    EXPECT_FALSE(value.Defined());
    EXPECT_EQ(value.GetOr(5), 5);
    {
        Debug::CaptureScope capture;
        EXPECT_EQ(*value, 0);
        ASSERT_EQ(::Tev::Test::Assertions(capture).size(), 1u);
        EXPECT_TRUE(::Tev::Test::HasAssertion(capture, "Defined()"));
    }
    value = 3;
    EXPECT_EQ(value, Attribute<int>(3));
    value.Undefine();
    EXPECT_EQ(value, Attribute<int>());

    Attribute<std::string> text;
    text.Define() += "abc";
    EXPECT_EQ(text->size(), 3u);
    Attribute<std::string> const undefined;
    Debug::CaptureScope capture;
    EXPECT_EQ(undefined.Get(), "");
    EXPECT_FALSE(undefined.Defined()) << "reading a const attribute must not define it";
}

TEST(Environment, FlagsReadTheirVariables) {
    for (auto const& [value, level] : {std::pair<char const*, int>{nullptr, 0}, {"2", 2}}) {
        ::Tev::Test::ScopedEnv env("TEVOS_FRAMEWORK_DEVELOPMENT", value);
        EXPECT_EQ(Environment::FrameworkDevelopment(), level);
    }
    for (char const* bad : {"", "abc", "0", "-3", "12x"}) {
        ::Tev::Test::ScopedEnv env("TEVOS_FORCE_PIXEL_FORMAT", bad);
        EXPECT_FALSE(Environment::ForcePixelFormat()) << "'" << bad << "'";
    }
    {
        ::Tev::Test::ScopedEnv env("TEVOS_FORCE_PIXEL_FORMAT", "12");
        EXPECT_EQ(Environment::ForcePixelFormat(), 12u);
    }
    for (char const* off : {static_cast<char const*>(nullptr), "", "0", "false", "No", "OFF"}) {
        ::Tev::Test::ScopedEnv env("TEVOS_USE_SYSTEM_DEVICE_FORMAT", off);
        EXPECT_FALSE(Environment::UseSystemDeviceFormat()) << "'" << off << "'";
    }
    ::Tev::Test::ScopedEnv env("TEVOS_USE_SYSTEM_DEVICE_FORMAT", "yes");
    EXPECT_TRUE(Environment::UseSystemDeviceFormat());
}

}  // namespace
}  // namespace Tev::Chart::Utility
