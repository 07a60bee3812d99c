#include "testing/Person.h"

#include <QScrollBar>

namespace KAL_AUTO_Node {
namespace {

const std::string LowBox = "txtActionsDTMFRangeLow";
const std::string HighBox = "txtActionsDTMFRangeHigh";

// The editors of an action, and no others, are open and sit on it, as wide as the font asks for.
void ExpectEditorsOver(int row) {
    const QTreeView* view = Person::List("LVActions");
    std::set<std::string> editors;
    QPoint place;
    for (const auto& [editor, column, twips] : {std::tuple{"cmbActionsNode", 2, 975},
                                                {"cmbActionsNumber", 0, 700},
                                                {LowBox.c_str(), 1, 750},
                                                {"txtActionsDash", 0, 100},
                                                {HighBox.c_str(), 0, 750}}) {
        const QRect cell = view->visualRect(view->model()->index(row, std::max(1, column)));
        place = column > 0 ? view->viewport()->mapToGlobal(cell.topLeft()) : place;
        const auto* control = Person::Find<QWidget>(editor);
        EXPECT_EQ(control->mapToGlobal(QPoint()), place) << editor << ", row " << row;
        EXPECT_EQ(control->size(), QSize(twips * view->fontInfo().pixelSize() / 180, cell.height()))
            << editor;
        place.rx() += control->width();
        editors.insert(editor);
    }
    EXPECT_EQ(Person::OpenEditors(), editors);
}

using InPlaceEditors = EditorTest;

TEST_F(InPlaceEditors, FollowTheirRow) {
    Edit(4, [] {
        Person::Press("cmdActionsEdit");
        Person::ClickRow("LVActions", 2);
        ExpectEditorsOver(2);
        const auto resize = [](int height) {
            Person::Window("GUI")->resize(1250, height);
            QCoreApplication::processEvents();
        };
        resize(800);
        ExpectEditorsOver(2);
        QTreeView* list = Person::List("LVActions");
        list->header()->resizeSection(1, 150);
        ExpectEditorsOver(2);
        // A click gives the columns their widths back.
        Person::ClickRow("LVActions", 50);
        EXPECT_EQ(list->columnWidth(1), 106);
        ExpectEditorsOver(50);
        QFont large = list->font();
        large.setPixelSize(18);
        Person::Window("GUI")->setFont(large);
        QCoreApplication::processEvents();
        EXPECT_EQ(list->columnWidth(1), 160);
        EXPECT_FALSE(Person::List("LVExceptions")->verticalScrollBar()->isVisible()) << "room for all rows";
        Person::ClickRow("LVActions", 49);
        ExpectEditorsOver(49);
        large.setPixelSize(12);
        Person::Window("GUI")->setFont(large);
        resize(800);
        Person::ClickRow("LVActions", 50);
        // Those of a row that is half out of sight would float over something else.
        const QRect row = list->visualRect(list->model()->index(50, 1));
        resize(800 - (list->viewport()->height() - row.center().y()));
        EXPECT_TRUE(list->viewport()->rect().intersects(row));
        EXPECT_TRUE(Person::OpenEditors().empty());
    });
}

TEST_F(InPlaceEditors, AreMarkedByWhoGoesThere) {
    Edit(1, [] {
        Person::Press("cmdPromptsEdit");
        Person::ClickRow("LVPrompts", 1);
        QWidget* prompts = Person::List("LVPrompts")->viewport();
        QTest::mouseClick(prompts, Qt::LeftButton, {}, prompts->rect().bottomLeft());
        EXPECT_EQ(Person::Focused(), "cmbPromptsNode");
        Person::Press("cmdActionsEdit");
        Person::ClickRow("LVActions", 5);
        Person::TypeOver(LowBox, "*");
        Person::TextBox(HighBox)->setFocus();
        EXPECT_EQ(Person::TextBox(HighBox)->selectedText(), "660");
        EXPECT_TRUE(Person::TextBox("txtActionsDash")->isReadOnly());
        // What comes to the front and goes again does not select, so that what is typed goes on.
        for (const Qt::FocusReason reason :
             {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason, Qt::MenuBarFocusReason}) {
            Person::TextBox(LowBox)->end(false);
            for (const QEvent::Type type : {QEvent::FocusOut, QEvent::FocusIn}) {
                QFocusEvent focus(type, reason);
                QApplication::sendEvent(Person::TextBox(LowBox), &focus);
            }
            EXPECT_EQ(Person::TextBox(LowBox)->selectedText(), "") << reason;
        }
        // All digits can be read, in whatever unit the font has its size.
        const QLineEdit* low = Person::TextBox(LowBox);
        QFont font = low->font();
        for (const bool points : {false, true}) {
            points ? font.setPointSizeF(9) : font.setPixelSize(12);
            Person::Window("GUI")->setFont(font);
            Person::ClickRow("LVActions", 5);
            Person::TypeOver(LowBox, "12345678901234567890");
            EXPECT_LT(low->fontMetrics().horizontalAdvance(low->text()), low->width());
            EXPECT_GT(low->fontMetrics().horizontalAdvance(low->text()), low->width() / 2);
            Person::TypeOver(LowBox, "601");
            EXPECT_EQ(low->font().toString(), Person::Window("GUI")->font().toString());
        }
        // Emptied and left for another row: neither row changes.
        Person::TypeOver(LowBox, "*");
        Person::ClickRow("LVActions", 0);
        EXPECT_EQ(Person::Row("LVActions", 5), "6|601-660|CMD 1||CMD|1|1|601|660");
        EXPECT_EQ(Person::Row("LVActions", 0), "1|1-1|AUTO 8||AUTO|9|8|1|1");
        // A click beside the rows leaves the person where she types, one of the other button goes on there.
        QWidget* rows = Person::List("LVActions")->viewport();
        QTest::mouseClick(rows, Qt::LeftButton, {}, {5, rows->height() - 2});
        EXPECT_EQ(Person::Focused(), LowBox);
        QTimer::singleShot(0, [] { QApplication::activePopupWidget()->close(); });
        const QPoint there = Person::InRow("LVActions", 3);
        QContextMenuEvent menu(QContextMenuEvent::Mouse, there, rows->mapToGlobal(there));
        QApplication::sendEvent(rows, &menu);
        ExpectEditorsOver(3);
    });
}

} // namespace
} // namespace KAL_AUTO_Node
