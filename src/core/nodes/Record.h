#pragma once

#include "nodes/AutoNode.h"
#include "store/DataBase.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace KAL_AUTO_Node {

// Fields of rows of an AUTO node; nothing stands for Null.
[[nodiscard]] std::optional<std::string> OptionalText(const ResultSet& row, std::string_view column);
[[nodiscard]] Settings ReadSettings(const ResultSet& row);
// The node's own record but for the branches.
void ReadRecord(const ResultSet& row, AutoNode& node);

// Where a reference stands in rows; an exception branch's columns have its name before their own.
class ReferenceColumns {
  public:
    explicit ReferenceColumns(const ResultSet& rows, const std::string& branch = "")
        : typeID_(rows.Column(branch + "NodeTypeID")), type_(rows.Column(branch + "NodeType")),
          number_(rows.Column(branch + "NodeNumber")) {}

    [[nodiscard]] int TypeID(const ResultSet& row) const { return row.Number(typeID_); }

    [[nodiscard]] int Number(const ResultSet& row) const { return row.Number(number_); }

    // Without the label.
    [[nodiscard]] Reference Read(const ResultSet& row) const {
        return {row.Number(typeID_), std::string(row.Text(type_)), row.Number(number_), {}};
    }

  private:
    std::size_t typeID_;
    std::size_t type_;
    std::size_t number_;
};

class PromptColumns {
  public:
    explicit PromptColumns(const ResultSet& rows) : target_(rows), sequence_(rows.Column("SequenceNo")) {}

    [[nodiscard]] Prompt Read(const ResultSet& row) const {
        Reference target = target_.Read(row);
        return {row.Number(sequence_), std::move(target)};
    }

  private:
    ReferenceColumns target_;
    std::size_t sequence_;
};

class ActionColumns {
  public:
    explicit ActionColumns(const ResultSet& rows)
        : target_(rows), sequence_(rows.Column("SequenceNo")), low_(rows.Column("DTMFRangeLow")),
          high_(rows.Column("DTMFRangeHigh")) {}

    [[nodiscard]] Action Read(const ResultSet& row) const {
        Action action{row.Number(sequence_), target_.Read(row), {}, {}};
        if (const auto text = row.Field(low_)) {
            action.low.emplace(*text);
        }
        if (const auto text = row.Field(high_)) {
            action.high.emplace(*text);
        }
        return action;
    }

  private:
    ReferenceColumns target_;
    std::size_t sequence_;
    std::size_t low_;
    std::size_t high_;
};

} // namespace KAL_AUTO_Node
