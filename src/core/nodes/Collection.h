#pragma once

#include "platform/RuntimeError.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// Items in the order in which they were added, each under the ID of a node type.
template <class Item>
class Collection {
  public:
    // Raises DuplicateCollectionKey when the key is taken.
    void Add(Item item, int key) {
        if (!positions_.emplace(key, items_.size()).second) {
            throw RuntimeError(ErrorNumber::DuplicateCollectionKey,
                               "The key \"" + std::to_string(key) +
                                   "\" is already associated with an element of this collection");
        }
        items_.push_back(std::move(item));
    }

    // Raises InvalidProcedureCall when nothing stands under the key.
    [[nodiscard]] const Item& operator[](int key) const {
        if (const Item* item = Find(key)) {
            return *item;
        }
        throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                           "The key \"" + std::to_string(key) + "\" is not in this collection");
    }

    // Nothing where nothing stands under the key.
    [[nodiscard]] const Item* Find(int key) const {
        const auto found = positions_.find(key);
        return found == positions_.end() ? nullptr : &items_[found->second];
    }

    [[nodiscard]] std::size_t Count() const noexcept { return items_.size(); }

    [[nodiscard]] auto begin() const noexcept { return items_.begin(); }

    [[nodiscard]] auto end() const noexcept { return items_.end(); }

  private:
    std::vector<Item> items_;
    std::unordered_map<int, std::size_t> positions_;
};

} // namespace KAL_AUTO_Node
