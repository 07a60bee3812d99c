#include "rules/Rows.h"

#include "form/NodeTypes.h"
#include "platform/NumericValue.h"

#include <QStringBuilder>

namespace KAL_AUTO_Node {

namespace {

// The number is the position as text.
template <class... Texts>
ListRow Row(const QString& number, const QString& lead, const QString& display, const Reference& reference,
            const Texts&... more) {
    return {number % QLatin1Char(KeySuffix),
            {number, lead, display, QString(), reference.nodeName, reference.nodeTypeID, reference.nodeNumber,
             more...}};
}

} // namespace

ListRow PromptRowAt(int position, const QString& display, const Reference& reference) {
    const QString number = QString::number(position);
    return Row(number, number, display, reference);
}

ListRow ExceptionRowAt(int position, const QString& name, const QString& display,
                       const Reference& reference) {
    return Row(QString::number(position), name, display, reference);
}

ListRow ActionRowAt(int position, const QString& low, const QString& high, const QString& display,
                    const Reference& reference) {
    return Row(QString::number(position), low % QLatin1Char('-') % high, display, reference, low, high);
}

QString DisplayText(const Reference& reference, int numberlessType) {
    return reference.nodeTypeID.toInt() == numberlessType
               ? reference.nodeName
               : QString(reference.nodeName % QLatin1Char(' ') % reference.nodeNumber);
}

ListRow EmptyRow(const QString& name) {
    return PromptRowAt(1, name, {name, QString::number(NumberlessType), QStringLiteral("1")});
}

bool HoldsEmptyRow(const ListView& prompts) {
    return prompts.Count() > 0 &&
           NumericValue(prompts.Cell(0, NodeTypeIDColumn).toStdString()) == NumberlessType;
}

} // namespace KAL_AUTO_Node
