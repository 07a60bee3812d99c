#pragma once

#include <QDate>
#include <QLocale>

#include <string>

namespace KAL_AUTO_Node {

// Today's date as dates are stored: text in the system's short date format.
[[nodiscard]] inline std::string Today() {
    return QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat).toStdString();
}

} // namespace KAL_AUTO_Node
