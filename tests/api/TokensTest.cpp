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
    unsigned value;
};

struct GlPair {
    std::string name;
    std::string glName;
    unsigned value;
    unsigned glValue;
};

std::vector<Token> AllTokens() {
    return {
#define TEV_TOKEN(p_name, p_glName, p_value) {#p_name, Tokens::p_name},
#include "ogl/api/TokenList.inl"
    };
}

// Tokens that claim to equal a header enumerant; a header lacking one fails
// to compile here rather than being skipped.
std::vector<GlPair> TokensWithGlTwin() {
    return {
#define TEV_TOKEN_OWN(p_name, p_value)
#define TEV_TOKEN(p_name, p_glName, p_value) {#p_name, #p_glName, Tokens::p_name, p_glName},
#include "ogl/api/TokenList.inl"
    };
}

std::set<std::string> TokensOfOwnValue() {
    return {
#define TEV_TOKEN_OWN(p_name, p_value) #p_name,
#define TEV_TOKEN(p_name, p_glName, p_value)
#include "ogl/api/TokenList.inl"
    };
}

std::string SizeOfFailure() {
    return "\"false && \"Provided enum does not match a known type!\"\" - ";
}

}  // namespace

TEST(Tokens, ListHoldsEachGlAndGluTokenOnce) {
    auto const tokens = AllTokens();
    std::set<std::string> names;
    std::size_t glu = 0;
    for (auto const& token : tokens) {
        EXPECT_TRUE(names.insert(token.name).second) << token.name << " listed twice";
        glu += token.name.rfind("TGLU_", 0) == 0;
    }
    EXPECT_EQ(tokens.size(), 417u);
    EXPECT_EQ(glu, 21u);
}

TEST(Tokens, EqualTheHeaderEnumerantOfTheSameName) {
    auto const pairs = TokensWithGlTwin();
    EXPECT_EQ(pairs.size(), 417u - TokensOfOwnValue().size());
    for (auto const& pair : pairs) {
        EXPECT_EQ(pair.name, "T" + pair.glName);
        EXPECT_EQ(pair.value, pair.glValue) << pair.name;
    }
}

TEST(Tokens, DeliberateDifferencesKeepTheirOwnValues) {
    EXPECT_EQ(TokensOfOwnValue(),
              (std::set<std::string>{"TGL_ALL_ATTRIB_BITS", "TGL_GEOMETRY_VERTICES_OUT",
                                     "TGL_DEBUG_TYPE_DEPRECATED_BEHAVIOUR",
                                     "TGL_DEBUG_TYPE_UNDEFINED_BEHAVIOUR", "TGL_INTENSITY16F",
                                     "TGL_INTENSITY32F"}));

    EXPECT_EQ(Tokens::TGL_ALL_ATTRIB_BITS, 0xFFFFFu);
    EXPECT_EQ(Tokens::TGL_GEOMETRY_VERTICES_OUT, Tokens::TGL_GEOMETRY_SHADER);
    EXPECT_EQ(Tokens::TGL_GEOMETRY_VERTICES_OUT, 0x8DD9u);
    EXPECT_EQ(Tokens::TGL_DEBUG_TYPE_DEPRECATED_BEHAVIOUR, GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR);
    EXPECT_EQ(Tokens::TGL_DEBUG_TYPE_UNDEFINED_BEHAVIOUR, GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR);
    EXPECT_EQ(Tokens::TGL_DEBUG_TYPE_DEPRECATED_BEHAVIOUR, 0x824Du);
    EXPECT_EQ(Tokens::TGL_DEBUG_TYPE_UNDEFINED_BEHAVIOUR, 0x824Eu);
    EXPECT_EQ(Tokens::TGL_INTENSITY16F, GL_INTENSITY16F_ARB);
    EXPECT_EQ(Tokens::TGL_INTENSITY32F, GL_INTENSITY32F_ARB);
    EXPECT_EQ(Tokens::TGL_INTENSITY16F, 0x881Du);
    EXPECT_EQ(Tokens::TGL_INTENSITY32F, 0x8817u);
    EXPECT_EQ(Tokens::TGL_FLOAT_R32_NV, 0x8885u);
}

TEST(Tokens, SizeOfGivesTheBytesOfEachDataType) {
    CaptureScope capture;
    EXPECT_EQ(Tokens::SizeOf(Tokens::TGL_BYTE), 1u);
    EXPECT_EQ(Tokens::SizeOf(Tokens::TGL_UNSIGNED_BYTE), 1u);
    EXPECT_EQ(Tokens::SizeOf(Tokens::TGL_SHORT), 2u);
    EXPECT_EQ(Tokens::SizeOf(Tokens::TGL_UNSIGNED_SHORT), 2u);
    EXPECT_EQ(Tokens::SizeOf(Tokens::TGL_INT), 4u);
    EXPECT_EQ(Tokens::SizeOf(Tokens::TGL_UNSIGNED_INT), 4u);
    EXPECT_EQ(Tokens::SizeOf(Tokens::TGL_FLOAT), 4u);
    EXPECT_EQ(Tokens::SizeOf(Tokens::TGL_DOUBLE), 8u);
    EXPECT_TRUE(Tev::Test::Assertions(capture).empty());
}

TEST(Tokens, SizeOfReportsOtherEnumerantsAndGivesZero) {
    // 2_BYTES, 3_BYTES, 4_BYTES: GL types the library has no token for.
    for (unsigned type : {0x1407u, 0x1408u, 0x1409u}) {
        CaptureScope capture;
        EXPECT_EQ(Tokens::SizeOf(type), 0u) << type;
        auto const assertions = Tev::Test::Assertions(capture);
        ASSERT_EQ(assertions.size(), 1u) << type;
        std::string const signature = "Tev::Chart::Ogl::Tokens::SizeOf(unsigned int)";
        EXPECT_EQ(assertions[0].rfind(SizeOfFailure(), 0), 0u) << assertions[0];
        EXPECT_TRUE(assertions[0].ends_with(signature)) << assertions[0];
    }
}
