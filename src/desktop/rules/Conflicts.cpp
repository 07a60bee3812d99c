#include "rules/Conflicts.h"

#include "controls/Utf8.h"
#include "feedback/MessageBox.h"
#include "platform/VisibleText.h"

#include <QStringList>

#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr qsizetype MostLines = 10;
constexpr qsizetype LongestLine = 160;

// Names and labels may hold anything.
QString Line(const std::string& text) {
    const QString line = FromUtf8(Visible(text));
    return line.size() > LongestLine ? line.left(LongestLine) + QChar(0x2026) : line;
}

QString ByAndWhen(const Version& version) {
    return Line(AuthorText(version)) + ", " + Line(LocalTime(version.begunAt));
}

QString ListOf(QStringList lines) {
    if (lines.size() > MostLines) {
        const auto more = lines.size() - (MostLines - 1);
        lines = lines.mid(0, MostLines - 1);
        lines.append(QStringLiteral("and %1 more").arg(more));
    }
    return lines.join(QStringLiteral("\r\n"));
}

QString ListOf(const std::vector<std::string>& differences) {
    QStringList lines;
    for (const std::string& difference : differences) {
        lines.append(Line(difference));
    }
    return ListOf(std::move(lines));
}

} // namespace

Over AskToGoOver(const QString& node, const SeenNode& seen, const Obstacle& obstacle, bool together) {
    switch (obstacle.kind) {
    case Obstacle::Gone:
        Inform(node + " doesn't exist any more. It is not saved.");
        return Over::Keep;
    case Obstacle::BeingSaved:
        Inform(node + " is being saved by " + ByAndWhen(*obstacle.by) + ". Nothing was saved here.");
        return Over::Keep;
    case Obstacle::Changed:
        break;
    }
    const auto differences = Differences(seen.content, obstacle.stored.content);
    if (differences.empty()) {
        return Over::Save;
    }
    QString who = QStringLiteral("Another program has changed it");
    if (obstacle.by) {
        who = "It was changed by " + ByAndWhen(*obstacle.by);
        if (IsUnfinished(*obstacle.by)) {
            who += ", in a save that did not finish";
        }
    }
    QString question = node + " is stored otherwise than the window has loaded it. " + who + ":\r\n" +
                       ListOf(differences) + "\r\n\r\n";
    QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No | QMessageBox::Discard;
    if (together) {
        question += "What was changed here is something else. Both can be kept: the window then shows them "
                    "together, for you to save.\r\n\r\n";
        buttons |= QMessageBox::Apply;
    }
    const auto answer = MsgBox(question + "Do you want to save over that?", QMessageBox::Question, buttons,
                               QStringLiteral("Confirmation"), QMessageBox::No,
                               {{QMessageBox::Discard, QStringLiteral("&Load What Is Stored")},
                                {QMessageBox::Apply, QStringLiteral("Keep &Both")}});
    if (answer == QMessageBox::Yes || answer == QMessageBox::Apply) {
        return answer == QMessageBox::Yes ? Over::Save : Over::Both;
    }
    const bool loads =
        answer == QMessageBox::Discard &&
        Confirm("What was changed in this window and is not saved goes.\r\n\r\nDo you want to load " + node +
                " as it is stored?");
    return loads ? Over::Load : Over::Keep;
}

bool WantsItPutBack(const QString& node, const Version& save) {
    return Confirm(
        "The latest save of " + node + " did not finish: it was begun by " + ByAndWhen(save) +
        ", and only a part of it is stored.\r\n\r\nDo you want to put the node back as it was before?");
}

bool WantsItMadeWhole(const QString& node) {
    return Confirm(node + " was being made from its template when that was interrupted: only a part of it is "
                          "stored.\r\n\r\nDo you want to make the rest?");
}

QString TellOthersChange(const QString& node, const SeenNode& seen, const NodeContent& stored,
                         const std::optional<Version>& by) {
    if (!stored.node) {
        return node + " doesn't exist any more.";
    }
    if (Differences(seen.content, stored).empty()) {
        return {};
    }
    const bool known = by && by->number > seen.version;
    return node + " was changed by " + (known ? ByAndWhen(*by) : QStringLiteral("another program")) +
           " since it was loaded here.";
}

bool WantsVersionBack(const QString& node, const Version& version, const std::vector<std::string>& changes,
                      const std::optional<std::vector<QString>>& uses, bool unsaved) {
    QString question = node + " would be as it was before change " + QString::number(version.number) +
                       ", by " + ByAndWhen(version) + ":\r\n" + ListOf(changes);
    if (uses && !uses->empty()) {
        question += "\r\n\r\nThese refer to it:\r\n" + ListOf(QStringList(uses->begin(), uses->end()));
    } else if (uses) {
        question += "\r\n\r\nNothing refers to it.";
    }
    if (unsaved) {
        question += "\r\n\r\nWhat was changed in this window and is not saved goes.";
    }
    return Confirm(question + "\r\n\r\nDo you want to put the node back?");
}

} // namespace KAL_AUTO_Node
