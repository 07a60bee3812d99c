#pragma once

#include "KAL_AUTO_Node/Api.h"

#include <stdexcept>
#include <string>

namespace KAL_AUTO_Node {

// What the component throws. what() describes the error in UTF-8; its number is the suite's for that kind of
// error: 5 for a call that cannot be made here, 429 for a component that cannot be created, 1001 for a
// configured place of the store that is no text.
class KAL_AUTO_NODE_API Error : public std::runtime_error {
  public:
    Error(int number, const std::string& description) : std::runtime_error(description), number_(number) {}

    [[nodiscard]] int Number() const noexcept { return number_; }

  private:
    int number_;
};

} // namespace KAL_AUTO_Node
