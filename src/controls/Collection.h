#pragma once

#include "platform/RuntimeError.h"

#include <QHash>
#include <QString>

#include <vector>

namespace KAL_AUTO_Node {

// Items in the order in which they were added, each under a text key of its own.
template <class Item>
class Collection {
  public:
    // Raises DuplicateCollectionKey when the key is taken.
    void Add(Item item, const QString& key) {
        if (positions_.contains(key)) {
            throw RuntimeError(ErrorNumber::DuplicateCollectionKey,
                               "The key \"" + key.toStdString() +
                                   "\" is already associated with an element of this collection");
        }
        positions_.insert(key, items_.size());
        items_.push_back(std::move(item));
    }

    // Raises InvalidProcedureCall when nothing stands under the key.
    [[nodiscard]] const Item& operator[](const QString& key) const {
        const auto found = positions_.constFind(key);
        if (found == positions_.cend()) {
            throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                               "The key \"" + key.toStdString() + "\" is not in this collection");
        }
        return items_[*found];
    }

    [[nodiscard]] std::size_t Count() const noexcept { return items_.size(); }

    [[nodiscard]] auto begin() const noexcept { return items_.begin(); }

    [[nodiscard]] auto end() const noexcept { return items_.end(); }

  private:
    std::vector<Item> items_;
    QHash<QString, std::size_t> positions_;
};

} // namespace KAL_AUTO_Node
