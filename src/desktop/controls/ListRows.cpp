#include "controls/ListRows.h"

#include "platform/RuntimeError.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <numeric>
#include <unordered_set>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

[[noreturn]] void RefuseRow(int row, int count) {
    throw RuntimeError(ErrorNumber::SubscriptOutOfRange,
                       "Row " + std::to_string(row) + " is not in the list of " + std::to_string(count));
}

std::vector<RowRun> RunsOf(std::span<const int> rows) {
    std::vector<RowRun> runs;
    for (const int row : rows) {
        if (runs.empty() || runs.back().first + runs.back().count != row) {
            runs.push_back({row, 0});
        }
        ++runs.back().count;
    }
    return runs;
}

// How many numbers come before one that stands there before it.
std::size_t CountUnique(const std::vector<int>& numbers) {
    if (std::ranges::adjacent_find(numbers, std::greater_equal()) == numbers.end()) {
        return numbers.size();
    }
    std::unordered_set<int> known;
    const auto taken =
        std::ranges::find_if(numbers, [&](int number) { return !known.insert(number).second; });
    return static_cast<std::size_t>(taken - numbers.begin());
}

} // namespace

QString DisplayText(const ListRow& row) {
    return row.typeID == NumberlessTypeOf(row.slot) ? row.shown
                                                    : row.shown + ' ' + QString::number(row.number);
}

QString CellOf(const ListRow& row, int number, int column) {
    switch (column) {
    case PositionColumn:
        return QString::number(number);
    case LeadColumn:
        return row.slot == Slot::Prompts   ? QString::number(number)
               : row.slot == Slot::Actions ? row.low + '-' + row.high
                                           : QString::fromLatin1(Branches[BranchOf(row.slot)].label);
    case CommandNodeColumn:
        return DisplayText(row);
    case LabelColumn:
        return row.label;
    case NodeNameColumn:
        return row.name;
    case NodeTypeIDColumn:
        return QString::number(row.typeID);
    case NodeNumberColumn:
        return QString::number(row.number);
    case DTMFRangeLowColumn:
        return row.low;
    default:
        return row.high;
    }
}

void ListRows::SetColumns(std::span<const ListColumn> columns) {
    QList<QString> captions;
    for (const ListColumn& column : columns) {
        captions.append(QString::fromUtf8(column.caption));
    }
    if (captions == captions_) {
        return;
    }
    // Columns change for good only before there are rows to select.
    beginResetModel();
    captions_ = std::move(captions);
    endResetModel();
}

const ListRow& ListRows::At(int row) const {
    if (row < 0 || row >= Count()) {
        RefuseRow(row, Count());
    }
    return rows_[static_cast<std::size_t>(row)];
}

QString ListRows::Cell(int row, int column) const {
    RequireColumn(column);
    return CellOf(At(row), Number(row), column);
}

QString ListRows::Key(int row) const {
    static_cast<void>(At(row));
    return QString::number(Number(row)) + KeySuffix;
}

int ListRows::RowOfKey(const QString& key) const {
    for (int row = 0; row < Count(); ++row) {
        if (Key(row) == key) {
            return row;
        }
    }
    throw RuntimeError(ErrorNumber::UnknownRow, "No row has the key \"" + key.toStdString() + "\"");
}

void ListRows::RequireColumn(int column) const {
    if (column < 0 || column >= captions_.size()) {
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange,
                           "Column " + std::to_string(column) + " is not in the list");
    }
}

void ListRows::CellsChanged(int firstRow, int lastRow, int lastColumn) {
    if (firstRow <= lastRow) {
        emit dataChanged(index(firstRow, 0), index(lastRow, lastColumn), {Qt::DisplayRole});
    }
}

void ListRows::Renumber(int from) {
    const bool all = !numbers_.empty();
    numbers_.clear();
    CellsChanged(all ? 0 : from, Count() - 1, LeadColumn);
}

RowChange ListRows::Set(int row, ListRow content) {
    RowChange change{{{row, 1}}, {}, {{row, 1}}, numbers_};
    change.out.push_back(std::exchange(RowAt(row), std::move(content)));
    CellsChanged(row, row, columnCount() - 1);
    return change;
}

RowChange ListRows::Swap(int row, int other) {
    const std::vector<RowRun> places = RunsOf(std::array{std::min(row, other), std::max(row, other)});
    RowChange change{places, {At(std::min(row, other)), At(std::max(row, other))}, places, numbers_};
    std::swap(RowAt(row), RowAt(other));
    CellsChanged(std::min(row, other), std::max(row, other), columnCount() - 1);
    Renumber(Count());
    return change;
}

RowChange ListRows::Move(std::span<const int> rows, int place) {
    if (rows.empty() || place < 0 || place > Count()) {
        RefuseRow(place, Count());
    }
    const int first = std::min(rows.front(), place);
    const int end = std::max(rows.back() + 1, place);
    static_cast<void>(At(first));
    static_cast<void>(At(end - 1));
    const RowRun all{first, end - first};
    RowChange change{{all}, {rows_.begin() + first, rows_.begin() + end}, {all}, numbers_};
    auto to = rows_.begin() + first;
    const auto take = [&](int row) { *to++ = change.out[static_cast<std::size_t>(row - first)]; };
    const auto takeOthers = [&](int from, int until) {
        for (int row = from; row < until; ++row) {
            if (!std::ranges::binary_search(rows, row)) {
                take(row);
            }
        }
    };
    takeOthers(first, place);
    std::ranges::for_each(rows, take);
    takeOthers(place, end);
    CellsChanged(first, end - 1, columnCount() - 1);
    Renumber(Count());
    return change;
}

RowChange ListRows::Insert(int row, std::vector<ListRow> rows) {
    if (row < 0 || row > Count()) {
        RefuseRow(row, Count());
    }
    const auto count = static_cast<int>(rows.size());
    RowChange change{{}, {}, {}, numbers_};
    if (count > 0) {
        change.inAt = {{row, count}};
        beginInsertRows({}, row, row + count - 1);
        // Of those that are there; the others' have no meaning from here on.
        numbers_.resize(numbers_.empty() ? 0 : rows_.size() + rows.size());
        rows_.insert(rows_.begin() + row, std::make_move_iterator(rows.begin()),
                     std::make_move_iterator(rows.end()));
        endInsertRows();
    }
    Renumber(row + count);
    return change;
}

RowChange ListRows::Remove(std::span<const int> rows) {
    RowChange change{RunsOf(rows), {}, {}, numbers_};
    if (rows.empty()) {
        Renumber(Count());
        return change;
    }
    for (const int row : {rows.front(), rows.back()}) {
        static_cast<void>(At(row));
    }
    const bool contiguous = change.outAt.size() == 1;
    // One run after the other would take a time that grows with the square of their number. Of a change of
    // layout that is none of the columns', their header keeps out.
    if (contiguous) {
        beginRemoveRows({}, rows.front(), rows.back());
    } else {
        emit layoutAboutToBeChanged({}, VerticalSortHint);
    }
    change.out = Replace(change.outAt, {}, {});
    if (contiguous) {
        endRemoveRows();
    } else {
        const QModelIndexList before = persistentIndexList();
        QModelIndexList after;
        for (const QModelIndex& index : before) {
            const auto removed = std::ranges::lower_bound(rows, index.row());
            const bool gone = removed != rows.end() && *removed == index.row();
            after.append(
                gone ? QModelIndex()
                     : this->index(index.row() - static_cast<int>(removed - rows.begin()), index.column()));
        }
        changePersistentIndexList(before, after);
        emit layoutChanged({}, VerticalSortHint);
    }
    Renumber(rows.front());
    return change;
}

RowChange ListRows::Replace(std::vector<ListRow> rows, std::vector<int> numbers) {
    if (!numbers.empty()) {
        numbers.resize(CountUnique(numbers));
        rows.resize(numbers.size());
        std::vector<int> places(numbers.size());
        std::iota(places.begin(), places.end(), 1);
        if (numbers == places) {
            numbers.clear();
        }
    }
    const auto first = std::ranges::mismatch(rows_, rows).in1 - rows_.begin();
    const auto longest = std::min(std::ssize(rows_), std::ssize(rows)) - first;
    std::ptrdiff_t same = 0; // at the end
    while (same < longest && rows_.end()[-1 - same] == rows.end()[-1 - same]) {
        ++same;
    }
    const auto run = [&](const std::vector<ListRow>& of) {
        const auto count = std::ssize(of) - first - same;
        return count == 0 ? std::vector<RowRun>()
                          : std::vector{RowRun{static_cast<int>(first), static_cast<int>(count)}};
    };
    RowChange change{run(rows_), {}, run(rows), numbers_};
    change.out.assign(std::make_move_iterator(rows_.begin() + first),
                      std::make_move_iterator(rows_.end() - same));
    beginResetModel();
    rows_ = std::move(rows);
    numbers_ = std::move(numbers);
    endResetModel();
    return change;
}

std::vector<ListRow> ListRows::Replace(const std::vector<RowRun>& outAt, const std::vector<RowRun>& inAt,
                                       std::vector<ListRow> in) {
    std::vector<ListRow> out;
    auto kept = rows_.begin() + (outAt.empty() ? 0 : outAt.front().first);
    for (std::size_t i = 0; i < outAt.size(); ++i) {
        const auto begin = rows_.begin() + outAt[i].first;
        const auto end = begin + outAt[i].count;
        const auto next = i + 1 < outAt.size() ? rows_.begin() + outAt[i + 1].first : rows_.end();
        std::move(begin, end, std::back_inserter(out));
        kept = std::move(end, next, kept);
    }
    if (!outAt.empty()) {
        rows_.erase(kept, rows_.end());
    }
    if (inAt.empty()) {
        return out;
    }
    std::vector<ListRow> rows;
    rows.reserve(rows_.size() + in.size());
    auto left = rows_.begin();
    auto put = in.begin();
    for (const auto& [first, count] : inAt) {
        const auto until = left + (first - std::ssize(rows));
        std::move(left, until, std::back_inserter(rows));
        std::move(put, put + count, std::back_inserter(rows));
        left = until;
        put += count;
    }
    std::move(left, rows_.end(), std::back_inserter(rows));
    rows_ = std::move(rows);
    return out;
}

RowChange ListRows::TakeBack(RowChange change) {
    RowChange again{change.inAt, {}, change.outAt, numbers_};
    if (change.InPlace() && change.numbers == numbers_) {
        auto row = change.out.begin();
        for (const auto& [first, count] : change.outAt) {
            std::swap_ranges(row, row + count, rows_.begin() + first);
            row += count;
            CellsChanged(first, first + count - 1, columnCount() - 1);
        }
        again.out = std::move(change.out);
        return again;
    }
    beginResetModel();
    again.out = Replace(change.inAt, change.outAt, std::move(change.out));
    numbers_ = std::move(change.numbers);
    endResetModel();
    return again;
}

int ListRows::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : Count(); }

int ListRows::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(captions_.size());
}

QVariant ListRows::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return Cell(index.row(), index.column());
    case Qt::UserRole:
        return index.column() == 0 ? QVariant(Key(index.row())) : QVariant();
    default:
        return {};
    }
}

QVariant ListRows::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= captions_.size()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return captions_[section];
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    default:
        return {};
    }
}

} // namespace KAL_AUTO_Node
