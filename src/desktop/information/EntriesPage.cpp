#include "controls/Making.h"
#include "information/Pages.h"
#include "nodes/AutoNodeReader.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

namespace KAL_AUTO_Node {

EntriesPage::EntriesPage()
    : InformationPage("InfoEntries", QStringLiteral("&Entries"),
                      {QStringLiteral("Entries"), QStringLiteral("Lead To"), QStringLiteral("Label"),
                       QStringLiteral("Waits"), QStringLiteral("Reasons")}),
      entry_(Named(new QLineEdit(this), "txtInfoEntry")), answer_(Named(new QLabel(this), "lblInfoAnswer")) {
    constexpr int longest = 20; // a caller may key more than a node takes
    entry_->setMaxLength(longest);
    entry_->setMaximumWidth(entry_->fontMetrics().averageCharWidth() * longest);
    answer_->setWordWrap(true);
    answer_->setTextFormat(Qt::PlainText);
    auto* row = new QHBoxLayout;
    row->addWidget(Caption(this, "lblInfoEntry", "What a caller keys:", entry_));
    row->addWidget(entry_);
    row->addStretch(1);
    Room().insertLayout(1, row);
    Room().insertWidget(2, answer_);
    connect(entry_, &QLineEdit::textChanged, this, &EntriesPage::AnswerEntry);
}

void EntriesPage::Clear() {
    space_.reset();
    entry_->clear();
    AnswerEntry();
}

void EntriesPage::Begin(StoreReader& reader) {
    struct Row {
        int length;
        const DigitInterval* interval;
    };

    const auto read = [](DataBase& dataBase, const Subject& subject, const StoreReader::Look&) {
        auto node = ReadAutoNode(dataBase, subject.Place(), Labels::ReadOfNodes);
        if (!node) {
            throw RuntimeError(subject.Place().Text() + " does not exist");
        }
        Menu menu(subject.key.number, std::move(*node));
        auto lengths = DigitSpaceOf(menu.Node());
        return std::make_shared<const Space>(Space{std::move(menu), std::move(lengths)});
    };
    Ask(reader, read, [this](std::shared_ptr<const Space> space) {
        space_ = std::move(space);
        std::vector<Row> rows;
        for (const DigitLength& length : space_->lengths) {
            for (const DigitInterval& interval : length.intervals) {
                rows.push_back({length.length, &interval});
            }
        }
        const auto text = [space = space_, rows](int row) {
            const auto& [length, interval] = rows[static_cast<std::size_t>(row)];
            return TextOf(space->menu, length, *interval);
        };
        const auto cell = [text](int row, int column) {
            const IntervalText said = text(row);
            switch (column) {
            case 0:
                return FromUtf8(said.entries);
            case 1:
                return ShownLabel(Visible(said.leadsTo));
            case 2:
                return ShownLabel(Visible(said.label));
            case 3:
                return ShownLabel(Visible(said.waits));
            default:
                return FromUtf8(said.codes);
            }
        };
        List().Activated = [this, text](int row) {
            if (const auto node = text(row).node) {
                Go(*node);
            }
        };
        Show(rows.size(), cell, FromUtf8(Visible(EntriesText(space_->menu))) + '.');
        AnswerEntry();
    });
}

void EntriesPage::showEvent(QShowEvent* event) {
    // Of a page that is in no window yet, whose controls go round, the toolkit finds this done already.
    setTabOrder(entry_, &List());
    InformationPage::showEvent(event);
}

void EntriesPage::AnswerEntry() {
    const std::string entry = entry_->text().toStdString();
    const QString answer = space_ == nullptr || entry.empty()
                               ? QString()
                               : ShownLabel(Visible(EntryAnswer(space_->menu, space_->lengths, entry)));
    answer_->setText(answer);
    // The focus stays in the text, where it is heard.
    entry_->setAccessibleDescription(answer);
}

} // namespace KAL_AUTO_Node
