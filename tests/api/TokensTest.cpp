// Every token against the Khronos headers' enumerant it is named after, the
// deliberate differences against their own values, and the type sizes.
#include "ogl/api/Tokens.h"
#include "support/LogCapture.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>
#include <gtest/gtest.h>

#include <map>

using namespace Tev::Chart::Ogl::Tokens;

// Each of the 417 tokens is named T + its enumerant and equal to it (a token
// claiming an enumerant the headers lack fails to compile, and one listed
// twice fails the library's build); the tokens that differ on purpose, in
// spelling or value, are exactly these.
TEST(Tokens, EachEqualsTheEnumerantItIsNamedAfterSaveTheDeliberateOnes) {
    struct Token { std::string name, glName; unsigned value, glValue; };
    std::vector<Token> const tokens = {
#define TEV_TOKEN_OWN(p_name, p_value) {#p_name, "", p_name, 0},
#define TEV_TOKEN(p_name, p_glName, p_value) {#p_name, #p_glName, p_name, p_glName},
#include "ogl/api/TokenList.inl"
    };
    std::map<std::string, unsigned> own;
    for (Token const& token : tokens) {
        if (token.glName.empty()) own[token.name] = token.value;
        else EXPECT_TRUE(token.name == "T" + token.glName && token.value == token.glValue) << token.name;
    }
    EXPECT_EQ(tokens.size(), 417u);
    EXPECT_EQ(own, (std::map<std::string, unsigned>{
                       {"TGL_ALL_ATTRIB_BITS", 0xFFFFF}, {"TGL_GEOMETRY_VERTICES_OUT", GL_GEOMETRY_SHADER},
                       {"TGL_DEBUG_TYPE_DEPRECATED_BEHAVIOUR", GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR},
                       {"TGL_DEBUG_TYPE_UNDEFINED_BEHAVIOUR", GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR},
                       {"TGL_INTENSITY16F", GL_INTENSITY16F_ARB}, {"TGL_INTENSITY32F", GL_INTENSITY32F_ARB}}));
}

// SizeOf gives the bytes of each GL data type; a type the library has no
// token for is a failed check, with this text, and 0.
TEST(Tokens, SizeOfGivesTheBytesOfEachDataTypeAndReportsOthers) {
    for (auto const& [type, bytes] : std::vector<std::pair<unsigned, std::uint64_t>>{
             {TGL_BYTE, 1}, {TGL_UNSIGNED_BYTE, 1}, {TGL_SHORT, 2}, {TGL_UNSIGNED_SHORT, 2}, {TGL_INT, 4},
             {TGL_UNSIGNED_INT, 4}, {TGL_FLOAT, 4}, {TGL_DOUBLE, 8}, {GL_2_BYTES, 0}, {GL_3_BYTES, 0}, {GL_4_BYTES, 0}}) {
        Tev::Debug::CaptureScope capture;
        EXPECT_TRUE(SizeOf(type) == bytes && !bytes == (Tev::Test::Assertions(capture).size() == 1 &&
                    Tev::Test::HasAssertion(capture, "false && \"Provided enum does not match a known type!\""))) << type;
    }
}
