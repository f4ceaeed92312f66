#include "support/FakeGl.h"

#include <cstring>
#include <sstream>
#include <stdexcept>
#include <tuple>
#include <type_traits>

namespace Tev::Test {

namespace {

FakeGl* current = nullptr;

template <typename T>
FakeArg ToArg(T p_value) {
    if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<void const*>(p_value);
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<double>(p_value);
    else
        return static_cast<std::int64_t>(p_value);
}

template <typename Ret>
Ret FromResult(FakeResult const& p_result) {
    if constexpr (std::is_void_v<Ret>) {
        return;
    } else if constexpr (std::is_pointer_v<Ret>) {
        if (auto const* ptr = std::get_if<void const*>(&p_result)) return reinterpret_cast<Ret>(const_cast<void*>(*ptr));
        return nullptr;
    } else {
        if (auto const* value = std::get_if<std::int64_t>(&p_result)) return static_cast<Ret>(*value);
        return Ret{};
    }
}

template <typename Ret, typename... Args>
Ret Record(char const* p_symbol, std::tuple<Args...> p_args) {
    FakeCall call{p_symbol, {}};
    std::apply([&](auto... a) { (call.args.push_back(ToArg(a)), ...); }, p_args);
    return FromResult<Ret>(FakeGl::Current().Record(std::move(call)));
}

// One recording function per entry, with the entry's exact signature.
#define TEV_OGL_ENTRY(kind, ret, member, symbol, params, args) \
    ret TGL_APIENTRY Fake##member params { return Record<ret>(symbol, std::make_tuple args); }
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY

}  // namespace

std::int64_t FakeCall::Int(std::size_t p_index) const { return std::get<std::int64_t>(args.at(p_index)); }
double FakeCall::Double(std::size_t p_index) const { return std::get<double>(args.at(p_index)); }
void const* FakeCall::Ptr(std::size_t p_index) const { return std::get<void const*>(args.at(p_index)); }

std::string FakeCall::ToString() const {
    std::ostringstream os;
    os << name << '(';
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (i) os << ", ";
        std::visit([&](auto const& v) { os << v; }, args[i]);
    }
    os << ')';
    return os.str();
}

FakeGl::FakeGl() {
    if (current) throw std::logic_error("one FakeGl at a time");
    current = this;
    SetString(0x1F02, "4.5 (Compatibility Profile) FakeGL");  // GL_VERSION
    SetString(0x8B8C, "4.50");                                // GL_SHADING_LANGUAGE_VERSION
    SetString(0x1F00, "FakeVendor");                          // GL_VENDOR
    SetString(0x1F01, "FakeRenderer");                        // GL_RENDERER
    SetExtensions({});
    InstallDefaultHandlers();
}

FakeGl::~FakeGl() { current = nullptr; }

FakeGl& FakeGl::Current() {
    if (!current) throw std::logic_error("a fake GL entry was called with no FakeGl alive");
    return *current;
}

Chart::Ogl::OglApi FakeGl::Api(std::set<std::string> const& p_missing) const {
    Chart::Ogl::OglApi api;
    api.GlVersion = Chart::Utility::VersionNo::Parse(_strings.at(0x1F02));
    api.GlslVersion = Chart::Utility::VersionNo::Parse(_strings.at(0x8B8C));
#define TEV_OGL_ENTRY(kind, ret, member, symbol, params, args) \
    api.member = p_missing.count(symbol) ? nullptr : &Fake##member;
#include "ogl/api/OglEntries.inl"
#undef TEV_OGL_ENTRY
    return api;
}

void FakeGl::SetString(GLenum p_name, std::string p_value) { _strings[p_name] = std::move(p_value); }

void FakeGl::SetInteger(GLenum p_name, std::vector<GLint> p_values) { _integers[p_name] = std::move(p_values); }

void FakeGl::SetExtensions(std::vector<std::string> const& p_extensions) {
    std::string joined;
    for (auto const& e : p_extensions) joined += e + ' ';
    SetString(0x1F03, joined);  // GL_EXTENSIONS
}

void FakeGl::QueueError(GLenum p_error) { _errors.push_back(p_error); }

void FakeGl::On(std::string const& p_name, Handler p_handler) { _handlers[p_name] = std::move(p_handler); }

std::vector<FakeCall> FakeGl::Calls(std::string const& p_name) const {
    std::vector<FakeCall> calls;
    for (auto const& c : _calls)
        if (c.name == p_name) calls.push_back(c);
    return calls;
}

std::vector<std::string> FakeGl::CallStrings() const {
    std::vector<std::string> strings;
    for (auto const& c : _calls) strings.push_back(c.ToString());
    return strings;
}

FakeResult FakeGl::Record(FakeCall p_call) {
    _calls.push_back(p_call);
    auto const handler = _handlers.find(p_call.name);
    return handler == _handlers.end() ? FakeResult{std::int64_t{0}} : handler->second(_calls.back());
}

void FakeGl::InstallDefaultHandlers() {
    On("glGetString", [this](FakeCall const& c) -> FakeResult {
        auto const found = _strings.find(GLenum(c.Int(0)));
        return found == _strings.end() ? nullptr : static_cast<void const*>(found->second.c_str());
    });
    On("glGetIntegerv", [this](FakeCall const& c) -> FakeResult {
        auto const found = _integers.find(GLenum(c.Int(0)));
        if (found != _integers.end())
            std::memcpy(const_cast<void*>(c.Ptr(1)), found->second.data(), found->second.size() * sizeof(GLint));
        return std::int64_t{0};
    });
    On("glGetError", [this](FakeCall const&) -> FakeResult {
        if (_errors.empty()) return std::int64_t{0};
        GLenum const error = _errors.front();
        _errors.erase(_errors.begin());
        return std::int64_t{error};
    });
}

}  // namespace Tev::Test
