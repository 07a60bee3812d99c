#include "store/DataBase.h"

#include "platform/FoldCase.h"
#include "platform/NativePath.h"
#include "platform/NumericValue.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"
#include "store/Connection.h"
#include "store/ParlonPlusFilesAndFolders.h"
#include "store/PortableSql.h"
#include "store/Scripts.h"

#include <algorithm>
#include <cassert>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

namespace {

// Of the configured place, whose parts are separated as the suite separates them.
std::filesystem::path FileIn(std::string_view connectionString) {
    static constexpr std::string_view key = "Data Source=";
    return NativePath(connectionString.substr(connectionString.find(key) + key.size()));
}

} // namespace

// The engine's message tells what went wrong; where it did is known here.
template <class Use>
decltype(auto) DataBase::Describing(std::string_view work, std::string_view command, Use&& use) const {
    if (vain_) {
        throw RuntimeError(*vain_);
    }
    try {
        return use();
    } catch (const RuntimeError& error) {
        std::string description = error.what();
        const std::string file = File().string();
        const std::string place = Place();
        description += " (";
        description += work;
        description += command;
        if (description.find(file) == std::string::npos && description.find(place) == std::string::npos) {
            description += ", ";
            description += place;
        }
        description += ')';
        Fail({error.Number(), description, error.Source()});
    }
}

void DataBase::Fail(const RuntimeError& error) const {
    const bool unreachable = error.Number() == ErrorNumber::StoreUnreachable;
    if (singleWaits_ > 0 && (unreachable || error.Number() == ErrorNumber::StoreLocked)) {
        vain_ = error;
        if (unreachable) {
            vain_->BeOne();
        }
        throw RuntimeError(*vain_);
    }
    throw RuntimeError(error);
}

template <class Use>
decltype(auto) DataBase::Describing(Command command, Use&& use) const {
    return Describing("command ", CommandName(command), std::forward<Use>(use));
}

ResultSet::ResultSet(ResultSet&& other) noexcept
    : owner_(std::exchange(other.owner_, nullptr)), command_(other.command_) {}

ResultSet::~ResultSet() { Close(); }

Statement& ResultSet::Rows() const {
    assert(owner_ != nullptr);
    return *owner_->Of(command_).statement;
}

bool ResultSet::AtEnd() const { return owner_ == nullptr || Rows().AtEnd(); }

void ResultSet::MoveNext() {
    assert(!AtEnd());
    owner_->Describing(command_, [this] { Rows().MoveNext(); });
}

std::size_t ResultSet::Column(std::string_view name) const {
    if (owner_ == nullptr) {
        return 0;
    }
    const auto columns = Rows().Columns();
    const auto found =
        std::ranges::find_if(columns, [=](const auto& column) { return SameInAscii(column, name); });
    if (found == columns.end()) {
        throw RuntimeError(ErrorNumber::ColumnNotFound, "The rows of " + std::string(CommandName(command_)) +
                                                            " have no column " + std::string(name));
    }
    return static_cast<std::size_t>(found - columns.begin());
}

std::optional<std::string_view> ResultSet::Field(std::size_t column) const { return Rows().Field(column); }

void ResultSet::Fail(ErrorNumber number, const std::string& what, std::size_t column) const {
    // A server tells it in lower case.
    throw RuntimeError(
        number, what + ": " +
                    std::string(AsWritten(CommandText(command_) + SchemaScript, Rows().Columns()[column])) +
                    " in the rows of " + std::string(CommandName(command_)));
}

std::string_view ResultSet::Text(std::size_t column) const {
    if (const auto text = Field(column)) {
        return *text;
    }
    Fail(ErrorNumber::InvalidUseOfNull, "Invalid use of Null", column);
}

template <class Whole>
Whole ResultSet::Within(std::size_t column) const {
    const auto value = NumericValue(Text(column));
    if (!std::in_range<Whole>(value)) {
        Fail(ErrorNumber::Overflow, "Overflow", column);
    }
    return static_cast<Whole>(value);
}

int ResultSet::Number(std::size_t column) const { return Within<int>(column); }

std::int64_t ResultSet::Number64(std::size_t column) const { return Within<std::int64_t>(column); }

std::int16_t ResultSet::Number16(std::size_t column) const { return Within<std::int16_t>(column); }

void ResultSet::Close() noexcept {
    if (DataBase* owner = std::exchange(owner_, nullptr)) {
        DataBase::Prepared& prepared = owner->Of(command_);
        prepared.statement->Close();
        prepared.open = false;
    }
}

DataBase::DataBase(const Waits& waits)
    : connectionString_(GetConnectionString()), file_(FileIn(connectionString_)), waits_(waits) {}

DataBase::DataBase(std::filesystem::path file, const Waits& waits)
    : connectionString_(ConnectionStringOf(file.string())), file_(std::move(file)), waits_(waits) {}

DataBase::DataBase(std::unique_ptr<Connection> connection) : connection_(std::move(connection)) {}

DataBase::~DataBase() = default;

std::string DataBase::Place() const {
    return connection_ ? connection_->Place() : "file '" + file_.string() + '\'';
}

Connection& DataBase::Open() {
    if (!connection_) {
        connection_ = OpenStore(file_, waits_);
    }
    return *connection_;
}

Statement& DataBase::StatementOf(Command command, std::size_t parameters) {
    Prepared& prepared = Of(command);
    if (prepared.open) {
        throw RuntimeError(ErrorNumber::ResultSetOpen,
                           "The result set of " + std::string(CommandName(command)) + " is still open");
    }
    if (!prepared.statement) {
        prepared.statement = Open().Prepare(CommandText(command));
    }
    Statement& statement = *prepared.statement;
    if (parameters != statement.ParameterCount()) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                           "Takes " + std::to_string(statement.ParameterCount()) + " parameters, not " +
                               std::to_string(parameters));
    }
    return statement;
}

Statement& DataBase::Run(Command command, Parameters parameters) {
    auto values = ValuesOf(parameters);
    // Those of an earlier run stay as they are while its rows are open.
    Statement& statement = StatementOf(command, values.size());
    Prepared& prepared = Of(command);
    prepared.parameters = std::move(values);
    try {
        statement.Run(prepared.parameters);
    } catch (...) {
        statement.Close();
        throw;
    }
    return statement;
}

std::int64_t DataBase::Execute(Command command, Parameters parameters) {
    return Describing(command, [&] {
        Statement& statement = Run(command, parameters);
        const std::int64_t written = statement.RowsWritten();
        statement.Close();
        return written;
    });
}

bool DataBase::Asking::Add(Command command, Parameters parameters) {
    CommandRun run(command, parameters);
    const bool isFresh = !known.contains(run);
    if (isFresh) {
        fresh.insert(std::move(run));
    }
    return isFresh;
}

ResultSet DataBase::Query(Command command, Parameters parameters) {
    if (asking_ != nullptr && asking_->Add(command, parameters)) {
        return {nullptr, command};
    }
    return Describing(command, [&] {
        Run(command, parameters);
        Of(command).open = true;
        return ResultSet(this, command);
    });
}

std::unique_ptr<Statement> DataBase::Prepare(const std::string& sql) {
    return Describing("preparing ", sql, [&] { return Open().Prepare(sql); });
}

std::vector<std::int64_t> DataBase::RunTogether(std::span<const StatementRun> runs) {
    std::size_t reached = 0;
    return runs.empty() ? std::vector<std::int64_t>()
                        : connection_->RunTogether(runs, Connection::Then::Stay, reached);
}

void DataBase::Flush() {
    if (connection_) {
        Describing("making the changes last", "", [this] { connection_->Flush(); });
    }
}

void DataBase::LetGo() {
    if (connection_) {
        Describing("ending a reading", "", [this] { connection_->LetGo(); });
    }
}

std::optional<std::int64_t> DataBase::Compact() {
    return Describing("compacting the store", "", [this] { return Open().Compact(); });
}

bool DataBase::HasTable(const std::string& name) {
    return Describing("looking for table ", name, [&] { return Open().HasTable(name); });
}

std::string DataBase::Role() {
    return Describing("opening the store", "", [&] { return Open().Role(); });
}

void DataBase::MakeTables(const char* script) {
    Transaction all(*this);
    RunScript(script);
    all.Commit();
}

void DataBase::RunScript(const char* script) {
    Describing("making tables", "", [&] { Open().RunScript(script); });
}

void DataBase::SetVersion(int version) {
    Describing("making tables", "", [&] { Open().SetVersion(version); });
}

std::vector<std::string> DataBase::Columns(const std::string& table) {
    return Describing("looking at table ", table, [&] {
        const auto statement = Open().Prepare("SELECT * FROM " + table + " WHERE 1 = 0");
        statement->Run({});
        const auto columns = statement->Columns();
        return std::vector<std::string>(columns.begin(), columns.end());
    });
}

std::optional<int> DataBase::Version() const {
    return connection_ ? std::optional(connection_->Version()) : std::nullopt;
}

std::optional<std::int64_t> DataBase::ChangeMark() {
    return connection_ ? connection_->ChangeMark() : std::nullopt;
}

bool DataBase::IsRemote() {
    return Describing("opening the store", "", [&] { return Open().IsRemote(); });
}

std::vector<StatementRun> DataBase::RunsOf(const std::vector<CommandRun>& runs) {
    std::vector<StatementRun> statements;
    statements.reserve(runs.size());
    for (const CommandRun& run : runs) {
        statements.push_back(
            {Describing(run.command, [&] { return &StatementOf(run.command, run.parameters.size()); }),
             run.parameters});
    }
    return statements;
}

template <class Use>
decltype(auto) DataBase::DescribingReached(const std::vector<CommandRun>& runs, Use&& use) {
    const auto statements = RunsOf(runs);
    std::size_t reached = 0;
    try {
        return use(statements, reached);
    } catch (const RuntimeError&) {
        const auto again = []() -> decltype(use(statements, reached)) { throw; };
        return reached < runs.size() ? Describing(runs[reached].command, again)
                                     : Describing("ending a change", "", again);
    }
}

std::vector<std::int64_t> DataBase::RunTogether(const std::vector<CommandRun>& runs, bool committing) {
    const auto then = committing ? Connection::Then::Commit : Connection::Then::Stay;
    return DescribingReached(runs, [&](const auto& statements, std::size_t& reached) {
        return connection_->RunTogether(statements, then, reached);
    });
}

bool DataBase::BeginReadingAhead() noexcept {
    ++readersAhead_;
    try {
        return IsRemote();
    } catch (const RuntimeError&) {
        return false;
    }
}

void DataBase::EndReadingAhead() noexcept {
    if (--readersAhead_ == 0 && connection_) {
        connection_->DropAhead();
    }
}

void DataBase::FetchAhead(const std::vector<CommandRun>& runs) {
    DescribingReached(runs, [&](const auto& statements, std::size_t& reached) {
        connection_->FetchAhead(statements, reached);
    });
}

void DataBase::PrepareAnew(bool isNeeded) {
    for (Prepared& prepared : prepared_) {
        if (isNeeded && !prepared.open) {
            prepared.statement.reset();
        }
    }
}

Snapshot::Snapshot(DataBase& dataBase, Taken taken)
    : dataBase_(dataBase), taken_(taken == Taken::Always || (dataBase.connection_ != nullptr &&
                                                             dataBase.connection_->HasFreeSnapshots())) {
    if (taken_) {
        dataBase_.Describing("beginning to read", "",
                             [&] { dataBase_.PrepareAnew(dataBase_.Open().BeginReading()); });
    }
}

Snapshot::~Snapshot() {
    if (taken_) {
        dataBase_.PrepareAnew(dataBase_.connection_->EndReading());
    }
}

Transaction::Transaction(DataBase& dataBase, std::optional<std::int64_t> number) : dataBase_(dataBase) {
    dataBase_.Describing("beginning a change", "", [&] { dataBase_.Open().Begin(number); });
}

Transaction::~Transaction() {
    if (open_) {
        dataBase_.connection_->Rollback();
    }
}

void Transaction::Commit() {
    dataBase_.Describing("ending a change", "", [this] { dataBase_.connection_->Commit(); });
    open_ = false;
}

void Transaction::Commit(Batch& last) {
    if (last.waiting_.empty()) {
        Commit();
    } else {
        last.Send(true);
        open_ = false;
    }
}

} // namespace KAL_AUTO_Node
