#include "audit/PartitionCheck.h"
#include "controls/Making.h"
#include "history/History.h"
#include "information/Pages.h"

#include <QLabel>

namespace KAL_AUTO_Node {

FindingsPage::FindingsPage()
    : InformationPage("InfoFindings", QStringLiteral("&Findings"),
                      {QStringLiteral("Severity"), QStringLiteral("Finding"), QStringLiteral("Where"),
                       QStringLiteral("What")}),
      meaning_(Named(new QLabel(this), "lblInfoMeaning")) {
    meaning_->setWordWrap(true);
    meaning_->setTextFormat(Qt::PlainText);
    Room().addWidget(meaning_);
    List().Changed = [this](int row) { Explain(row); };
}

void FindingsPage::Clear() {
    findings_.clear();
    Explain(-1);
}

void FindingsPage::Begin(StoreReader& reader) {
    const auto read = [](DataBase& dataBase, const Subject& subject, const StoreReader::Look& look) {
        CheckReader whileReading;
        whileReading.takeAutoNode = [&](int, const AutoNode&) { look(); };
        History history(dataBase);
        auto findings = CheckPartition(dataBase, history, subject.partition, whileReading).findings;
        std::erase_if(findings, [&](const Finding& finding) { return finding.holder != subject.key; });
        return findings;
    };
    Ask(reader, read, [this](std::vector<Finding> findings) {
        findings_ = std::move(findings);
        const auto cell = [this](int row, int column) {
            const Finding& finding = findings_[static_cast<std::size_t>(row)];
            switch (column) {
            case 0:
                return QString::fromLatin1(NameOf(RuleOf(finding.fault).severity));
            case 1:
                return QString::fromLatin1(RuleOf(finding.fault).code);
            case 2:
                return ShownLabel(Visible(finding.where));
            default:
                return ShownLabel(Visible(finding.subject));
            }
        };
        Show(findings_.size(), cell,
             findings_.empty() ? QStringLiteral("Nothing is found wrong with it.")
                               : QStringLiteral("What is found wrong with it."));
    });
}

void FindingsPage::Explain(int row) {
    const FaultRule* rule = row < 0 ? nullptr : &RuleOf(findings_[static_cast<std::size_t>(row)].fault);
    meaning_->setText(rule == nullptr ? QString() : FromUtf8(rule->meaning) + ' ' + FromUtf8(rule->advice));
    List().setAccessibleDescription(meaning_->text());
}

} // namespace KAL_AUTO_Node
