#include "bench/Benches.h"
#include "bench/Desk.h"
#include "bench/StockList.h"

#include <QApplication>
#include <QKeyEvent>

namespace KAL_AUTO_Node {

namespace {

// The actions list in the editor's window, used as a person does: through its buttons and keys.
class OurList {
  public:
    explicit OurList(Place place) : desk_(place) { rows_ = List().Rows(); }

    [[nodiscard]] GUI& Form() { return desk_.Form(); }

    [[nodiscard]] ListView& List() { return *Form().LVActions; }

    [[nodiscard]] const std::vector<ListRow>& Rows() const { return rows_; }

    void Restore() { List().SetRows(rows_); }

    void SelectEverySecond() {
        QItemSelection selection;
        const QAbstractItemModel* rows = List().model();
        for (int row = 0; row < List().Count(); row += 2) {
            selection.append(
                QItemSelectionRange(rows->index(row, 0), rows->index(row, rows->columnCount() - 1)));
        }
        List().selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    }

    void SelectAll() {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::ControlModifier);
        QApplication::sendEvent(&List(), &press);
    }

    // Otherwise the toolkit takes Ctrl as held from then on.
    void ReleaseKeys() {
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_Control, Qt::NoModifier);
        QApplication::sendEvent(&List(), &release);
    }

  private:
    Desk desk_;
    std::vector<ListRow> rows_;
};

// How an operation is prepared, and the operation; once for each of the two lists.
struct Operation {
    const char* name;
    std::function<void(OurList&)> prepareOurs;
    std::function<void(OurList&)> ours;
    std::function<void(StockList&)> prepareStock;
    std::function<void(StockList&)> stock;
    bool changesCount = false;
};

constexpr int MovedRow = 500;

std::vector<Operation> Operations() {
    const auto press = [](QPushButton* GUI::*button) {
        return [button](OurList& list) { (list.Form().*button)->click(); };
    };
    const auto ourRow = [](int row) { return [row](OurList& list) { list.List().Select(row); }; };
    const auto stockRow = [](int row) { return [row](StockList& list) { list.Select(row); }; };
    return {
        {"list: add", ourRow(0), press(&GUI::cmdActionsAdd), stockRow(0), &StockList::Add, true},
        {"list: insert at top", ourRow(0), press(&GUI::cmdActionsInsert), stockRow(0),
         &StockList::InsertAtTop, true},
        {"list: remove every second", &OurList::SelectEverySecond, press(&GUI::cmdActionsRemove),
         &StockList::SelectEverySecond, &StockList::RemoveSelected, true},
        {"list: up", ourRow(MovedRow), press(&GUI::cmdActionsUp), stockRow(MovedRow),
         [](StockList& list) { list.Move(-1); }},
        {"list: down", ourRow(MovedRow), press(&GUI::cmdActionsDown), stockRow(MovedRow),
         [](StockList& list) { list.Move(+1); }},
        {"list: select all", [](OurList& list) { list.List().selectionModel()->clear(); },
         &OurList::SelectAll, &StockList::SelectNone, &StockList::SelectAll},
    };
}

} // namespace

void AddListPairs(Pairs& pairs) {
    constexpr std::array<const char*, 2> sizes = {"1,000 rows", "10,000 rows"};
    for (const Operation& operation : Operations()) {
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            const Place place = Referring[i].place;
            pairs.Add(
                operation.name, sizes[i],
                [place, operation] {
                    return [operation, list = std::make_shared<OurList>(place)] {
                        if (operation.changesCount) {
                            list->Restore();
                        }
                        operation.prepareOurs(*list);
                        Settle();
                        const double seconds = Seconds([&] { operation.ours(*list); });
                        list->ReleaseKeys();
                        return seconds;
                    };
                },
                [place, operation] {
                    OurList like(place);
                    auto stock = std::make_shared<StockList>(like.List());
                    stock->Fill(like.Rows());
                    return [operation, stock, rows = like.Rows()] {
                        if (operation.changesCount) {
                            stock->Fill(rows);
                        }
                        operation.prepareStock(*stock);
                        Settle();
                        return Seconds([&] { operation.stock(*stock); });
                    };
                });
        }
    }
}

} // namespace KAL_AUTO_Node
