#include "exchange/Export.h"

#include "exchange/ExchangeText.h"
#include "exchange/FileKind.h"
#include "exchange/TableCursor.h"
#include "platform/Interruption.h"
#include "platform/NewFile.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"
#include "store/Connection.h"

#include <algorithm>
#include <list>

namespace KAL_AUTO_Node {

namespace {

constexpr std::size_t BytesWrittenAtOnce = 64U << 10U;

// What import would refuse is no export: it is told while it can still be mended.
void RequireImportable(const StoreTable& table, const StoreRow& row) {
    for (std::size_t at = 0; at < table.columns.size(); ++at) {
        const StoreColumn& column = table.columns[at];
        const auto& value = row[at];
        std::optional<std::string> why;
        if (column.number || !value || value->find('\0') != std::string::npos) {
            auto taken = value;
            why = WhyNot(column, taken);
            if (!why && taken != value) {
                why = "is \"" + *value + "\" and not " + *taken;
            }
        }
        if (why) {
            throw RuntimeError(ErrorNumber::StoreFailure,
                               "Nothing is exported, since import would refuse it: " + table.name + ", " +
                                   KeyText(table, row) + ": " + column.name + ' ' + *why);
        }
    }
}

class ExportFile {
  public:
    ExportFile(const std::filesystem::path& place, const ExportProgress& progress)
        : file_(place), progress_(progress) {}

    std::string& Text() { return text_; }

    void MayWrite(std::uint64_t rows) {
        if (text_.size() >= BytesWrittenAtOnce) {
            file_.Append(text_);
            text_.clear();
            progress_(rows);
        }
    }

    void Finish() {
        file_.Append(text_);
        file_.Finish();
    }

  private:
    Output file_;
    const ExportProgress& progress_;
    std::string text_; // not written yet
};

std::uint64_t WriteTable(TableCursor& rows, ExportFile& file, std::uint64_t before) {
    std::uint64_t count = 0;
    file.Text() += Exchange::TableHead(rows.Table());
    for (; const StoreRow* row = rows.Row(); rows.Next()) {
        RequireImportable(rows.Table(), *row);
        file.Text() += count++ == 0 ? "\n" : Exchange::RowEnd;
        Exchange::AppendRow(file.Text(), rows.Table(), *row);
        file.MayWrite(before + count);
    }
    file.Text() += Exchange::TableEnd;
    return count;
}

std::uint64_t WriteStore(DataBase& dataBase, std::optional<Partition> scope, ExportFile& file) {
    file.Text() += Exchange::Head(scope);
    std::list<TableCursor> cursors;
    std::vector<StatementRun> first;
    for (const StoreTable& table : StoreTables()) {
        if ((!scope || table.partitioned) && dataBase.HasTable(table.name)) {
            first.push_back(cursors.emplace_back(dataBase, table, scope).First());
        }
    }
    ReadAhead ahead(dataBase);
    ahead.Fetch(first);
    std::uint64_t rows = 0;
    for (TableCursor& cursor : cursors) {
        file.Text() += &cursor == &cursors.front() ? "" : Exchange::RowEnd;
        rows += WriteTable(cursor, file, rows);
    }
    file.Text() += Exchange::End;
    return rows;
}

} // namespace

std::uint64_t Export(DataBase& dataBase, std::optional<Partition> scope, const std::filesystem::path& file,
                     const ExportProgress& progress) {
    std::error_code ignored;
    if (!Output::IsStream(file) && std::filesystem::exists(file, ignored) &&
        !std::filesystem::is_empty(file, ignored) && KindOf(file) != FileKind::Exchange) {
        throw RuntimeError(ErrorNumber::PermissionDenied,
                           "'" + file.string() + "' is something else than an export, and is left as it is");
    }
    const Snapshot state(dataBase);
    const Interruption interruption;
    ExportFile written(file, progress);
    const std::uint64_t rows = WriteStore(dataBase, scope, written);
    if (scope && rows == 0) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                           "Nothing is exported: " + scope->Text() + " has no rows");
    }
    written.Finish();
    return rows;
}

} // namespace KAL_AUTO_Node
