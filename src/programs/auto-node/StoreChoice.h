#pragma once

#include "store/DataBase.h"

#include <filesystem>
#include <string>

namespace KAL_AUTO_Node {

// The store that the command line names, or the one that the editor opens.
class StoreChoice {
  public:
    explicit StoreChoice(std::string file) : file_(std::move(file)) {}

    [[nodiscard]] bool IsNamed() const { return !file_.empty(); }

    [[nodiscard]] DataBase Open() const {
        return file_.empty() ? DataBase() : DataBase(std::filesystem::path(file_));
    }

    // Where a new one is made.
    [[nodiscard]] std::filesystem::path NewPlace() const;

    // What a person is told of an error: also what to do where there is no store yet.
    [[nodiscard]] std::string Told(const std::exception& error) const;

  private:
    std::string file_;
};

} // namespace KAL_AUTO_Node
