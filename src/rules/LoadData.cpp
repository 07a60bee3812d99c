#include "form/GUI.h"
#include "form/ValueBoxes.h"
#include "platform/ErrorReport.h"
#include "platform/MessageBox.h"
#include "platform/MousePointer.h"
#include "platform/NumericValue.h"
#include "rules/NodeRules.h"
#include "rules/ReadRows.h"
#include "rules/Rows.h"
#include "rules/Utf8.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

void EnableNavigation(const GUI& gui) {
    const int count = gui.cmbNode->ListCount();
    const int index = gui.cmbNode->ListIndex();
    bool back = true;
    bool forth = true;
    if (count == 1) {
        back = forth = false;
    } else if (index == 0) {
        back = false;
    } else if (index == count - 1) {
        forth = false;
    }
    gui.cmdPrevious->setEnabled(back);
    gui.cmdFirst->setEnabled(back);
    gui.cmdNext->setEnabled(forth);
    gui.cmdLast->setEnabled(forth);
}

} // namespace

bool NodeRules::LoadData(GUI& gui, std::int16_t nodeNumber) {
    bool exists = false;
    const bool loaded = Reporting("LoadData", [&] {
        const Hourglass busy;
        {
            const ResultSet node = dataBase_.Query(Command::Get_AUTO_Node,
                                                   {gui.ConfigID, gui.PartitionID, nodeNumber, AutoType});
            exists = !node.AtEnd();
            if (exists) {
                LoadSettings(gui, node);
                LoadPrompts(gui, nodeNumber);
                LoadActions(gui, nodeNumber);
                LoadExceptions(gui, node);
                gui.lblRecordPosition->setText(QString::number(gui.cmbNode->ListIndex() + 1) + " of " +
                                               QString::number(gui.cmbNode->ListCount()));
            } else {
                Inform(gui.NodeName(AutoType) + ' ' + QString::number(nodeNumber) + " doesn't exist.");
            }
        }
        EnableNavigation(gui);
    });
    return loaded && exists;
}

void NodeRules::LoadSettings(GUI& gui, const ResultSet& node) {
    gui.txtDescription->setText(FromUtf8(node.Field("NodeDescription").value_or("")));
    const auto loadValue = [&](const ValueBoxRule& rule) {
        const auto stored = node.Field(rule.column);
        const auto value = stored ? NumericValue(*stored) : rule.first;
        const bool offered = value >= rule.first && value <= rule.last;
        (gui.*rule.box)->SetListIndex(offered ? static_cast<int>(value) - rule.first : 0);
    };
    loadValue(ValueBoxRules.front());
    const QString digit = FromUtf8(node.Field("TerminatingDigit").value_or("")).toUpper();
    const auto known = std::ranges::find_if(TerminatingDigits, [&](const char* literal) {
        return QString::fromLatin1(literal).toUpper() == digit;
    });
    gui.cmbTermDigit->SetListIndex(
        known == TerminatingDigits.end() ? 0 : static_cast<int>(known - TerminatingDigits.begin()));
    std::for_each(ValueBoxRules.begin() + 1, ValueBoxRules.end(), loadValue);
}

QString NodeRules::Label(const GUI& gui, std::string_view nodeTypeID, std::string_view nodeNumber) {
    const ResultSet node =
        dataBase_.Query(Command::Get_Description, {gui.ConfigID, gui.PartitionID, nodeTypeID, nodeNumber});
    return node.AtEnd() ? QString() : FromUtf8(node.Field("NodeDescription").value_or(""));
}

QString NodeRules::LabelOfNode(const GUI& gui, int nodeTypeID, int nodeNumber) {
    return Label(gui, std::to_string(RefersToMessage(nodeTypeID) ? MessageType : nodeTypeID),
                 std::to_string(nodeNumber));
}

NodeRules::StoredReference NodeRules::ReadReference(const GUI& gui, const ResultSet& row,
                                                    const ReferenceColumns& columns, int numberlessType) {
    const std::string_view typeID = row.Text(columns.nodeTypeID);
    const std::string_view storedType = row.Text(columns.nodeType);
    const std::string_view number = row.Text(columns.nodeNumber);
    // The stored type is shown, the type's name of today kept for saving.
    const Reference shown{FromUtf8(storedType), FromUtf8(typeID), FromUtf8(number)};
    return {DisplayText(shown, numberlessType),
            Label(gui, typeID, number),
            {gui.Lists().NodeNameCollection[shown.nodeTypeID], shown.nodeTypeID, shown.nodeNumber}};
}

void NodeRules::LoadPrompts(GUI& gui, std::int16_t nodeNumber) {
    GUI::ClearListView(*gui.LVPrompts);
    ResultSet prompts =
        dataBase_.Query(Command::Get_AUTO_PromptsNode, {gui.ConfigID, gui.PartitionID, nodeNumber});
    const ReferenceColumns columns(prompts);
    const std::size_t sequence = prompts.Column("SequenceNo");
    ReadRows(
        std::move(prompts),
        [&](const ResultSet& stored) {
            const StoredReference prompt = ReadReference(gui, stored, columns, NumberlessType);
            ListRow row = PromptRowAt(stored.Number(sequence), prompt.display, prompt.reference);
            row.cells[LabelColumn] = prompt.label;
            return row;
        },
        [&](std::vector<ListRow> rows) { gui.LVPrompts->Append(std::move(rows)); });
}

void NodeRules::LoadActions(GUI& gui, std::int16_t nodeNumber) {
    GUI::ClearListView(*gui.LVActions);
    ResultSet actions =
        dataBase_.Query(Command::Get_AUTO_ActionsNode, {gui.ConfigID, gui.PartitionID, nodeNumber});
    const ReferenceColumns columns(actions);
    const std::size_t sequence = actions.Column("SequenceNo");
    const std::size_t rangeLow = actions.Column("DTMFRangeLow");
    const std::size_t rangeHigh = actions.Column("DTMFRangeHigh");
    ReadRows(
        std::move(actions),
        [&](const ResultSet& stored) {
            const StoredReference action = ReadReference(gui, stored, columns, NumberlessType);
            const auto low = stored.Field(rangeLow);
            const auto high = stored.Field(rangeHigh);
            const bool ranged = low && high;
            ListRow row =
                ActionRowAt(stored.Number(sequence), ranged ? FromUtf8(*low) : QStringLiteral("0"),
                            ranged ? FromUtf8(*high) : QStringLiteral("0"), action.display, action.reference);
            row.cells[LabelColumn] = action.label;
            return row;
        },
        [&](std::vector<ListRow> rows) { gui.LVActions->Append(std::move(rows)); });
}

void NodeRules::LoadExceptions(GUI& gui, const ResultSet& node) {
    GUI::ClearListView(*gui.LVExceptions);
    for (const ExceptionRule& exception : ExceptionRules) {
        const StoredReference target =
            ReadReference(gui, node, ReferenceColumns(node, exception.column), NumberlessExceptionType);
        ListRow row = ExceptionRowAt(gui.LVExceptions->Count() + 1, QString::fromLatin1(exception.label),
                                     target.display, target.reference);
        row.cells[LabelColumn] = target.label;
        gui.LVExceptions->Append({std::move(row)});
    }
}

} // namespace KAL_AUTO_Node
