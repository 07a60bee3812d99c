#include "feedback/ErrorReport.h"

#include "feedback/MessageBox.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"

#include <exception>

namespace KAL_AUTO_Node {

void ShowErrorReport(const char* procedure) {
    QString source(ComponentName);
    QString description;
    try {
        throw;
    } catch (RuntimeError& error) {
        if (!error.TellOnce()) {
            return;
        }
        source = QString::fromStdString(error.Source());
        description = QString::fromStdString(VisibleLines(error.what()));
    } catch (const std::exception& error) {
        description = QString::fromStdString(VisibleLines(error.what()));
    } catch (...) {
        description = QStringLiteral("An error that does not say what it is");
    }
    MsgBox("Source: " + source + " - " + procedure + " \r\nDescription: " + description, QMessageBox::Warning,
           QMessageBox::Ok, QStringLiteral("Error"));
}

} // namespace KAL_AUTO_Node
