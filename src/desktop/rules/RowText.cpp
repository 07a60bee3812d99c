#include "rules/RowText.h"

#include "controls/Utf8.h"
#include "form/GUI.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"
#include "rules/Rows.h"

#include <QStringList>

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

// Above every list that a node has; whatever is longer was never meant for one.
constexpr std::size_t MostRows = NumberBox::MostNumbers;
constexpr qsizetype MostCharacters = 16'000'000;

// Why a line is refused.
class Refusal : public RuntimeError {
  public:
    explicit Refusal(const QString& why) : RuntimeError(why.toStdString()) {}
};

QString Quoted(const QString& cell) {
    constexpr qsizetype longest = 40;
    const QString shown = FromUtf8(Visible(cell.left(longest).toStdString()));
    return '"' + shown + (cell.size() > longest ? "\u2026" : "") + '"';
}

// How many cells lead a row.
qsizetype Leads(RowKind kind) { return kind == RowKind::Actions ? 2 : kind == RowKind::Exceptions ? 1 : 0; }

// A label is anybody's text: a spreadsheet would compute what begins like a formula, and look for the end of
// what begins with a quote in the next rows.
QString AsCell(const QString& label) {
    QString cell = label.simplified();
    if (cell.startsWith('"')) {
        return '"' + cell.replace('"', QStringLiteral("\"\"")) + '"';
    }
    return cell.startsWith('=') || cell.startsWith('+') || cell.startsWith('-') || cell.startsWith('@')
               ? '\'' + cell
               : cell;
}

bool IsDigits(const QString& text) {
    return !text.isEmpty() &&
           std::ranges::all_of(text, [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
}

// Reads line after line.
class Reader {
  public:
    Reader(RowKind kind, const GUI& gui) : kind_(kind), gui_(gui) {}

    std::vector<ListRow> Take() && { return std::move(rows_); }

    void Add(const QString& line) {
        QStringList cells = line.split('\t');
        std::ranges::for_each(cells, [](QString& cell) { cell = cell.trimmed(); });
        const qsizetype leads = Leads(kind_);
        if (cells.size() < leads + 2) {
            throw Refusal("it has " + QString::number(cells.size()) +
                          (cells.size() == 1 ? " cell" : " cells") + " instead of " +
                          QString::number(leads + 2) + " or more");
        }
        if (rows_.size() == MostRows) {
            throw Refusal("there are more rows than a list takes");
        }
        const QString& type = cells[leads];
        const QString& number = cells[leads + 1];
        switch (kind_) {
        case RowKind::Prompts:
            rows_.push_back(PromptRow(Target(Slot::Prompts, type, number)));
            break;
        case RowKind::Actions:
            for (const QString& digits : {cells[0], cells[1]}) {
                if (!IsDigits(digits)) {
                    throw Refusal("a range consists of digits, not of " + Quoted(digits));
                }
                // The box would cut it off when it is opened on the row.
                if (const int most = gui_.txtActionsDTMFRangeLow->maxLength(); digits.size() > most) {
                    throw Refusal(Quoted(digits) + " has more than " + QString::number(most) + " digits");
                }
            }
            rows_.push_back(ActionRow(
                {0, Target(Slot::Actions, type, number), cells[0].toStdString(), cells[1].toStdString()}));
            break;
        case RowKind::Exceptions:
            AddException(cells[0], type, number);
            break;
        }
    }

  private:
    void AddException(const QString& name, const QString& type, const QString& number) {
        const auto rule = std::ranges::find_if(
            Branches, [&](const Branch& branch) { return name == QLatin1String(branch.label); });
        if (rule == Branches.end()) {
            throw Refusal("there is no exception " + Quoted(name));
        }
        if (std::ranges::find(rows_, rule->slot, &ListRow::slot) != rows_.end()) {
            throw Refusal("the exception " + Quoted(name) + " is there already");
        }
        rows_.push_back(ExceptionRow(BranchOf(rule->slot), Target(rule->slot, type, number)));
    }

    // What the pickers of a slot offer.
    [[nodiscard]] Reference Target(Slot slot, const QString& name, const QString& number) const {
        const PickList& types = *gui_.NodePicker(slot);
        const int entry = types.IndexOf(name);
        if (entry < 0) {
            throw Refusal("the type " + Quoted(name) + " cannot be chosen here");
        }
        const int type = types.ItemData(entry);
        if (slot == Slot::Prompts && type == NumberlessType) {
            throw Refusal(Quoted(name) + " stands for a list without prompts");
        }
        const int last = type == NumberlessTypeOf(slot) ? 0 : gui_.Lists().MaxNodeNumberCollection[type];
        // A type without numbers is chosen with the number 1 all the same.
        const int chosen = last < 1 && number.isEmpty() ? 1 : IsDigits(number) ? number.toInt() : 0;
        if (chosen < 1 || (chosen > 1 && gui_.Lists().Judge(slot, {type, chosen}) != Standing::Fine)) {
            throw Refusal(Quoted(name) +
                          (last < 1 ? QStringLiteral(" has no number ")
                                    : " has the numbers 1 to " + QString::number(last) + ", not ") +
                          Quoted(number));
        }
        return {type, gui_.Lists().NodeNameCollection[type], chosen, {}};
    }

    RowKind kind_;
    const GUI& gui_;
    std::vector<ListRow> rows_;
};

} // namespace

QString TextOfRows(RowKind kind, const ListView& list, std::span<const int> rows) {
    QStringList lines;
    for (const int place : rows) {
        const ListRow& row = list.Row(place);
        QStringList cells;
        if (kind == RowKind::Actions) {
            cells << row.low << row.high;
        } else if (kind == RowKind::Exceptions) {
            cells << list.Cell(place, LeadColumn);
        }
        const bool numberless = row.typeID == NumberlessTypeOf(row.slot);
        cells << row.name << (numberless ? QString() : QString::number(row.number)) << AsCell(row.label);
        lines.append(cells.join('\t'));
    }
    return lines.join('\n') + '\n';
}

PastedRows RowsOfText(RowKind kind, const GUI& gui, const QString& text) {
    if (text.size() > MostCharacters) {
        return {{}, QStringLiteral("The clipboard holds more than a list takes. Nothing was pasted.")};
    }
    Reader reader(kind, gui);
    qsizetype begin = 0;
    for (int number = 1; begin < text.size(); ++number) {
        qsizetype end = text.indexOf('\n', begin);
        end = end < 0 ? text.size() : end;
        const QString line = text.mid(begin, end - begin);
        begin = end + 1;
        if (line.trimmed().isEmpty()) {
            continue;
        }
        try {
            reader.Add(line);
        } catch (const Refusal& refusal) {
            return {{},
                    "Line " + QString::number(number) + " cannot be pasted: " + refusal.what() +
                        ". Nothing was pasted."};
        }
    }
    std::vector<ListRow> rows = std::move(reader).Take();
    return {rows, rows.empty() ? QStringLiteral("There are no rows to paste.") : QString()};
}

} // namespace KAL_AUTO_Node
