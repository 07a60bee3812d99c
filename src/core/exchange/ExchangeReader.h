#pragma once

#include "exchange/Tables.h"
#include "nodes/Identity.h"

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>

namespace KAL_AUTO_Node {

// Takes what a text form (docs/exchange.md) tells, in order. What it throws ends the reading.
class ExchangeSink {
  public:
    virtual ~ExchangeSink() = default;

    // The partition, or nothing for a store; before all tables.
    virtual void TakeScope(std::optional<Partition> scope) = 0;
    // Each table once at most.
    virtual void TakeTable(const StoreTable& table) = 0;
    // Values that the columns can hold, of a partition of the scope; the rows of a table come in the order of
    // their keys, no key twice. Valid during the call. The line is that of its end.
    virtual void TakeRow(const StoreRow& row, std::uint64_t line) = 0;
    virtual void TakeEndOfTable() = 0;
};

// Whether a text may be any bytes, which not every store takes.
enum class AnyBytes { Take, Refuse };

// Reads a text to its end, a row at a time. Raises StoreNotRecognized, naming the line, for one of another
// form, where something is missing or too much, and where a value is none that its column can hold; what was
// told until then was right.
void ReadExchange(std::istream& text, ExchangeSink& sink, AnyBytes anyBytes = AnyBytes::Take);

// The same of a file, which is named in what is raised, behind what could not be done with it; StoreNotFound
// where it cannot be read.
void ReadExchangeFile(const std::filesystem::path& file, const std::string& failure, ExchangeSink& sink,
                      AnyBytes anyBytes = AnyBytes::Take);

} // namespace KAL_AUTO_Node
