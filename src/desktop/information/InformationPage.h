#pragma once

#include "controls/Utf8.h"
#include "information/RowTable.h"
#include "information/StoreReader.h"
#include "nodes/Identity.h"

#include <QVBoxLayout>
#include <QWidget>

#include <functional>
#include <utility>
#include <vector>

class QLabel;

namespace KAL_AUTO_Node {

// Any node of the store.
struct Subject {
    Partition partition;
    NodeKey key;

    [[nodiscard]] NodePlace Place() const { return PlaceOf(partition, key.number); }

    friend bool operator==(const Subject&, const Subject&) = default;
};

// A page of node information: a list, a line above it that tells what it is, and what the kind of page has
// besides. What it shows is read beside the window.
class InformationPage : public QWidget {
  public:
    InformationPage(const char* name, const QString& title, const QStringList& headings);

    // The title with how many rows there are, once that is known.
    [[nodiscard]] QString Title() const;
    std::function<void()> TitleChanged = [] {};
    // A node is to be gone on with.
    std::function<void(const NodeKey& node)> Go = [](const NodeKey&) {};

    // Whether there is such a page of a node.
    [[nodiscard]] virtual bool IsOf(const NodeKey& /*key*/) const { return true; }

    // What is shown of another node goes; of the same it stays until it is read anew.
    void Read(StoreReader& reader, const Subject& subject);

  protected:
    [[nodiscard]] const Subject& Shown() const { return subject_; }

    [[nodiscard]] RowTable& List() const { return *list_; }

    [[nodiscard]] QVBoxLayout& Room() const { return *room_; }

    // Has the reader read the node; calls Ask.
    virtual void Begin(StoreReader& reader) = 0;

    // Nothing is shown.
    virtual void Clear() {}

    // What the page shows, by which rows stand in the list.
    template <class Read, class Show>
    void Ask(StoreReader& reader, Read read, Show show) {
        reader.Ask(
            [read = std::move(read), subject = subject_](DataBase& dataBase, const StoreReader::Look& look) {
                return read(dataBase, subject, look);
            },
            [this, show = std::move(show)](auto& answer) {
                if (answer.content) {
                    show(std::move(*answer.content));
                } else {
                    Fail(answer.failure);
                }
            });
    }

    // Shows that many rows, under a line that says what they are. The row that was chosen is so again.
    void Show(std::size_t rows, RowTable::Cell cell, const QString& told);

  private:
    void Fail(const std::string& failure);

    QString title_;
    QLabel* told_;
    RowTable* list_;
    QVBoxLayout* room_;
    Subject subject_;
    int count_ = -1; // not known
};

} // namespace KAL_AUTO_Node
