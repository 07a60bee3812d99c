#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>

#include <map>

namespace KAL_AUTO_Node {

// A list box that nobody sees: texts in the order in which they were added, searched without regard to case.
class ScratchList : public QObject {
  public:
    using QObject::QObject;

    void AddItem(const QString& text);
    void Clear();

    [[nodiscard]] int ListCount() const { return static_cast<int>(items_.size()); }

    [[nodiscard]] const QString& List(int index) const { return items_.at(index); }

    // The first entry that equals the text, or -1; in constant time.
    [[nodiscard]] int FindStringExact(const QString& text) const;
    // An entry that begins with the text, or -1; in logarithmic time.
    [[nodiscard]] int FindString(const QString& text) const;

  private:
    QStringList items_;
    QHash<QString, int> exact_;
    std::map<QString, int> sorted_;
};

} // namespace KAL_AUTO_Node
