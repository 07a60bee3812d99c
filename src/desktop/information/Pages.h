#pragma once

#include "audit/Findings.h"
#include "calls/EntryText.h"
#include "history/Changes.h"
#include "information/InformationPage.h"

#include <memory>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace KAL_AUTO_Node {

// What refers to the node.
class UsesPage : public InformationPage {
  public:
    UsesPage();

    // A line for each reference; nothing while that is not known.
    [[nodiscard]] const std::optional<std::vector<QString>>& Uses() const { return uses_; }

  protected:
    void Begin(StoreReader& reader) override;

    void Clear() override { uses_.reset(); }

  private:
    std::optional<std::vector<QString>> uses_;
};

// The changes of an AUTO node.
class HistoryPage : public InformationPage {
  public:
    HistoryPage();

    [[nodiscard]] bool IsOf(const NodeKey& key) const override { return key.typeID == AutoType; }

    // The node is to be put back as it was before a change.
    std::function<void(const NodePlace& place, const Version& version)> PutBack = [](const NodePlace&,
                                                                                     const Version&) {};

  protected:
    void Begin(StoreReader& reader) override;
    void Clear() override;

  private:
    void ShowChange(int row);

    std::vector<Change> changes_;
    QPlainTextEdit* words_;
    QPushButton* putBack_;
};

// Where what callers key leads from an AUTO node.
class EntriesPage : public InformationPage {
  public:
    EntriesPage();

    [[nodiscard]] bool IsOf(const NodeKey& key) const override { return key.typeID == AutoType; }

  protected:
    void Begin(StoreReader& reader) override;
    void Clear() override;
    void showEvent(QShowEvent* event) override;

  private:
    void AnswerEntry();

    struct Space {
        Menu menu;
        std::vector<DigitLength> lengths;
    };

    std::shared_ptr<const Space> space_;
    QLineEdit* entry_;
    QLabel* answer_;
};

// What is wrong with the node.
class FindingsPage : public InformationPage {
  public:
    FindingsPage();

  protected:
    void Begin(StoreReader& reader) override;
    void Clear() override;

  private:
    void Explain(int row);

    std::vector<Finding> findings_;
    QLabel* meaning_;
};

} // namespace KAL_AUTO_Node
