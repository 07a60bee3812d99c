#include "information/InformationPage.h"

#include <QLabel>

#include <algorithm>

namespace KAL_AUTO_Node {

InformationPage::InformationPage(const char* name, const QString& title, const QStringList& headings)
    : title_(title), told_(new QLabel(this)),
      list_(new RowTable(this, (std::string("LV") + name).c_str(), QString(title).remove('&'), headings)),
      room_(new QVBoxLayout(this)) {
    setObjectName(QString::fromLatin1(name));
    told_->setObjectName(QStringLiteral("lbl") + QString::fromLatin1(name));
    told_->setWordWrap(true);
    told_->setTextFormat(Qt::PlainText);
    room_->addWidget(told_);
    room_->addWidget(list_, 1);
}

QString InformationPage::Title() const {
    return count_ < 0 ? title_ : title_ + " (" + QString::number(count_) + ')';
}

void InformationPage::Read(StoreReader& reader, const Subject& subject) {
    if (subject != subject_) {
        subject_ = subject;
        count_ = -1;
        list_->Show(0, {});
        Clear();
        told_->setText(QStringLiteral("Reading..."));
        TitleChanged();
    }
    if (IsOf(subject.key)) {
        Begin(reader);
    }
}

void InformationPage::Show(std::size_t rows, RowTable::Cell cell, const QString& told) {
    const int chosen = list_->Chosen();
    count_ = static_cast<int>(rows);
    list_->Show(count_, std::move(cell));
    list_->FitColumns();
    if (count_ > 0) {
        list_->Choose(std::clamp(chosen, 0, count_ - 1));
    }
    told_->setText(told);
    list_->setAccessibleDescription(told);
    TitleChanged();
}

void InformationPage::Fail(const std::string& failure) {
    count_ = -1;
    list_->Show(0, {});
    Clear();
    told_->setText("This cannot be read: " + FromUtf8(failure));
    TitleChanged();
}

} // namespace KAL_AUTO_Node
