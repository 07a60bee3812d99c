#include "audit/Findings.h"

#include "platform/VisibleText.h"

#include <algorithm>

namespace KAL_AUTO_Node {

const char* NameOf(Severity severity) {
    static constexpr std::array<const char*, 3> names = {"error", "warning", "note"};
    return names.at(static_cast<std::size_t>(severity));
}

std::optional<Fault> FaultOf(std::string_view code) {
    const auto rule = std::ranges::find(FaultRules, code, &FaultRule::code);
    return rule == FaultRules.end() ? std::nullopt
                                    : std::optional(static_cast<Fault>(rule - FaultRules.begin()));
}

std::optional<Fault> FaultOf(RangeKind kind) {
    static constexpr std::array<std::optional<Fault>, 5> faults = {
        std::nullopt, Fault::RangeNotDigits, Fault::RangeLengths, Fault::ReversedRange, Fault::RangeTooLong};
    return faults.at(static_cast<std::size_t>(kind));
}

std::string Finding::Key(Partition partition) const {
    std::string key = RuleOf(fault).code;
    key += ' ' + std::to_string(partition.config) + ' ' + std::to_string(partition.number) + ' ' +
           Visible(Holder());
    key += ' ' + Visible(subject);
    key.erase(key.find_last_not_of(' ') + 1);
    return key;
}

} // namespace KAL_AUTO_Node
