#include "KAL_AUTO_Node/Business_Rules.h"

#include "editor/EditorWindow.h"
#include "feedback/ErrorReport.h"
#include "platform/RuntimeError.h"
#include "rules/NodeRules.h"

#include <QApplication>
#include <QPointer>
#include <QThread>

namespace KAL_AUTO_Node {

namespace {

// The toolkit needs its application object as long as any of its objects lives, and keeps it findable by
// itself. One that is taken down at the process's end would race the host's own clean-up, so it is left
// standing.
void RequireApplication() {
    const QCoreApplication* application = QCoreApplication::instance();
    if (application == nullptr) {
        static int count = 1;
        static char name[] = "KAL_AUTO_Node";
        static char* arguments[] = {name, nullptr};
        new QApplication(count, arguments);
    } else if (qobject_cast<const QApplication*>(application) == nullptr) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                           "The editor needs a QApplication; the process has another application object");
    } else if (application->thread() != QThread::currentThread()) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                           "The editor is shown on the thread of the QApplication only");
    }
}

// Sets a flag as long as it lives.
class Flagged {
  public:
    explicit Flagged(bool& flag) : flag_(flag) { flag_ = true; }

    ~Flagged() { flag_ = false; }

    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;

  private:
    bool& flag_;
};

} // namespace

struct Business_Rules::Parts {
    explicit Parts(ComponentFactory factory) : components(std::move(factory)), rules(components) {}

    ~Parts() { DropWindow(); }

    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    void MakeWindow() {
        DropWindow();
        application = QCoreApplication::instance();
        window = std::make_unique<EditorWindow>(components, rules);
    }

    void DropWindow() {
        // A window cannot be taken down any more where its application is gone.
        if (window && application.isNull()) {
            static_cast<void>(window.release());
        }
        window.reset();
    }

    ComponentFactory components;
    NodeRules rules;
    // A window whose preparation failed stays loaded, unseen, until the next call or the object's end.
    std::unique_ptr<EditorWindow> window;
    QPointer<QCoreApplication> application; // the window's
    bool opened = false;
    bool showing = false; // ShowNodeEditor has not returned
};

Business_Rules::Business_Rules() : Business_Rules(ComponentFactory()) {}

Business_Rules::Business_Rules(ComponentFactory components)
    : parts_(std::make_unique<Parts>(std::move(components))) {}

Business_Rules::~Business_Rules() = default;

bool Business_Rules::Opened() const noexcept { return parts_->opened; }

void Business_Rules::ShowNodeEditor(std::int16_t Config_ID, std::int16_t Partition_ID,
                                    std::int16_t Node_Number) {
    RequireApplication();
    if (parts_->showing) {
        // The host's own events run while the editor or one of its messages is shown, and may ask for it
        // again.
        if (QWidget* front = QApplication::activeModalWidget()) {
            front->raise();
            front->activateWindow();
        }
        return;
    }
    const Flagged showing(parts_->showing);
    parts_->opened = false;
    Reporting("ShowNodeEditor", [&] {
        NodeRules& rules = parts_->rules;
        rules.NewNodeFlag = Node_Number == 0;

        parts_->MakeWindow();
        parts_->window->Form_Load();
        GUI& gui = parts_->window->Form();
        gui.CreateNodeLists();
        gui.ConfigID = Config_ID;
        gui.PartitionID = Partition_ID;
        gui.nodeNumber = Node_Number;

        NodeRules::ResetAllGUIListView(gui);
        NodeRules::HideInPlaceEditors(gui);
        // Each runs whether or not the one before it failed.
        auto wait = rules.WaitOnce();
        auto ahead = rules.FetchLists(gui);
        bool complete = rules.LoadNodeName(gui);
        complete &= rules.LoadPromptsNode(gui);
        complete &= rules.LoadActionsNode(gui);
        complete &= rules.LoadExceptionsNode(gui);
        complete &= NodeRules::LoadStaticConstants(gui);
        complete &= rules.LoadExistingNodesInRecordSelector(gui, Node_Number);
        ahead.reset();
        rules.OfferUpgrade();
        const bool show = rules.LoadData(gui, Node_Number);
        wait.reset();
        // The selector moves to its first node where it does not list the one asked for; what is shown is
        // that one.
        gui.nodeNumber = Node_Number;
        parts_->opened = complete && show;

        gui.cmdApply->setEnabled(false);
        if (show) {
            gui.exec();
        } else {
            gui.UnloadWindow();
        }
        gui.ReleaseNodeLists();
        parts_->DropWindow();
    });
}

} // namespace KAL_AUTO_Node
