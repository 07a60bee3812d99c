#include "rules/Rows.h"

#include "controls/Utf8.h"

#include <array>

namespace KAL_AUTO_Node {

namespace {

ListRow Row(Slot slot, const Reference& target) {
    const QString type = FromUtf8(target.type);
    return {slot, target.typeID, target.number, type, type, {}, {}, {}};
}

} // namespace

ListRow PromptRow(const Reference& target) { return Row(Slot::Prompts, target); }

ListRow ActionRow(const Action& action) {
    const auto [low, high] = RangeOf(action);
    ListRow row = Row(Slot::Actions, action.target);
    row.low = FromUtf8(low);
    row.high = FromUtf8(high);
    return row;
}

Reference TargetOf(const ListRow& row) { return {row.typeID, row.name.toStdString(), row.number, {}}; }

Action ActionOf(const ListRow& row, int sequence) {
    return {sequence, TargetOf(row), row.low.toStdString(), row.high.toStdString()};
}

ListRow ExceptionRow(std::size_t branch, const Reference& target) {
    return Row(Branches.at(branch).slot, target);
}

ListRow EmptyRow(const QString& name) { return PromptRow({NumberlessType, name.toStdString(), 1, {}}); }

bool HoldsEmptyRow(const ListView& prompts) {
    return prompts.Count() > 0 && prompts.Row(0).typeID == NumberlessType;
}

void RemoveEmptyRow(ListView& prompts) {
    if (HoldsEmptyRow(prompts)) {
        prompts.Remove(std::array{0});
    }
}

} // namespace KAL_AUTO_Node
