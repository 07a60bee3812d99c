#include "controls/Making.h"
#include "history/History.h"
#include "information/Pages.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPlainTextEdit>

namespace KAL_AUTO_Node {

HistoryPage::HistoryPage()
    : InformationPage(
          "InfoHistory", QStringLiteral("&History"),
          {QStringLiteral("Change"), QStringLiteral("When"), QStringLiteral("What"), QStringLiteral("Who")}),
      words_(Named(new QPlainTextEdit(this), "txtInfoChanged")),
      putBack_(
          Button(this, "cmdInfoPutBack", "&Put Back...", "Puts the node back as it was before this change")) {
    words_->setReadOnly(true);
    words_->setTabChangesFocus(true);
    auto* caption = Caption(this, "lblInfoChanged", "What this change has changed:", words_);
    Room().addWidget(caption);
    Room().addWidget(words_, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(putBack_);
    Room().addLayout(buttons);
    List().Changed = [this](int row) { ShowChange(row); };
    connect(putBack_, &QPushButton::clicked, this, [this] {
        if (const int row = List().Chosen(); row >= 0) {
            PutBack(Shown().Place(), changes_[static_cast<std::size_t>(row)].version);
        }
    });
    ShowChange(-1);
}

void HistoryPage::Clear() {
    changes_.clear();
    ShowChange(-1);
}

void HistoryPage::Begin(StoreReader& reader) {
    const auto read = [](DataBase& dataBase, const Subject& subject, const StoreReader::Look&) {
        History history(dataBase);
        return ReadChanges(dataBase, history, subject.Place());
    };
    Ask(reader, read, [this](std::vector<Change> changes) {
        changes_ = std::move(changes);
        const auto cell = [this](int row, int column) {
            const Version& version = changes_[static_cast<std::size_t>(row)].version;
            switch (column) {
            case 0:
                return QString::number(version.number);
            case 1:
                return FromUtf8(Visible(LocalTime(version.begunAt)));
            case 2:
                return ShownLabel(Visible(OutcomeOf(version)));
            default:
                return ShownLabel(Visible(AuthorText(version)));
            }
        };
        Show(changes_.size(), cell,
             changes_.empty() ? QStringLiteral("No changes of it are kept.")
                              : QStringLiteral("Its changes, newest first."));
    });
}

void HistoryPage::ShowChange(int row) {
    putBack_->setEnabled(row >= 0);
    QString text;
    if (row >= 0) {
        for (const std::string& words : changes_[static_cast<std::size_t>(row)].words) {
            text += ShownLabel(Visible(words)) + '\n';
        }
        text = text.isEmpty() ? QStringLiteral("nothing differs") : text.chopped(1);
    }
    words_->setPlainText(text);
}

} // namespace KAL_AUTO_Node
