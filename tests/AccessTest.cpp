#include "Walk.h"

#include <QBitmap>
#include <QPainter>
#include <QWindow>

namespace KAL_AUTO_Node {
namespace {

class Access : public EditorTest {};

// For whatever has the focus.
void Press(int key, Qt::KeyboardModifiers with = Qt::NoModifier) {
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), with);
}

TEST_F(Access, TheTreeHoldsWhatCanBeUsedByItsName) {
    Edit(1, [&] {
        const auto spoken = [](const std::string& name) {
            return QAccessible::queryAccessibleInterface(Person::Find<QWidget>(name));
        };
        ExpectAs("editor", Person::Window("GUI"));
        EXPECT_EQ(Person::Text("cmbPromptsNode") + Person::Text("cmbActionsNode"), "") << "chosen by nobody";
        const auto ink = [](const QImage& arrow) {
            return QRegion(QBitmap::fromImage(arrow.createAlphaMask(Qt::ThresholdAlphaDither)));
        };
        for (const auto& [back, on] : {std::pair{"cmdFirst", "cmdLast"}, {"cmdPrevious", "cmdNext"}}) {
            const auto drawn = [&](const char* button, QIcon::Mode mode = QIcon::Normal) {
                const QIcon icon = Person::Button(button)->icon();
                QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
                image.fill(Qt::transparent);
                QPainter painter(&image);
                icon.paint(&painter, {20, 20, 60, 60}, Qt::AlignCenter, mode);
                EXPECT_TRUE(painter.transform().isIdentity());
                EXPECT_EQ(ink(image).boundingRect(),
                          ink(icon.pixmap(60, mode).toImage()).boundingRect().translated(20, 20));
                return image;
            };
            EXPECT_NE(drawn(on, QIcon::Disabled), drawn(on));
            EXPECT_EQ(ink(drawn(back)), ink(drawn(on).mirrored(true, false)));
            const QRect place = ink(drawn(on)).boundingRect();
            EXPECT_LE((place.center() - QPoint(50, 50)).manhattanLength(), 3) << on;
            EXPECT_TRUE(ink(drawn(on)).contains(place.topLeft() + QPoint(1, 3)));
        }
        EXPECT_NE(Person::Button("cmdLast")->icon().pixmap(60).toImage(),
                  Person::Button("cmdNext")->icon().pixmap(60).toImage());
        QAccessibleInterface* exceptions = spoken("LVExceptions");
        ASSERT_EQ(exceptions->childCount(), 5);
        EXPECT_EQ(exceptions->child(0)->text(QAccessible::Name), "Timeout, XFER 1, Operator");
        Person::ClickRow("LVExceptions", 0);
        for (int row = 0; row < 5; ++row) {
            QAccessibleInterface* one = exceptions->child(row);
            EXPECT_EQ(exceptions->indexOfChild(one), row);
            EXPECT_EQ(one->parent(), exceptions);
            EXPECT_TRUE(one->isValid());
            EXPECT_EQ(exceptions->childAt(one->rect().center().x(), one->rect().center().y()), one);
            const QTreeView* list = Person::List("LVExceptions");
            const QRect cell = list->visualRect(list->model()->index(row, 1));
            const QPoint corner = list->viewport()->mapToGlobal(QPoint(0, cell.top()));
            EXPECT_EQ(one->rect(), QRect(corner, QSize(list->viewport()->width(), cell.height())));
            const QAccessible::State state = one->state();
            EXPECT_TRUE(state.selectable && state.focusable && !state.offscreen && !state.disabled);
            EXPECT_TRUE(state.selected == (row == 0) && state.focused == (row == 0)) << row;
        }
        EXPECT_EQ(exceptions->focusChild(), exceptions->child(0));
        for (const auto& [name, parts] : {std::pair{"cmbNode", 1}, {"cmbSelTimeOut", 2}}) {
            QAccessibleInterface* box = spoken(name);
            EXPECT_TRUE(box->state().hasPopup && box->state().editable == (parts == 2));
            EXPECT_EQ(box->childCount(), parts);
            EXPECT_EQ(box->child(parts), nullptr);
            EXPECT_EQ(box->indexOfChild(exceptions), -1);
            EXPECT_EQ(box->indexOfChild(box->child(parts - 1)), parts - 1);
            EXPECT_EQ(box->child(0)->object(), Person::Combo(name)->view());
            EXPECT_EQ(box->actionInterface()->actionNames().front(),
                      QAccessibleActionInterface::showMenuAction());
        }
        // What is disabled cannot be used over assistive technology either.
        auto* frame = Person::Find<QFrame>("Frame1");
        for (const bool enabled : {false, true}) {
            frame->setEnabled(enabled);
            exceptions->child(2)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
            EXPECT_EQ(Person::SelectedRows("LVExceptions"), std::vector{enabled ? 2 : 0});
            spoken("cmbNode")->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
            EXPECT_EQ(Person::Combo("cmbNode")->view()->isVisible(), enabled);
        }
        Person::Combo("cmbNode")->hidePopup();
        Person::Window("GUI")->activateWindow();
        Person::WaitForFocus();
        Person::ClickRow("LVExceptions", 0);
        Person::Press("cmdExceptionsEdit");
        ExpectAs("editing-exceptions", Person::Window("GUI"));
        Person::ClickRow("LVActions", 0);
        QTest::keyClick(Person::Window("GUI"), Qt::Key_F, Qt::ControlModifier);
        Person::Press("cmdActionsEdit");
        ExpectAs("editing-and-finding", Person::Window("GUI"));
        Person::Press("cmdActionsEdit");
        // On a screen that is too small a list is scrolled to, as far as there is room for it.
        Person::Window("GUI")->setMinimumSize(0, 0);
        Person::Window("GUI")->resize(500, 200);
        QCoreApplication::processEvents();
        for (const auto& [key, list] : {std::pair{Qt::Key_3, "LVExceptions"}, {Qt::Key_1, "LVPrompts"}}) {
            QTest::keyClick(Person::Window("GUI"), key, Qt::AltModifier);
            const QTreeView* rows = Person::List(list);
            const QRect first = rows->visualRect(rows->model()->index(0, 1));
            EXPECT_TRUE(rows->viewport()->visibleRegion().boundingRect().contains(first)) << list;
        }
        QAccessibleInterface* gone = spoken("LVPrompts")->child(2);
        Person::ClickRow("LVPrompts", 2);
        Person::Press("cmdPromptsRemove");
        EXPECT_FALSE(gone->isValid());
        person_.InQuickAssign("cmdQuickActions",
                              [] { ExpectAs("quick-assign", Person::Window("frmQuickAssign")); });
    });
}

// Each page of node information, and the window that finds nodes; all by keys.
TEST_F(Access, TheWindowsBesideTheEditorAreReadAndUsedByTheirNames) {
    Edit(40, [] {
        Person::TypeLabel("Changed");
        Person::Press("cmdApply");
        Person::Window("GUI")->setGeometry(720, 30, 1080, 300);
        Press(Qt::Key_I, Qt::ControlModifier);
        QWidget* window = Person::Window("frmInformation");
        const int frame = Person::Window("GUI")->windowHandle()->frameMargins().left();
        const QPoint besideIt(720 - 2 * frame - window->width(), 30);
        EXPECT_TRUE(window->width() > 700 || window->pos() == besideIt);
        ASSERT_TRUE(window != nullptr && QTest::qWaitForWindowActive(window, 30'000));
        const auto* tabs = window->findChild<QTabWidget*>();
        EXPECT_TRUE(QTest::qWaitFor([&] { return tabs->tabText(3).contains('('); }, 30'000));
        for (const auto& [key, page] : {std::pair{Qt::Key_U, "used-by"},
                                        {Qt::Key_H, "history"},
                                        {Qt::Key_E, "entries"},
                                        {Qt::Key_F, "findings"}}) {
            QTest::keyClick(window, key, Qt::AltModifier);
            ExpectAs(page, window);
        }
        EXPECT_EQ(QAccessible::queryAccessibleInterface(Person::List("LVInfoEntries"))->childCount(), 8 * 5);
        QTest::keyClick(window, Qt::Key_E, Qt::AltModifier);
        QTest::keyClicks(QApplication::focusWidget(), "3");
        EXPECT_EQ(QAccessible::queryAccessibleInterface(Person::TextBox("txtInfoEntry"))
                      ->text(QAccessible::Description),
                  Person::Find<QLabel>("lblInfoAnswer")->text());
        QTimer::singleShot(0, [&] {
            QWidget* finding = QApplication::activeModalWidget();
            EXPECT_TRUE(QTest::qWaitFor([] { return Person::Count("LVGoTo") > 0; }, 30'000));
            ExpectAs("go-to", finding);
            finding->close();
        });
        QTest::keyClick(window, Qt::Key_G, Qt::ControlModifier);
        window->activateWindow();
        QTest::keyClick(window, Qt::Key_Escape);
        EXPECT_FALSE(window->isVisible());
    });
}

} // namespace
} // namespace KAL_AUTO_Node
