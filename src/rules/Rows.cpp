#include "rules/Rows.h"

#include "form/NodeTypes.h"
#include "platform/NumericValue.h"

namespace KAL_AUTO_Node {

ListRow RowAt(int position, const QString& lead, const QString& display, const Reference& reference) {
    return {RowKey(position - 1),
            {QString::number(position), lead, display, QString(), reference.nodeName, reference.nodeTypeID,
             reference.nodeNumber}};
}

ListRow ActionRowAt(int position, const QString& low, const QString& high, const QString& display,
                    const Reference& reference) {
    ListRow row = RowAt(position, low + '-' + high, display, reference);
    row.cells << low << high;
    return row;
}

ListRow EmptyRow(const QString& name) {
    return RowAt(1, QStringLiteral("1"), name, {name, QString::number(NumberlessType), QStringLiteral("1")});
}

bool HoldsEmptyRow(const ListView& prompts) {
    return prompts.Count() > 0 &&
           NumericValue(prompts.Cell(0, NodeTypeIDColumn).toStdString()) == NumberlessType;
}

} // namespace KAL_AUTO_Node
