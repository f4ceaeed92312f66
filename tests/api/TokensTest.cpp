// Every token against the Khronos headers' enumerant of the same name, the
// deliberate differences against their own values, and the type sizes.
#include "ogl/api/Tokens.h"

#include "support/LogCapture.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace Tokens = Tev::Chart::Ogl::Tokens;
using Tev::Debug::CaptureScope;

namespace {

struct Token {
    std::string name;
    std::string glName;  // empty for a token of its own value
    unsigned value;
    unsigned glValue;
};

// A token that claims a header twin which the headers lack fails to compile
// here rather than being skipped.
std::vector<Token> AllTokens() {
    return {
#define TEV_TOKEN_OWN(p_name, p_value) {#p_name, "", Tokens::p_name, 0},
#define TEV_TOKEN(p_name, p_glName, p_value) {#p_name, #p_glName, Tokens::p_name, p_glName},
#include "ogl/api/TokenList.inl"
    };
}

TEST(Tokens, EachListedOnceAndEqualToTheHeaderEnumerantOfTheSameName) {
    std::set<std::string> names, own;
    std::size_t glu = 0;
    for (Token const& token : AllTokens()) {
        EXPECT_TRUE(names.insert(token.name).second) << token.name << " listed twice";
        glu += token.name.starts_with("TGLU_");
        if (token.glName.empty()) {
            own.insert(token.name);
            continue;
        }
        EXPECT_EQ(token.name, "T" + token.glName);
        EXPECT_EQ(token.value, token.glValue) << token.name;
    }
    EXPECT_EQ(names.size(), 417u);
    EXPECT_EQ(glu, 21u);

    // The deliberate differences: spelling, or a value of the library's own.
    EXPECT_EQ(own, (std::set<std::string>{"TGL_ALL_ATTRIB_BITS", "TGL_GEOMETRY_VERTICES_OUT",
                                          "TGL_DEBUG_TYPE_DEPRECATED_BEHAVIOUR", "TGL_DEBUG_TYPE_UNDEFINED_BEHAVIOUR",
                                          "TGL_INTENSITY16F", "TGL_INTENSITY32F"}));
    EXPECT_EQ(Tokens::TGL_ALL_ATTRIB_BITS, 0xFFFFFu);
    EXPECT_EQ(Tokens::TGL_GEOMETRY_VERTICES_OUT, 0x8DD9u);
    EXPECT_EQ(Tokens::TGL_GEOMETRY_VERTICES_OUT, Tokens::TGL_GEOMETRY_SHADER);
    EXPECT_EQ(Tokens::TGL_DEBUG_TYPE_DEPRECATED_BEHAVIOUR, GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR);
    EXPECT_EQ(Tokens::TGL_DEBUG_TYPE_UNDEFINED_BEHAVIOUR, GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR);
    EXPECT_EQ(Tokens::TGL_INTENSITY16F, GL_INTENSITY16F_ARB);
    EXPECT_EQ(Tokens::TGL_INTENSITY32F, GL_INTENSITY32F_ARB);
}

TEST(Tokens, SizeOfGivesTheBytesOfEachDataTypeAndReportsOthers) {
    CaptureScope capture;
    std::vector<std::uint64_t> sizes;
    for (unsigned type : {Tokens::TGL_BYTE, Tokens::TGL_UNSIGNED_BYTE, Tokens::TGL_SHORT, Tokens::TGL_UNSIGNED_SHORT,
                          Tokens::TGL_INT, Tokens::TGL_UNSIGNED_INT, Tokens::TGL_FLOAT, Tokens::TGL_DOUBLE})
        sizes.push_back(Tokens::SizeOf(type));
    EXPECT_EQ(sizes, (std::vector<std::uint64_t>{1, 1, 2, 2, 4, 4, 4, 8}));
    EXPECT_TRUE(Tev::Test::Assertions(capture).empty());

    // 2_BYTES, 3_BYTES, 4_BYTES: GL types the library has no token for.
    std::string const failure = "\"false && \"Provided enum does not match a known type!\"\" - ";
    for (unsigned type : {0x1407u, 0x1408u, 0x1409u}) {
        capture.Sink().Clear();
        EXPECT_EQ(Tokens::SizeOf(type), 0u) << type;
        auto const assertions = Tev::Test::Assertions(capture);
        ASSERT_EQ(assertions.size(), 1u) << type;
        EXPECT_TRUE(assertions[0].starts_with(failure) &&
                    assertions[0].ends_with("Tev::Chart::Ogl::Tokens::SizeOf(unsigned int)"))
            << assertions[0];
    }
}

}  // namespace
