#include "support/FakeGl.h"

#include <algorithm>
#include <cstring>
#include <sstream>
#include <type_traits>

namespace Tev::Test {

namespace {

FakeGl* current = nullptr;

// Called with an entry's arguments: records them and converts the answer.
template <typename Ret>
struct Recorder {
    char const* symbol;

    template <typename... Args>
    Ret operator()(Args... p_args) const {
        FakeCall call{symbol, {}};
        (call.args.push_back([](auto p_value) -> decltype(call.args)::value_type {
            if constexpr (std::is_pointer_v<decltype(p_value)>) return reinterpret_cast<void const*>(p_value);
            else if constexpr (std::is_floating_point_v<decltype(p_value)>) return double(p_value);
            else return std::int64_t(p_value);
        }(p_args)), ...);
        FakeResult const result = current->Record(std::move(call));
        if constexpr (std::is_pointer_v<Ret>) {
            auto const* pointer = std::get_if<void const*>(&result);
            return pointer ? reinterpret_cast<Ret>(const_cast<void*>(*pointer)) : nullptr;
        } else if constexpr (!std::is_void_v<Ret>) {
            auto const* value = std::get_if<std::int64_t>(&result);
            return value ? static_cast<Ret>(*value) : Ret{};
        }
    }
};

#define TEV_OGL_ENTRY(kind, ret, member, symbol, params, args) \
    ret TGL_APIENTRY Fake##member params { return Recorder<ret>{symbol} args; }
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY

}  // namespace

FakeGl::FakeGl()
    : _strings{{0x1F02, "4.5 (Compatibility Profile) FakeGL"},  // GL_VERSION
               {0x8B8C, "4.50"},                                // GL_SHADING_LANGUAGE_VERSION
               {0x1F00, "FakeVendor"},                          // GL_VENDOR
               {0x1F01, "FakeRenderer"},                        // GL_RENDERER
               {0x1F03, ""}} {                                  // GL_EXTENSIONS
    current = this;
    On("glGetString", [this](FakeCall const& c) -> FakeResult {
        auto const found = _strings.find(GLenum(c.Int(0)));
        return found == _strings.end() ? nullptr : static_cast<void const*>(found->second.c_str());
    });
    On("glGetIntegerv", [this](FakeCall const& c) -> FakeResult {
        if (auto const found = _integers.find(GLenum(c.Int(0))); found != _integers.end())
            std::memcpy(c.Ptr(1), found->second.data(), found->second.size() * sizeof(GLint));
        return std::int64_t{0};
    });
}

FakeGl::~FakeGl() { current = nullptr; }

Chart::Ogl::OglApi FakeGl::Api(std::set<std::string> const& p_missing) const {
    Chart::Ogl::OglApi api;
    api.GlVersion = Chart::Utility::VersionNo::Parse(_strings.at(0x1F02));
    api.GlslVersion = Chart::Utility::VersionNo::Parse(_strings.at(0x8B8C));
#define TEV_OGL_ENTRY(kind, ret, member, symbol, params, args) api.member = p_missing.count(symbol) ? nullptr : &Fake##member;
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY
    return api;
}

void FakeGl::SetExtensions(std::vector<std::string> const& p_extensions) {
    std::string joined;
    for (auto const& e : p_extensions) joined += e + ' ';
    SetString(0x1F03, joined);  // GL_EXTENSIONS
}

std::vector<FakeCall> FakeGl::Calls(std::string const& p_name) const {
    std::vector<FakeCall> calls;
    std::copy_if(_calls.begin(), _calls.end(), std::back_inserter(calls), [&](FakeCall const& c) { return c.name == p_name; });
    return calls;
}

std::vector<std::string> FakeGl::CallStrings() const {
    std::vector<std::string> strings;
    for (auto const& c : _calls) {
        std::ostringstream os;
        os << c.name << '(';
        for (std::size_t i = 0; i < c.args.size(); ++i) std::visit([&](auto const& v) { os << (i ? ", " : "") << v; }, c.args[i]);
        strings.push_back(os.str() + ')');
    }
    return strings;
}

FakeResult FakeGl::Record(FakeCall p_call) {
    _calls.push_back(std::move(p_call));
    auto const handler = _handlers.find(_calls.back().name);
    return handler == _handlers.end() ? FakeResult{std::int64_t{0}} : handler->second(_calls.back());
}

}  // namespace Tev::Test
