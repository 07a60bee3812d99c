#pragma once

#include "store/Waits.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// What a store's engine offers to the named commands. Texts are UTF-8. Failures are RuntimeErrors whose
// description is the engine's own message.

// One statement, prepared once on its connection and run as often as needed.
class Statement {
  public:
    virtual ~Statement() = default;

    [[nodiscard]] virtual std::size_t ParameterCount() const = 0;
    // The names of the result's columns; none for a statement without result rows.
    [[nodiscard]] virtual std::span<const std::string> Columns() const = 0;

    // Takes one text per parameter, or nothing for Null, and runs to the first row, or to the end of a
    // statement without result rows. The texts have to stay as they are until Close.
    virtual void Run(std::span<const std::optional<std::string>> parameters) = 0;
    [[nodiscard]] virtual bool AtEnd() const = 0;
    // Only while not at the end.
    virtual void MoveNext() = 0;
    // A field of the row reached, or nothing for Null; valid until the next move.
    [[nodiscard]] virtual std::optional<std::string_view> Field(std::size_t column) const = 0;
    // How many rows the latest run inserted, updated or deleted; of a statement without result rows.
    [[nodiscard]] virtual std::int64_t RowsWritten() const = 0;
    // Lets go of the rows and of every lock that reading them holds.
    virtual void Close() noexcept = 0;
};

// One run of a statement among several.
struct StatementRun {
    Statement* statement;
    std::span<const std::optional<std::string>> parameters;
};

class Connection {
  public:
    virtual ~Connection() = default;

    // Where the statements run, for reports: "file '/x'".
    [[nodiscard]] virtual std::string Place() const = 0;

    // The statement's parameters are names after a colon, numbered in the order in which they first occur.
    virtual std::unique_ptr<Statement> Prepare(const std::string& sql) = 0;

    // Until Commit, statements take effect for nobody else; without it, not at all. Begin takes the right to
    // write what stands under a number, or anything where none is given, so that what is read after it stays
    // so. An engine may take more than is asked for.
    virtual void Begin(std::optional<std::int64_t> number) = 0;
    virtual void Commit() = 0;
    virtual void Rollback() noexcept = 0;

    // Until EndReading, all that is read is of one state, which nobody is kept from changing, and nothing is
    // written. Both tell whether statements that were prepared before go on reading the state of before.
    virtual bool BeginReading() = 0;
    virtual bool EndReading() noexcept = 0;

    // Whether reading of one state costs nothing now, and less than asking each time anew.
    [[nodiscard]] virtual bool HasFreeSnapshots() const { return false; }

    [[nodiscard]] virtual bool HasTable(const std::string& name) = 0;
    // Several statements without parameters and result rows.
    virtual void RunScript(const char* sql) = 0;

    // Of the tables, as the store told it when it was opened or told it last; 0 where it tells none.
    [[nodiscard]] virtual int Version() const = 0;
    virtual void SetVersion(int version) = 0;

    // Whether each statement costs the way to a server and back, so that several should go together. The
    // three below are for such an engine.
    [[nodiscard]] virtual bool IsRemote() const { return false; }

    // As whom a server knows this connection; nothing in a file.
    [[nodiscard]] virtual std::string Role() const { return {}; }

    enum class Then { Stay, Commit };

    // Runs statements without result rows in their order, all or none of them, and tells how many rows each
    // wrote; with Commit, ends the transaction with them. Where one fails, reached tells which.
    virtual std::vector<std::int64_t> RunTogether(std::span<const StatementRun> runs, Then then,
                                                  std::size_t& reached);
    // Fetches the rows of runs that may follow, which are then taken from here. What fails is left for the
    // run itself to tell, but for a transaction, which it ends: there it is raised, and reached tells which.
    // Any write makes what was fetched old, and drops it.
    virtual void FetchAhead(std::span<const StatementRun> runs, std::size_t& reached);

    virtual void DropAhead() noexcept {}

    // Another number than before where others may have changed what is stored meanwhile; nothing where that
    // cannot be told now. A cheap look: it waits for nobody, and but for the first costs no way to a server,
    // where those tell of their changes whose programs do. Outside of transactions and snapshots.
    [[nodiscard]] virtual std::optional<std::int64_t> ChangeMark() { return std::nullopt; }

    // Gives back to the file system what is free in the store's file, and tells how many bytes; nothing where
    // an engine sees to that itself.
    virtual std::optional<std::int64_t> Compact() { return std::nullopt; }

    // Before nothing is asked for a while: a server hears now that a reading has ended, else with what comes
    // next.
    virtual void LetGo() {}

    // Makes every statement that this connection has run so far outlast a power cut. Until then the latest of
    // them may be lost, from some statement on and never in the middle of one.
    virtual void Flush() = 0;
};

// Opens the store that a file is or stands for; the file's content tells which engine reads it. Nothing is
// created: a missing file raises StoreNotFound, a file that no engine here reads StoreNotRecognized.
std::unique_ptr<Connection> OpenStore(const std::filesystem::path& file, const Waits& waits);

// An empty store in memory, gone with the connection.
std::unique_ptr<Connection> OpenScratchStore();

} // namespace KAL_AUTO_Node
