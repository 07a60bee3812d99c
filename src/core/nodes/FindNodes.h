#pragma once

#include "nodes/References.h"

#include <cstddef>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// A registered node that was looked for.
struct FoundNode {
    NodeKey node;
    std::string label;
    std::size_t uses = 0; // references to it
};

// What a person types to find nodes by: of a node that fits, each word is in the label, or is its number or
// its type's name, whatever the case.
class NodeWords {
  public:
    explicit NodeWords(const std::string& text);

    // By label and type's name in their folded forms. While a word is typed, a number may only begin with it.
    [[nodiscard]] bool Fit(const std::string& label, const std::string& type, int number,
                           bool typing = false) const;

    // Whether one of the words is the number.
    [[nodiscard]] bool Name(int number) const;

  private:
    struct Word {
        std::string text;
        bool digits;
    };

    std::vector<Word> words_;
};

// The nodes of every type of which each word of a text is in the label, or is the number or the type's name,
// whatever the case; in the order of types and numbers.
[[nodiscard]] std::vector<FoundNode> FindNodes(DataBase& dataBase, Partition partition,
                                               const TypeNames& names, const std::string& text);

} // namespace KAL_AUTO_Node
