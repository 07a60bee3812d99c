#include "information/GoToDialog.h"

#include "controls/Making.h"
#include "controls/Utf8.h"
#include "information/RowTable.h"
#include "nodes/FindNodes.h"
#include "nodes/Overview.h"
#include "platform/FoldCase.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace KAL_AUTO_Node {

namespace {

GoToDialog::Nodes ReadNodes(DataBase& dataBase, Partition partition, const StoreReader::Look& look) {
    GoToDialog::Nodes nodes{{}, TypeNames(dataBase)};
    ReadRegister(dataBase, partition, [&](const NodeKey& key, std::string_view, std::string_view label) {
        look();
        if (key.number != TemplateNumber) {
            nodes.all.push_back({key, std::string(label), FoldCase(label)});
        }
    });
    std::stable_partition(nodes.all.begin(), nodes.all.end(),
                          [](const GoToDialog::Node& node) { return node.key.typeID == AutoType; });
    return nodes;
}

} // namespace

GoToDialog::GoToDialog(QWidget* parent, StoreReader& reader, Partition partition)
    : QDialog(parent), reader_(reader) {
    setObjectName(QStringLiteral("frmGoTo"));
    setWindowTitle(QStringLiteral("Go To"));
    setAttribute(Qt::WA_QuitOnClose, false);
    text_ = Named(new QLineEdit(this), "txtGoTo");
    text_->installEventFilter(this);
    list_ = new RowTable(this, "LVGoTo", QStringLiteral("Nodes"),
                         {QStringLiteral("Node"), QStringLiteral("Label")});
    found_ = Named(new QLabel(this), "lblGoToFound");
    go_ = Button(this, "cmdGoTo", "Go To", "Goes to an AUTO node, and tells what is known of another");
    auto* cancel = Button(this, "cmdGoToCancel", "Cancel", "Close and stay");
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(go_);
    buttons->addWidget(cancel);

    auto* window = new QVBoxLayout(this);
    window->addWidget(Caption(this, "lblGoTo", "Number, or words of the label:", text_));
    window->addWidget(text_);
    window->addWidget(list_, 1);
    window->addWidget(found_);
    window->addLayout(buttons);
    const QFontMetrics metrics = fontMetrics();
    resize(metrics.averageCharWidth() * 70, metrics.height() * 26);

    connect(text_, &QLineEdit::textChanged, this, &GoToDialog::Find);
    connect(go_, &QPushButton::clicked, this, [this] { Go(list_->Chosen()); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    list_->Activated = [this](int row) { Go(row); };
    list_->Changed = [this](int row) { go_->setEnabled(row >= 0); };
    go_->setDefault(true);
    go_->setEnabled(false);
    Tell(QStringLiteral("Reading the nodes..."));
    reader_.Ask([partition](DataBase& dataBase,
                            const StoreReader::Look& look) { return ReadNodes(dataBase, partition, look); },
                [this](Answer<Nodes>& answer) { Take(answer); });
}

GoToDialog::~GoToDialog() { reader_.Forget(); }

void GoToDialog::Take(Answer<Nodes>& answer) {
    if (!answer.content) {
        Tell("The nodes cannot be read: " + FromUtf8(answer.failure));
        return;
    }
    nodes_ = std::move(*answer.content);
    for (const auto& [typeID, name] : nodes_.types.All()) {
        folded_.emplace(typeID, FoldCase(name));
    }
    Find();
    list_->FitColumns();
}

void GoToDialog::Find() {
    const NodeWords words(text_->text().toStdString());
    fitting_.clear();
    std::size_t best = 0;
    bool named = false;
    int typeID = AutoType;
    const std::string* type = &folded_[typeID];
    for (std::size_t i = 0; i < nodes_.all.size(); ++i) {
        const auto& [key, label, folded] = nodes_.all[i];
        if (std::exchange(typeID, key.typeID) != key.typeID) {
            type = &folded_[typeID]; // seldom: they stand by their types
        }
        if (!words.Fit(folded, *type, key.number, true)) {
            continue;
        }
        if (!named && words.Name(key.number)) {
            named = true;
            best = fitting_.size();
        }
        fitting_.push_back(i);
    }
    const auto count = static_cast<int>(fitting_.size());
    list_->Show(count, [this](int row, int column) { return Cell(row, column); });
    if (count > 0) {
        list_->Choose(static_cast<int>(best));
    }
    Tell(count == 0   ? QStringLiteral("No node is found.")
         : count == 1 ? QStringLiteral("1 node")
                      : QString::number(count) + " nodes");
}

void GoToDialog::Tell(const QString& found) {
    found_->setText(found);
    // The focus stays in the text, where it is heard.
    text_->setAccessibleDescription(found);
}

QString GoToDialog::Cell(int row, int column) const {
    const Node& node = nodes_.all[fitting_[static_cast<std::size_t>(row)]];
    return column == 0 ? FromUtf8(Visible(nodes_.types.Text(node.key))) : ShownLabel(Visible(node.label));
}

void GoToDialog::Go(int row) {
    if (row >= 0) {
        chosen_ = nodes_.all[fitting_[static_cast<std::size_t>(row)]].key;
        accept();
    }
}

bool GoToDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == text_ && event->type() == QEvent::KeyPress) {
        constexpr std::array keys = {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown};
        if (std::ranges::find(keys, static_cast<QKeyEvent*>(event)->key()) != keys.end()) {
            QCoreApplication::sendEvent(list_, event);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace KAL_AUTO_Node
