// The render passes a drawing can be part of. The shader builder takes the
// active stage's tag to select the code path of a pass, so the tags are
// fixed texts.
#pragma once

#include <array>
#include <optional>
#include <ostream>
#include <string_view>

namespace Tev::Chart::Ogl {

class OutputStage {
public:
    enum Id : int {
        Forward = 0,
        Forward_AlphaHandler,
        Deferred_Depth,
        Deferred_Background,
        Deferred_Opaque,
        Deferred_ForceOpaque,
        WeightedAverage_Opaque,
        WeightedAverage_Translucent,
        WeightedAverage_Translucent_ForceOpaque,
        IdCount
    };

    constexpr OutputStage(Id p_id = Forward) : _id(p_id) {}

    // The stage with this tag, or none.
    static constexpr std::optional<OutputStage> FromName(std::string_view p_name) {
        for (int i = 0; i < IdCount; ++i)
            if (Names[i] == p_name) return OutputStage(static_cast<Id>(i));
        return std::nullopt;
    }

    constexpr Id GetId() const { return _id; }
    // The stage's tag, "Forward" ... "WeightedAverage_Translucent_ForceOpaque".
    constexpr std::string_view Name() const { return Names[_id]; }

    friend constexpr bool operator==(OutputStage, OutputStage) = default;

private:
    static constexpr std::array<std::string_view, IdCount> Names = {
        "Forward",
        "Forward_AlphaHandler",
        "Deferred_Depth",
        "Deferred_Background",
        "Deferred_Opaque",
        "Deferred_ForceOpaque",
        "WeightedAverage_Opaque",
        "WeightedAverage_Translucent",
        "WeightedAverage_Translucent_ForceOpaque",
    };

    Id _id;
};

inline std::ostream& operator<<(std::ostream& p_os, OutputStage p_stage) { return p_os << p_stage.Name(); }

}  // namespace Tev::Chart::Ogl
