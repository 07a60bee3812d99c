#include "rules/Rows.h"

#include "platform/NumericValue.h"
#include "rules/Utf8.h"

#include <QStringBuilder>

#include <array>

namespace KAL_AUTO_Node {

namespace {

// The number is the position as text.
template <class... Texts>
ListRow Row(const QString& number, const QString& lead, Slot slot, const Reference& target,
            const Texts&... more) {
    return {number % QLatin1Char(KeySuffix),
            {number, lead, FromUtf8(DisplayText(target, slot)), QString(), FromUtf8(target.type),
             QString::number(target.typeID), QString::number(target.number), more...}};
}

} // namespace

ListRow PromptRowAt(int position, const Reference& target) {
    const QString number = QString::number(position);
    return Row(number, number, Slot::Prompts, target);
}

ListRow ActionRowAt(int position, const QString& low, const QString& high, const Reference& target) {
    return Row(QString::number(position), low % QLatin1Char('-') % high, Slot::Actions, target, low, high);
}

ListRow ExceptionRowAt(std::size_t branch, const Reference& target) {
    const BranchRule& rule = BranchRules.at(branch);
    return Row(QString::number(branch + 1), QString::fromLatin1(rule.label), rule.slot, target);
}

ListRow EmptyRow(const QString& name) { return PromptRowAt(1, {NumberlessType, name.toStdString(), 1, {}}); }

bool HoldsEmptyRow(const ListView& prompts) {
    return prompts.Count() > 0 &&
           NumericValue(prompts.Cell(0, NodeTypeIDColumn).toStdString()) == NumberlessType;
}

void RemoveEmptyRow(ListView& prompts) {
    if (HoldsEmptyRow(prompts)) {
        prompts.Remove(std::array{0});
        prompts.Renumber(LeadColumn);
    }
}

} // namespace KAL_AUTO_Node
