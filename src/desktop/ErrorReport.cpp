#include "desktop/ErrorReport.h"

#include "desktop/MessageBox.h"
#include "platform/RuntimeError.h"

namespace KAL_AUTO_Node {

void ShowErrorReport(const std::exception& error, const char* procedure) {
    const auto* own = dynamic_cast<const RuntimeError*>(&error);
    const QString source = own != nullptr ? QString::fromStdString(own->Source()) : QString(ComponentName);
    MsgBox("Source: " + source + " - " + procedure + " \r\nDescription: " + QString::fromUtf8(error.what()),
           QMessageBox::Warning, QMessageBox::Ok, QStringLiteral("Error"));
}

} // namespace KAL_AUTO_Node
