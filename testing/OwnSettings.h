#pragma once

#include <QSettings>
#include <QTemporaryDir>

namespace KAL_AUTO_Node {

// While it lives, what programs remember for a person is kept apart from what they remember for the one who
// runs this.
class OwnSettings {
  public:
    OwnSettings() { QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder_.path()); }

    [[nodiscard]] QString Path() const { return folder_.path(); }

  private:
    QTemporaryDir folder_;
};

} // namespace KAL_AUTO_Node
