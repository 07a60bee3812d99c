#include "controls/WindowPlace.h"

#include <QScreen>
#include <QSettings>
#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

// Of the form in which places are kept. What a newer program has kept stays for it.
constexpr int PlacesVersion = 1;
constexpr const char* VersionEntry = "version";

class Places {
  public:
    explicit Places(const QWidget& window) : entry_("places/" + window.objectName()) {}

    [[nodiscard]] bool AreKnown() const {
        return settings_.value(QLatin1String(VersionEntry), PlacesVersion).toInt() == PlacesVersion;
    }

    [[nodiscard]] QByteArray Read() const { return settings_.value(entry_).toByteArray(); }

    void Write(const QByteArray& place) {
        settings_.setValue(QLatin1String(VersionEntry), PlacesVersion);
        settings_.setValue(entry_, place);
    }

  private:
    // Not the host program's.
    QSettings settings_{QStringLiteral("KAL_AUTO_Node"), QStringLiteral("auto-node")};
    QString entry_;
};

} // namespace

void RestorePlace(QWidget& window) {
    const Places places(window);
    if (!places.AreKnown() || !window.restoreGeometry(places.Read())) {
        return;
    }
    // The toolkit brings it onto a screen, whatever its size. A window may stand over several.
    const int title = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
    QRect place = window.geometry();
    if (!window.screen()->availableVirtualGeometry().contains(place.adjusted(0, -title, 0, 0))) {
        const QRect room = window.screen()->availableGeometry().adjusted(0, title, 0, 0);
        place.setSize(place.size().boundedTo(room.size()));
        place.moveLeft(std::clamp(place.left(), room.left(), room.right() + 1 - place.width()));
        place.moveTop(std::clamp(place.top(), room.top(), room.bottom() + 1 - place.height()));
        window.setGeometry(place);
    }
}

void KeepPlace(const QWidget& window) {
    Places places(window);
    if (const QByteArray place = window.saveGeometry(); places.AreKnown() && place != places.Read()) {
        places.Write(place);
    }
}

} // namespace KAL_AUTO_Node
