#include "exchange/Merge.h"

#include "exchange/ExchangeReader.h"
#include "exchange/ExchangeText.h"
#include "exchange/MergedText.h"
#include "exchange/RowParts.h"
#include "platform/RuntimeError.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <optional>
#include <span>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// Many rows are held and few are looked into; so each is one text, with its fields behind one another.
struct HeldRow {
    StoreKey key;
    std::string fields;

    friend bool operator==(const HeldRow&, const HeldRow&) = default;
};

using HeldRows = std::span<const HeldRow>;

// No value holds a NUL.
std::string Packed(const StoreRow& row) {
    std::string fields;
    for (const auto& field : row) {
        fields += field ? '=' + *field : "";
        fields += '\0';
    }
    return fields;
}

StoreRow Unpacked(std::string_view fields) {
    StoreRow row;
    while (!fields.empty()) {
        const auto end = fields.find('\0');
        const auto field = fields.substr(0, end);
        row.push_back(field.empty() ? std::nullopt : std::optional(std::string(field.substr(1))));
        fields.remove_prefix(end + 1);
    }
    return row;
}

// One of the three texts.
class Text : public ExchangeSink {
  public:
    Text(const std::filesystem::path& file, bool mayBeEmpty) {
        std::error_code ignored;
        if (!mayBeEmpty || std::filesystem::file_size(file, ignored) != 0) {
            ReadExchangeFile(file, "Cannot merge", *this);
        } else {
            isEmpty_ = true;
        }
    }

    void TakeScope(std::optional<Partition> scope) override { scope_ = scope; }

    void TakeTable(const StoreTable& table) override {
        table_ = &table;
        rows_ = &tables_[&table];
    }

    void TakeRow(const StoreRow& row, std::uint64_t /*line*/) override {
        rows_->push_back({RowKeyOf(*table_, row), Packed(row)});
    }

    void TakeEndOfTable() override {}

    [[nodiscard]] bool IsOfKind(const Text& other) const {
        return isEmpty_ ||
               (scope_ == other.scope_ && std::ranges::equal(tables_, other.tables_, {}, TableOf, TableOf));
    }

    [[nodiscard]] std::optional<Partition> Scope() const { return scope_; }

    // In the order of the schema.
    [[nodiscard]] const std::map<const StoreTable*, std::vector<HeldRow>>& Tables() const { return tables_; }

  private:
    static const StoreTable* TableOf(const std::pair<const StoreTable* const, std::vector<HeldRow>>& entry) {
        return entry.first;
    }

    bool isEmpty_ = false;
    std::optional<Partition> scope_;
    std::map<const StoreTable*, std::vector<HeldRow>> tables_;
    const StoreTable* table_ = nullptr;
    std::vector<HeldRow>* rows_ = nullptr;
};

// The later of two days MM/DD/YY or MM/DD/YYYY, of which one that is none is the earlier.
const std::optional<std::string>& Later(const std::optional<std::string>& one,
                                        const std::optional<std::string>& other) {
    const auto day = [](const std::optional<std::string>& text) {
        std::array<int, 3> part{}; // month, day, year
        if (!text || std::sscanf(text->c_str(), "%4d/%4d/%4d", &part[0], &part[1], &part[2]) != 3) {
            return 0;
        }
        const int year = part[2] < 30 ? part[2] + 2000 : part[2] < 100 ? part[2] + 1900 : part[2];
        return (year * 100 + part[0]) * 100 + part[1];
    };
    return day(other) > day(one) ? other : one;
}

// Of a node, or of a row that is no node's: its rows, by table.
using Unit = std::map<const StoreTable*, OfSides<HeldRows>>;

class Merger {
  public:
    explicit Merger(OfSides<const Text*> texts) : texts_(texts) {}

    MergeReport Run(std::string& text) {
        for (const auto& [name, unit] : Units()) {
            Merge(unit);
        }
        std::vector<const StoreTable*> tables;
        for (const auto& [table, rows] : texts_[Ours]->Tables()) {
            tables.push_back(table);
        }
        text = merged_.Write(texts_[Ours]->Scope(), tables, report_.conflicts);
        return std::move(report_);
    }

  private:
    // By table, where it is no node's, and key.
    [[nodiscard]] std::map<std::pair<const StoreTable*, StoreKey>, Unit> Units() const {
        std::map<std::pair<const StoreTable*, StoreKey>, Unit> units;
        for (std::size_t side = 0; side < texts_.size(); ++side) {
            for (const auto& [table, rows] : texts_.at(side)->Tables()) {
                const auto owner = [&, ofTable = table](const HeldRow& row) {
                    return HoldsNodes(*ofTable)
                               ? std::pair<const StoreTable*, StoreKey>(nullptr, NodeKeyOf(*ofTable, row.key))
                               : std::pair<const StoreTable*, StoreKey>(ofTable, row.key);
                };
                // The rows of one stand together, since the key begins with it.
                for (auto first = rows.begin(); first != rows.end();) {
                    const auto whose = owner(*first);
                    const auto end = std::find_if(first, rows.end(),
                                                  [&](const HeldRow& row) { return owner(row) != whose; });
                    units[whose][table].at(side) = {first, end};
                    first = end;
                }
            }
        }
        return units;
    }

    void Merge(const Unit& unit) {
        const auto same = [&](Side one, Side other) {
            return std::ranges::all_of(unit, [&](const auto& rows) {
                return std::ranges::equal(rows.second.at(one), rows.second.at(other));
            });
        };
        const auto none = [&](Side side) {
            return std::ranges::all_of(unit, [&](const auto& rows) { return rows.second.at(side).empty(); });
        };
        const bool byOurs = !same(Base, Ours);
        const bool byTheirs = !same(Base, Theirs);
        report_.ours += byOurs && !byTheirs ? 1 : 0;
        report_.theirs += byTheirs && !byOurs ? 1 : 0;
        report_.both += byOurs && byTheirs ? 1 : 0;
        // One that only one of them knows is whole or not there.
        const bool whole =
            byOurs && byTheirs && !same(Ours, Theirs) && (none(Base) || none(Ours) || none(Theirs));
        bool told = false;
        for (const auto& [table, rows] : unit) {
            if (std::ranges::equal(rows[Ours], rows[Theirs]) ||
                (!whole && std::ranges::equal(rows[Base], rows[Theirs]))) {
                Settle(*table, rows[Ours]);
            } else if (whole) {
                Stretch stretch = Open(*table, rows);
                // Told once, for all of its tables.
                if (!std::exchange(told, true)) {
                    stretch.conflicts.push_back(
                        {0, Name(unit), Presence(none(Base)), Presence(none(Ours)), Presence(none(Theirs))});
                }
                merged_.Add(*table, std::move(stretch));
            } else if (std::ranges::equal(rows[Base], rows[Ours])) {
                Settle(*table, rows[Theirs]);
            } else if (HoldsLists(*table) && MergeRows(*table, rows)) {
                continue;
            } else if (HoldsLists(*table) ||
                       std::ranges::any_of(rows, [](HeldRows side) { return side.empty(); })) {
                Stretch stretch = Open(*table, rows);
                stretch.conflicts.push_back({0, Name(unit) + ", " + RowsName(*table), Count(rows[Base]),
                                             Count(rows[Ours]), Count(rows[Theirs])});
                merged_.Add(*table, std::move(stretch));
            } else {
                MergeParts(unit, *table, rows);
            }
        }
    }

    // A list of which each has changed rows; false where that is for a person to settle.
    bool MergeRows(const StoreTable& table, const OfSides<HeldRows>& rows) {
        OfSides<std::vector<StoreRow>> held;
        OfSides<std::vector<ListedRow>> listed;
        for (std::size_t side = 0; side < rows.size(); ++side) {
            for (const HeldRow& row : rows.at(side)) {
                held.at(side).push_back(Unpacked(row.fields));
                listed.at(side).push_back(ListedOf(table, held.at(side).back()));
            }
        }
        const auto merged = MergeLists(listed[Base], listed[Ours], listed[Theirs], KindOf(table));
        if (!merged) {
            return false;
        }
        Stretch stretch{Open(table, rows).key, {}, true, {}};
        for (const auto& [ofTheirs, place] : *merged) {
            StoreRow& row = held.at(ofTheirs ? Theirs : Ours)[place];
            row[table.key.back()] = std::to_string(stretch.rows[Ours].size() + 1);
            Exchange::AppendRow(stretch.rows[Ours].emplace_back(), table, row);
        }
        if (!merged->empty()) {
            merged_.Add(table, std::move(stretch));
        }
        return true;
    }

    // A row of which each has one.
    void MergeParts(const Unit& unit, const StoreTable& table, const OfSides<HeldRows>& rows) {
        OfSides<StoreRow> held;
        for (std::size_t side = 0; side < held.size(); ++side) {
            held.at(side) = Unpacked(rows.at(side).front().fields);
        }
        const auto& [base, ours, theirs] = held;
        Stretch stretch{rows[Ours].front().key, {}, true, {}};
        OfSides<StoreRow> result = held;
        for (const RowPart& part : PartsOf(table)) {
            const Stands stands =
                WhichStands(base, ours, theirs, [&](const StoreRow& one, const StoreRow& other) {
                    return std::ranges::all_of(
                        part.columns, [&](std::size_t column) { return one[column] == other[column]; });
                });
            const auto settle = [&](const StoreRow& by) {
                for (const std::size_t column : part.columns) {
                    for (StoreRow& row : result) {
                        row[column] = by[column];
                    }
                }
            };
            const std::size_t first = part.columns.front();
            if (stands != Stands::Neither) {
                settle(stands == Stands::One ? ours : theirs);
            } else if (IsDayOfChange(table.columns[first])) {
                settle(&Later(ours[first], theirs[first]) == &ours[first] ? ours : theirs);
            } else {
                stretch.settled = false;
                stretch.conflicts.push_back({0, Name(unit) + ", " + part.name, PartText(part, table, base),
                                             PartText(part, table, ours), PartText(part, table, theirs)});
            }
        }
        for (std::size_t side = 0; side < held.size(); ++side) {
            if (side == Ours || !stretch.settled) {
                Exchange::AppendRow(stretch.rows.at(side).emplace_back(), table, result.at(side));
            }
        }
        merged_.Add(table, std::move(stretch));
    }

    static std::vector<std::string> Lines(const StoreTable& table, HeldRows rows) {
        std::vector<std::string> lines;
        for (const HeldRow& row : rows) {
            Exchange::AppendRow(lines.emplace_back(), table, Unpacked(row.fields));
        }
        return lines;
    }

    void Settle(const StoreTable& table, HeldRows rows) {
        if (!rows.empty()) {
            merged_.Add(table, {rows.front().key, {{{}, Lines(table, rows), {}}}, true, {}});
        }
    }

    static Stretch Open(const StoreTable& table, const OfSides<HeldRows>& rows) {
        std::optional<StoreKey> first;
        Stretch stretch{{}, {}, false, {}};
        for (std::size_t side = 0; side < rows.size(); ++side) {
            stretch.rows.at(side) = Lines(table, rows.at(side));
            if (!rows.at(side).empty() && (!first || rows.at(side).front().key < *first)) {
                first = rows.at(side).front().key;
            }
        }
        stretch.key = first.value_or(StoreKey{});
        return stretch;
    }

    static std::string Presence(bool none) { return none ? "not there" : "there"; }

    static std::string Count(HeldRows rows) {
        return std::to_string(rows.size()) + (rows.size() == 1 ? " row" : " rows");
    }

    // "AUTO 12"
    [[nodiscard]] std::string Name(const Unit& unit) const {
        const auto& [table, rows] = *unit.begin();
        const auto row = *std::ranges::find_if(rows, [](HeldRows side) { return !side.empty(); });
        if (!HoldsNodes(*table)) {
            return table->name + ", " + KeyText(*table, Unpacked(row.front().fields));
        }
        const StoreKey key = NodeKeyOf(*table, row.front().key);
        std::string name = "type " + std::to_string(key[2]);
        // A row of a list tells the type of what it refers to.
        if (const auto column = FindColumn(*table, "NodeType"); column && !HoldsLists(*table)) {
            name = Unpacked(row.front().fields)[*column].value_or(name);
        }
        name += ' ' + std::to_string(key[3]);
        return texts_[Ours]->Scope() ? name
                                     : name + " of configuration " + std::to_string(key[0]) + ", partition " +
                                           std::to_string(key[1]);
    }

    OfSides<const Text*> texts_;
    MergedText merged_;
    MergeReport report_;
};

} // namespace

MergeReport MergeExports(const std::filesystem::path& base, const std::filesystem::path& ours,
                         const std::filesystem::path& theirs, std::string& merged) {
    const Text oursText(ours, false);
    const Text theirsText(theirs, false);
    const Text baseText(base, true);
    for (const auto& [file, text] : {std::pair(base, &baseText), std::pair(theirs, &theirsText)}) {
        if (!text->IsOfKind(oursText)) {
            throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                               "Cannot merge '" + ours.string() + "' and '" + file.string() +
                                   "': they are of different partitions, or hold different tables");
        }
    }
    return Merger({&baseText, &oursText, &theirsText}).Run(merged);
}

} // namespace KAL_AUTO_Node
