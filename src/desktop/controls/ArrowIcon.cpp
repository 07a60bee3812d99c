#include "controls/ArrowIcon.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

namespace KAL_AUTO_Node {

namespace {

class ArrowEngine : public QIconEngine {
  public:
    explicit ArrowEngine(Arrow arrow) : arrow_(arrow) {}

    [[nodiscard]] QIconEngine* clone() const override { return new ArrowEngine(arrow_); }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/) override {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(QGuiApplication::palette().color(group, QPalette::ButtonText));
        // Drawn pointing right in a unit square, then mirrored and scaled into place.
        painter->translate(rect.topLeft());
        painter->scale(rect.width(), rect.height());
        if (arrow_ == Arrow::First || arrow_ == Arrow::Previous) {
            painter->translate(1, 0);
            painter->scale(-1, 1);
        }
        const bool barred = arrow_ == Arrow::First || arrow_ == Arrow::Last;
        const double left = barred ? 0.18 : 0.28;
        const double tip = left + 0.48;
        painter->drawPolygon(QPolygonF({{left, 0.15}, {tip, 0.5}, {left, 0.85}}));
        if (barred) {
            painter->drawRect(QRectF(tip, 0.15, 0.14, 0.7));
        }
        painter->restore();
    }

  private:
    Arrow arrow_;
};

} // namespace

QIcon ArrowIcon(Arrow arrow) { return QIcon(new ArrowEngine(arrow)); }

} // namespace KAL_AUTO_Node
