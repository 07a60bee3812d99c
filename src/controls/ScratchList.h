#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>

#include <map>
#include <optional>

namespace KAL_AUTO_Node {

// A list box that nobody sees: texts in the order in which they were added, searched without regard to case.
// What a kind of search needs is built by the first search of that kind, so that a list which is only read
// costs no more.
class ScratchList : public QObject {
  public:
    using QObject::QObject;

    void AddItem(const QString& text);
    void Clear();

    [[nodiscard]] int ListCount() const { return static_cast<int>(items_.size()); }

    [[nodiscard]] const QString& List(int index) const { return items_.at(index); }

    // The first entry that equals the text, or -1; in constant time.
    [[nodiscard]] int FindStringExact(const QString& text);
    // An entry that begins with the text, or -1; in logarithmic time.
    [[nodiscard]] int FindString(const QString& text);

  private:
    QStringList items_;
    // Positions by the texts without case.
    std::optional<QHash<QString, int>> exact_;
    std::optional<std::map<QString, int>> sorted_;
};

} // namespace KAL_AUTO_Node
