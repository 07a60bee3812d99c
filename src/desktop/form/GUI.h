#pragma once

#include "controls/ComboBox.h"
#include "controls/FindBar.h"
#include "controls/ImageList.h"
#include "controls/ListRow.h"
#include "controls/ListView.h"
#include "controls/NumberBox.h"
#include "controls/StatusBar.h"
#include "nodes/Identity.h"
#include "nodes/Slots.h"
#include "nodes/TypeCatalogue.h"

#include <QDialog>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace KAL_AUTO_Node {

// The editor window's controls and plain values. What happens when they are used is the editor's business;
// where their content comes from and goes to is the rules'. Qt's ownership: every control belongs to the
// window.
class GUI : public QDialog {
    Q_OBJECT

  public:
    GUI();
    ~GUI() override;

    // The node shown.
    std::int16_t ConfigID = 0;
    std::int16_t PartitionID = 0;
    std::int16_t nodeNumber = 0;

    // The node as it is stored, as far as the window knows: as it was loaded or saved latest. None where
    // loading the latest one failed or found none, which leaves on screen what was there.
    struct Stored; // in form/Stored.h, which few need
    std::unique_ptr<Stored> StoredNode;

    void CreateNodeLists() { nodeLists_.emplace(); }

    void ReleaseNodeLists() { nodeLists_.reset(); }

    // Between the two calls above; otherwise raises InvalidProcedureCall.
    [[nodiscard]] TypeCatalogue& Lists();

    [[nodiscard]] const TypeCatalogue& Lists() const { return const_cast<GUI*>(this)->Lists(); }

    // The name of a node type. Raises InvalidProcedureCall for an unknown one.
    [[nodiscard]] QString NodeName(int nodeTypeID) const;

    // Column set-up of the three lists; rows and cells stay as they are. Each reports its own failure.
    void ResetPromptsListView();
    void ResetActionsListView();
    void ResetExceptionsListView();

    // Removes all rows and leaves the columns.
    static void ClearListView(ListView& list) { list.SetRows({}); }

    // A list is in edit mode as long as its Edit button says so.
    [[nodiscard]] static bool IsEditing(const QPushButton& editButton);
    static void ShowEditing(QPushButton& editButton, bool editing);

    [[nodiscard]] PickList* NodePicker(Slot slot) const { return Editors(slot).node; }

    [[nodiscard]] NumberBox* NumberPicker(Slot slot) const { return Editors(slot).number; }

    // Widths of a type picker while it floats over its row, in twips: with a number picker beside it, and
    // alone.
    static constexpr int NarrowPicker = 975;
    static constexpr int WidePicker = 1675;
    void SetNodePickerWidth(Slot slot, int twips);
    // In pixels, for the font.
    [[nodiscard]] int NodePickerWidth(Slot slot) const;

    // The seventeen editors that float over the lists while a row is edited, in the order of the lists.
    [[nodiscard]] std::vector<QWidget*> InPlaceEditors() const;

    // Closes the window, on screen or not, unless a handler of Unload refuses or fails; returns whether it is
    // closed.
    bool UnloadWindow();

    // Makes the digits of a box of fixed width as small as it takes to see all of them.
    void ShowWhole(QLineEdit& box) const;

    // Opens the bar that finds rows of a list.
    void Find(ListView& list) { findBar_->Open(list); }

    // Where the screen is too small for all: scrolls to a list, or to its selected item where the list itself
    // is too high.
    void BringIntoSight(const ListView& list) const;

    // In characters; the toolkit cannot lay out every length.
    static constexpr int LongestLabel = 100'000;

    QFrame* Frame1;

    PickList* cmbNode;
    QPushButton* cmdFirst;
    QPushButton* cmdPrevious;
    QPushButton* cmdNext;
    QPushButton* cmdLast;
    QLabel* lblRecordPosition;

    QLineEdit* txtDescription;
    NumberBox* cmbNumDigits;
    PickList* cmbTermDigit;
    NumberBox* cmbRetryLimit;
    NumberBox* cmbSelTimeOut;
    NumberBox* cmbDigitTimeOut;

    QGroupBox* fraPrompts;
    ListView* LVPrompts;
    QPushButton* cmdPromptsAdd;
    QPushButton* cmdPromptsInsert;
    QPushButton* cmdPromptsRemove;
    QPushButton* cmdPromptsEdit;
    QPushButton* cmdPromptsUp;
    QPushButton* cmdPromptsDown;
    QPushButton* cmdQuickPrompts;

    QGroupBox* fraActions;
    ListView* LVActions;
    QPushButton* cmdActionsAdd;
    QPushButton* cmdActionsInsert;
    QPushButton* cmdActionsRemove;
    QPushButton* cmdActionsEdit;
    QPushButton* cmdActionsUp;
    QPushButton* cmdActionsDown;
    QPushButton* cmdQuickActions;
    QLineEdit* txtActionsDTMFRangeLow;
    QLineEdit* txtActionsDash;
    QLineEdit* txtActionsDTMFRangeHigh;

    QGroupBox* fraExceptions;
    ListView* LVExceptions;
    QPushButton* cmdExceptionsEdit;
    QPushButton* cmdExceptionsDefault;

    QPushButton* cmdApply;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
    StatusBar* StatusBar1;

    ImageList* ImageList1;

    // The window is about to close: sets cancel to keep it open as it is. No signal: it may fail, and an
    // exception must not pass through the toolkit.
    std::function<void(bool& cancel)> Unload;

    // While one lives, something is under way that the window has to outlast: Escape, the close box and a
    // host that closes all windows leave it open.
    class Acting {
      public:
        explicit Acting(GUI& gui) : gui_(gui) { ++gui_.acting_; }

        ~Acting() { --gui_.acting_; }

        Acting(const Acting&) = delete;
        Acting& operator=(const Acting&) = delete;

      private:
        GUI& gui_;
    };

    [[nodiscard]] bool IsActing() const noexcept { return acting_ > 0; }

    // Escape and the close box; also a slot.
    void reject() override;

  protected:
    // A window that waits for another is painted, whatever is under way.
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    // Also how the toolkit takes the focus from a control that gets disabled.
    bool focusNextPrevChild(bool next) override;

  private:
    struct ReferenceEditors {
        PickList* node;
        NumberBox* number;
        int nodeWidth; // twips
    };

    [[nodiscard]] const ReferenceEditors& Editors(Slot slot) const {
        return editors_[static_cast<std::size_t>(slot)];
    }

    void ResetListView(const char* procedure, ListView* list, std::span<const ListColumn> columns,
                       QAbstractItemView::SelectionMode selection);
    void CreateControls();
    void CreateInPlaceEditors();
    void LayOut();
    void OrderTabs();
    void MakeShortcuts();
    // Notes where the focus was, for what comes back to it.
    void FocusMoved(QWidget* from, QWidget* to);
    // Gives the window and its exceptions list the sizes that the screen and the fonts ask for.
    void FitScreen();
    // The control that gets the focus of one that cannot keep it.
    [[nodiscard]] QWidget* HeirOf(QWidget* control) const;
    [[nodiscard]] std::array<QWidget*, 2> Pickers(Slot slot) const;

    int acting_ = 0;
    QScrollArea* upper_ = nullptr;
    FindBar* findBar_ = nullptr;
    ListView* latestList_ = nullptr; // that had the focus, or one of its buttons
    QPointer<QWidget> latestInput_;  // above the closing buttons, that had the focus
    std::optional<TypeCatalogue> nodeLists_;
    std::array<ReferenceEditors, SlotSets.size()> editors_{};
};

// The partition of the node shown.
[[nodiscard]] inline Partition PartitionOf(const GUI& gui) { return {gui.ConfigID, gui.PartitionID}; }

} // namespace KAL_AUTO_Node
