#include "rules/Conflicts.h"

#include "feedback/MessageBox.h"
#include "platform/VisibleText.h"
#include "rules/Utf8.h"

#include <QStringList>

namespace KAL_AUTO_Node {

namespace {

constexpr qsizetype MostLines = 10;
constexpr qsizetype LongestLine = 160;

bool Confirm(const QString& question) {
    return MsgBox(question, QMessageBox::Question, QMessageBox::Yes | QMessageBox::No,
                  QStringLiteral("Confirmation")) == QMessageBox::Yes;
}

// Names and labels may hold anything.
QString Line(const std::string& text) {
    const QString line = FromUtf8(Visible(text));
    return line.size() > LongestLine ? line.left(LongestLine) + QChar(0x2026) : line;
}

QString ByAndWhen(const Version& version) {
    return "by " + Line(AuthorText(version)) + ", " + Line(LocalTime(version.begunAt));
}

} // namespace

bool GoesOver(const QString& node, const AutoNode& loaded, const Obstacle& obstacle) {
    switch (obstacle.kind) {
    case Obstacle::Gone:
        Inform(node + " doesn't exist any more. It is not saved.");
        return false;
    case Obstacle::BeingSaved:
        Inform(node + " is being saved " + ByAndWhen(*obstacle.by) + ". Nothing was saved here.");
        return false;
    case Obstacle::Changed:
        break;
    }
    QStringList lines;
    for (const std::string& difference : Differences(loaded, *obstacle.stored)) {
        lines.append(Line(difference));
    }
    if (lines.isEmpty()) {
        return true;
    }
    if (lines.size() > MostLines) {
        const auto more = lines.size() - (MostLines - 1);
        lines = lines.mid(0, MostLines - 1);
        lines.append(QStringLiteral("and %1 more").arg(more));
    }
    QString who;
    if (obstacle.by) {
        who = ' ' + ByAndWhen(*obstacle.by);
        if (IsUnfinished(*obstacle.by)) {
            who += ", in a save that did not finish";
        }
    }
    return Confirm(node + " was changed elsewhere since it was loaded here" + who + ":\r\n" +
                   lines.join(QStringLiteral("\r\n")) + "\r\n\r\nDo you want to save over that?");
}

bool WantsItPutBack(const QString& node, const Version& save) {
    return Confirm(
        "The latest save of " + node + " did not finish: it was begun " + ByAndWhen(save) +
        ", and only a part of it is stored.\r\n\r\nDo you want to put the node back as it was before?");
}

} // namespace KAL_AUTO_Node
