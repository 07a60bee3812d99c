#include "information/InformationWindow.h"

#include "controls/Making.h"
#include "information/Pages.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/Templates.h"
#include "nodes/TypeCatalogue.h"

#include <QKeyEvent>
#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace KAL_AUTO_Node {

InformationWindow::InformationWindow(QWidget* editor, StoreReader& reader)
    : QWidget(editor, Qt::Window), reader_(reader), note_(Named(new QLabel(this), "lblInfoNote")),
      tabs_(Named(new QTabWidget(this), "tabInformation")), uses_(new UsesPage),
      history_(new HistoryPage), pages_{uses_, history_, new EntriesPage, new FindingsPage} {
    setObjectName(QStringLiteral("frmInformation"));
    setAttribute(Qt::WA_QuitOnClose, false);
    note_->setWordWrap(true);
    note_->setTextFormat(Qt::PlainText);
    note_->hide();
    auto* window = new QVBoxLayout(this);
    window->addWidget(note_);
    window->addWidget(tabs_, 1);
    for (InformationPage* page : pages_) {
        tabs_->addTab(page, page->Title());
        page->TitleChanged = [this] { NameTabs(); };
        page->Go = [this](const NodeKey& node) { Go(node); };
    }
    history_->PutBack = [this](const NodePlace& place, const Version& version) {
        PutBack(place, version, uses_->Uses());
    };
    const QFontMetrics metrics = fontMetrics();
    resize(metrics.averageCharWidth() * 95, metrics.height() * 30);
}

void InformationWindow::Show(const Subject& subject) {
    if (subject != subject_) {
        subject_ = subject;
        Note({});
        setWindowTitle(QStringLiteral("Node Information"));
        for (InformationPage* page : pages_) {
            tabs_->setTabEnabled(tabs_->indexOf(page), page->IsOf(subject.key));
        }
    }
    if (isVisible()) {
        ReadAgain();
    } else {
        show();
    }
}

void InformationWindow::ReadAgain() {
    if (!isVisible()) {
        return;
    }
    reader_.Forget();
    ReadName();
    // What the person looks at comes first.
    const int first = tabs_->currentIndex();
    for (int i = 0; i < tabs_->count(); ++i) {
        pages_[static_cast<std::size_t>((first + i) % tabs_->count())]->Read(reader_, subject_);
    }
}

void InformationWindow::ReadName() {
    struct Name {
        std::string node;
        std::string label;
        bool exists;
    };

    reader_.Ask(
        [subject = subject_](DataBase& dataBase, const StoreReader::Look&) {
            return Name{TypeNames(dataBase).Text(subject.key),
                        LabelOf(dataBase, subject.partition, subject.key),
                        IsNodeExisted(dataBase, subject.partition, subject.key)};
        },
        [this](const Answer<Name>& name) {
            if (name.content) {
                setWindowTitle(ShownLabel(Visible(name.content->node + ' ' + name.content->label)) +
                               (name.content->exists ? "" : "(does not exist)") + ", " +
                               FromUtf8(subject_.partition.Text()) + " - Node Information");
            }
        });
}

void InformationWindow::Note(const QString& text) {
    note_->setText(text);
    note_->setVisible(!text.isEmpty());
}

void InformationWindow::NameTabs() {
    for (InformationPage* page : pages_) {
        tabs_->setTabText(tabs_->indexOf(page), page->Title());
    }
}

void InformationWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else if (event->key() == Qt::Key_F5) {
        ReadAgain();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void InformationWindow::Place() {
    // Its own frame, which is not known before it is there, is as that of the editor.
    const QMargins frame = parentWidget()->windowHandle() != nullptr
                               ? parentWidget()->windowHandle()->frameMargins()
                               : QMargins();
    const QRect room = parentWidget()->screen()->availableGeometry().marginsRemoved(frame);
    const QRect editor = parentWidget()->frameGeometry();
    resize(size().boundedTo(room.size()));
    const int right = editor.right() + 1 + frame.left();
    const int left = editor.left() - frame.right() - width();
    const int x = right + width() > room.right() && left >= room.left() ? left : right;
    move(std::clamp(x, room.left(), room.right() + 1 - width()),
         std::clamp(parentWidget()->geometry().top(), room.top(), room.bottom() + 1 - height()));
}

void InformationWindow::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) {
        if (!std::exchange(placed_, true)) {
            Place();
            uses_->findChild<RowTable*>()->setFocus();
        }
        ReadAgain();
    }
    QWidget::showEvent(event);
}

void InformationWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous()) {
        reader_.Forget();
        reader_.Rest();
    }
}

} // namespace KAL_AUTO_Node
