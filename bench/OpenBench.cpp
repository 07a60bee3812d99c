#include "KAL_AUTO_Node/Business_Rules.h"
#include "bench/Benches.h"
#include "bench/Desk.h"
#include "bench/StockWindow.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <optional>
#include <stdexcept>

namespace KAL_AUTO_Node {

namespace {

// Sees the editor's window paint. Its controls paint after it in the same turn of the event loop.
class FirstPaint : public QObject {
  public:
    FirstPaint() { qApp->installEventFilter(this); }

    // Seconds from the object's making to the end of that turn.
    [[nodiscard]] double Elapsed() const {
        if (!painted_) {
            throw std::runtime_error("the editor did not appear");
        }
        return std::chrono::duration<double>(*painted_ - start_).count();
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        // The editor's window is modal; windows of other benchmarks may paint before it.
        QWidget* window = QApplication::activeModalWidget();
        if (event->type() == QEvent::Paint && watched == window) {
            qApp->removeEventFilter(this);
            QMetaObject::invokeMethod(
                this,
                [this, window] {
                    painted_ = Clock::now();
                    window->close();
                },
                Qt::QueuedConnection);
        }
        return false;
    }

  private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point start_ = Clock::now();
    std::optional<Clock::time_point> painted_;
};

} // namespace

double OpenToFirstPaint(Place place) {
    FirstPaint paint;
    Business_Rules rules;
    rules.ShowNodeEditor(BenchConfig, static_cast<std::int16_t>(place.partition),
                         static_cast<std::int16_t>(place.node));
    return paint.Elapsed();
}

void AddOpenPairs(Pairs& pairs, const TestStore& store) {
    const auto add = [&](const std::string& work, const SizedPlace& sized) {
        pairs.Add(
            work, sized.size,
            [place = sized.place] {
                return [place] {
                    Settle();
                    return OpenToFirstPaint(place);
                };
            },
            [place = sized.place, file = store.File()] {
                return [place, file] {
                    std::optional<RawStore> raw;
                    return Seconds([&] { raw.emplace(file).Open(place); });
                };
            });
    };
    const auto addBesideStock = [&](const SizedPlace& sized) {
        pairs.Add(
            "open, beside a window of stock widgets", sized.size,
            [place = sized.place] {
                return [place] {
                    Settle();
                    return OpenToFirstPaint(place);
                };
            },
            [place = sized.place, file = store.File()] {
                return [place, file, make = StockWindowLike(Desk(place).Form())] {
                    Settle();
                    FirstPaint paint;
                    RawStore(file).Open(place);
                    make()->exec();
                    return paint.Elapsed();
                };
            });
    };
    for (const SizedPlace& sized : LargeNodes) {
        addBesideStock(sized);
    }
    for (const SizedPlace& sized : SmallNodes) {
        add("open to first paint, by partition", sized);
    }
    for (const SizedPlace& sized : LargeNodes) {
        add("open to first paint, by node", sized);
    }
}

} // namespace KAL_AUTO_Node
