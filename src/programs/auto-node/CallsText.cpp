#include "auto-node/CallsText.h"

#include "calls/CallMap.h"

#include <nlohmann/json.hpp>

namespace KAL_AUTO_Node {

std::string ByText(const Menu& menu, const Outcome& outcome) {
    switch (outcome.by) {
    case Outcome::By::Action:
        return "action " + std::to_string(menu.Node().actions[outcome.place].sequence);
    case Outcome::By::Exception:
        return Branches.at(outcome.place).label;
    default:
        return "asked again";
    }
}

nlohmann::ordered_json ToJson(const CallMap& map, const Target& target) {
    nlohmann::ordered_json document{{"typeID", target.typeID}, {"type", target.type}, {"number", nullptr}};
    if (target.hasNumber) {
        document["number"] = target.number;
    }
    document["label"] = map.LabelOf(target.Key());
    return document;
}

void AddJson(nlohmann::ordered_json& document, const CallMap& map, const Menu& menu,
             const Outcomes& outcomes) {
    document["certain"] = outcomes.IsCertain();
    auto& ways = document["outcomes"] = nlohmann::ordered_json::array();
    for (const Outcome& outcome : outcomes.ways) {
        ways.push_back(ToJson(map, outcome.target));
        ways.back()["by"] = ByText(menu, outcome);
    }
    document["more"] = outcomes.more;
    auto& reasons = document["reasons"] = nlohmann::ordered_json::array();
    for (const Reason reason : outcomes.reasons) {
        reasons.push_back(TextOf(reason).code);
    }
}

} // namespace KAL_AUTO_Node
