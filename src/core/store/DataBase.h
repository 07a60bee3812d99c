#pragma once

#include "platform/RuntimeError.h"
#include "store/Waits.h"

#include <array>
#include <compare>
#include <concepts>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

class Connection;
class Batch;
class DataBase;
class Statement;
class StoreUpgrade;
struct StatementRun;

// The named commands, in the order of the files where their statements stand: commands.sql,
// overview.sql, history.sql, audit.sql; then those of ReferenceColumns.h.
enum class Command {
#define COMMAND(name, sql) name,
#include "store/Commands.inc"
#undef COMMAND
};

inline constexpr std::size_t CommandCount = 0
#define COMMAND(name, sql) +1
#include "store/Commands.inc"
#undef COMMAND
    ;

[[nodiscard]] std::string_view CommandName(Command command);
[[nodiscard]] const std::string& CommandText(Command command);

// A parameter of a command, or several. Every value is passed as text; numbers become their decimal text.
// Nothing is Null.
class Parameter {
  public:
    Parameter(std::string_view text) : values_{std::string(text)} {}

    Parameter(std::string text) : values_{std::move(text)} {}

    Parameter(const char* text) : values_{text} {}

    Parameter(std::integral auto number) : values_{std::to_string(number)} {}

    template <class Value>
    Parameter(const std::optional<Value>& value) : Parameter() {
        if (value) {
            *this = Parameter(*value);
        }
    }

    // What is told by several numbers, such as a node's place, is as many parameters.
    template <class Identity>

    requires requires(const Identity& identity) { identity.Numbers(); }

    Parameter(const Identity& identity) : count_(0) {
        for (const int number : identity.Numbers()) {
            values_.at(count_++) = std::to_string(number);
        }
    }

    [[nodiscard]] auto Values() const { return std::span(values_).first(count_); }

  private:
    Parameter() = default;

    std::array<std::optional<std::string>, 3> values_;
    std::size_t count_ = 1;
};

using Parameters = std::initializer_list<Parameter>;

[[nodiscard]] std::vector<std::optional<std::string>> ValuesOf(Parameters parameters);

// One run of a command among several.
struct CommandRun {
    CommandRun(Command which, Parameters with);

    Command command;
    std::vector<std::optional<std::string>> parameters;

    // NOLINTNEXTLINE(modernize-use-nullptr): finds a 0 in what the compiler writes
    friend auto operator<=>(const CommandRun&, const CommandRun&) = default;
};

// The rows of a command's latest run, read forward from the first; closed at the end of its life at the
// latest. A field is asked for by its column's name or, where many rows are read, by the position looked up
// once.
class ResultSet {
  public:
    ResultSet(ResultSet&& other) noexcept;
    ResultSet& operator=(ResultSet&&) = delete;
    ~ResultSet();

    [[nodiscard]] bool AtEnd() const;
    // Only while not at the end.
    void MoveNext();

    // The position of the column of that name, whatever its case. Raises ColumnNotFound.
    [[nodiscard]] std::size_t Column(std::string_view name) const;

    // The field's text, or nothing for Null; valid until the next move.
    [[nodiscard]] std::optional<std::string_view> Field(std::size_t column) const;
    // The field's text. Raises InvalidUseOfNull.
    [[nodiscard]] std::string_view Text(std::size_t column) const;
    // The field's numeric value. Raises InvalidUseOfNull, and Overflow beyond 32 bits.
    [[nodiscard]] int Number(std::size_t column) const;
    // The same of 64 bits, beyond which it is the nearest.
    [[nodiscard]] std::int64_t Number64(std::size_t column) const;
    // The field's numeric value as a number of the identity of nodes. Raises InvalidUseOfNull, and Overflow
    // beyond 16 bits: a number that is cut would be another node's.
    [[nodiscard]] std::int16_t Number16(std::size_t column) const;

    [[nodiscard]] auto Field(std::string_view column) const { return Field(Column(column)); }

    [[nodiscard]] auto Text(std::string_view column) const { return Text(Column(column)); }

    [[nodiscard]] auto Number(std::string_view column) const { return Number(Column(column)); }

    [[nodiscard]] auto Number64(std::string_view column) const { return Number64(Column(column)); }

    [[nodiscard]] auto Number16(std::string_view column) const { return Number16(Column(column)); }

    void Close() noexcept;

  private:
    friend class DataBase;

    ResultSet(DataBase* owner, Command command) : owner_(owner), command_(command) {}

    [[nodiscard]] Statement& Rows() const;
    template <class Whole>
    [[nodiscard]] Whole Within(std::size_t column) const;
    [[noreturn]] void Fail(ErrorNumber number, const std::string& what, std::size_t column) const;

    DataBase* owner_; // none once closed, and while rows are only asked for
    Command command_;
};

// The data environment: one connection to the store that the connection string names, and the named commands
// on it. The connection is opened by the first command and closed with the object; statements are prepared
// once. Every failure is a RuntimeError whose description says what went wrong, in which command and in which
// file. The object outlives its result sets.
class DataBase {
  public:
    // Finds the store's place anew. Opens nothing. Raises UnsupportedValueType where the configured place is
    // of a kind that no path is made of.
    explicit DataBase(const Waits& waits = {});
    // The store in a file of that path, as this system writes it.
    explicit DataBase(std::filesystem::path file, const Waits& waits = {});
    // A store that is open already.
    explicit DataBase(std::unique_ptr<Connection> connection);
    ~DataBase();

    DataBase(const DataBase&) = delete;
    DataBase& operator=(const DataBase&) = delete;

    [[nodiscard]] const Waits& HowLong() const noexcept { return waits_; }

    [[nodiscard]] const std::string& ConnectionString() const noexcept { return connectionString_; }

    // Where it lies, for people: "file '/x'".
    [[nodiscard]] std::string Place() const;

    // The store's file, as this system writes its path.
    [[nodiscard]] const std::filesystem::path& File() const noexcept { return file_; }

    // Runs a command. Raises ResultSetOpen while the command's result set of an earlier run is open, and
    // InvalidProcedureCall for a wrong number of parameters. Execute returns how many rows were written.
    std::int64_t Execute(Command command, Parameters parameters);
    [[nodiscard]] ResultSet Query(Command command, Parameters parameters);

    // A statement that is no named command, for work on whole tables. It ends before the data base does, and
    // its errors are the engine's own.
    [[nodiscard]] std::unique_ptr<Statement> Prepare(const std::string& sql);
    // Runs such statements without result rows in their order; to a server they go together. Tells how many
    // rows each wrote.
    std::vector<std::int64_t> RunTogether(std::span<const StatementRun> runs);

    // Of what was read: call it before nothing is asked for a while.
    void LetGo();

    // Makes all that was written so far outlast a power cut. Call it at the end of a run of statements.
    void Flush();

    // Gives back to the file system what is free in the store's file; the bytes, or nothing on a server.
    std::optional<std::int64_t> Compact();

    // Whether the store has a table of that name.
    [[nodiscard]] bool HasTable(const std::string& name);

    // As whom a server knows who works here; nothing in a file.
    [[nodiscard]] std::string Role();

    // Runs statements that make or change tables, all or none.
    void MakeTables(const char* script);
    // The columns of a table that there is.
    [[nodiscard]] std::vector<std::string> Columns(const std::string& table);

    // Of the tables, as the store tells it: 0 where it tells none, for it is another program's, and nothing
    // where the store is not open.
    [[nodiscard]] std::optional<int> Version() const;
    // Another number than before where others may have changed the store meanwhile; nothing where that cannot
    // be told, and where the store is not open. A cheap look.
    [[nodiscard]] std::optional<std::int64_t> ChangeMark();
    // Whether it lies on a server. Opens it.
    [[nodiscard]] bool IsRemote();

    // Whether texts may be any bytes; else they have to be UTF-8, without NULs.
    [[nodiscard]] bool TakesAnyBytes() { return !IsRemote(); }

  private:
    friend class Batch;
    friend class ReadAhead;
    friend class ResultSet;
    friend class SingleWait;
    friend class Snapshot;
    friend class StoreUpgrade;
    friend class Transaction;

    Connection& Open();
    // Where statements that are prepared read another state than what is to be read now.
    void PrepareAnew(bool isNeeded);
    // Part of a transaction.
    void RunScript(const char* script);
    void SetVersion(int version);

    // For Batch and ReadAhead, which save ways to a server and back.
    std::vector<std::int64_t> RunTogether(const std::vector<CommandRun>& runs, bool committing);
    // Returns whether that is of use; not where the store cannot be opened, which what follows will tell.
    bool BeginReadingAhead() noexcept;
    void EndReadingAhead() noexcept;
    void FetchAhead(const std::vector<CommandRun>& runs);

    // What reading code asks for.
    struct Asking {
        std::set<CommandRun> known;
        std::set<CommandRun> fresh; // not fetched yet

        // Whether that is one of the fresh ones.
        bool Add(Command command, Parameters parameters);
    };

    struct Prepared {
        std::unique_ptr<Statement> statement;
        std::vector<std::optional<std::string>> parameters; // of the latest run
        bool open = false;
    };

    Prepared& Of(Command command) { return prepared_[static_cast<std::size_t>(command)]; }

    // The statement of a command that takes that many parameters.
    Statement& StatementOf(Command command, std::size_t parameters);
    Statement& Run(Command command, Parameters parameters);
    [[noreturn]] void Fail(const RuntimeError& error) const;
    template <class Use>
    decltype(auto) Describing(std::string_view work, std::string_view command, Use&& use) const;
    template <class Use>
    decltype(auto) Describing(Command command, Use&& use) const;
    template <class Use>
    decltype(auto) DescribingReached(const std::vector<CommandRun>& runs, Use&& use);
    std::vector<StatementRun> RunsOf(const std::vector<CommandRun>& runs);

    std::string connectionString_;
    std::filesystem::path file_;
    Waits waits_;
    std::unique_ptr<Connection> connection_;
    std::array<Prepared, CommandCount> prepared_;
    int readersAhead_ = 0;
    Asking* asking_ = nullptr;
    int singleWaits_ = 0;
    mutable std::optional<RuntimeError> vain_; // what a wait that is not made again ended with
};

// While one lives, a server that does not answer, or another program that keeps the store locked, is waited
// for once: what comes after it fails in the same way without a wait. Of a server, that is one error, which
// is told once. The data base outlives it.
class SingleWait {
  public:
    explicit SingleWait(DataBase& dataBase) : dataBase_(dataBase) { ++dataBase_.singleWaits_; }

    ~SingleWait() {
        if (--dataBase_.singleWaits_ == 0) {
            dataBase_.vain_.reset();
        }
    }

    SingleWait(const SingleWait&) = delete;
    SingleWait& operator=(const SingleWait&) = delete;

  private:
    DataBase& dataBase_;
};

// One state of the store, in which all is read as long as it lives. It keeps nobody from writing, and nothing
// is written on the data base meanwhile. No two on one data base.
class Snapshot {
  public:
    // Of a file without a log it is a copy, on a server a transaction that ends with what is asked next. So
    // short work may take one only where it costs nothing, and reads on as ever elsewhere.
    enum class Taken { Always, WhereFree };

    explicit Snapshot(DataBase& dataBase, Taken taken = Taken::Always);
    ~Snapshot();

    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

  private:
    DataBase& dataBase_;
    bool taken_;
};

// Statements that take effect together, for others as for the disk: with Commit, or not at all. Where another
// one lasts, it waits as long as a statement does. On a server, one with a number keeps out only those with
// the same number and those without any. No two on one data base.
class Transaction {
  public:
    explicit Transaction(DataBase& dataBase, std::optional<std::int64_t> number = std::nullopt);
    ~Transaction();

    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void Commit();
    // Runs what was added to the batch and commits, in one go.
    void Commit(Batch& last);

  private:
    DataBase& dataBase_;
    bool open_ = true;
};

} // namespace KAL_AUTO_Node
