#include "exchange/Export.h"

#include "exchange/ExchangeFormat.h"
#include "exchange/FileKind.h"
#include "exchange/TableCursor.h"
#include "nodes/JsonText.h"
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
void AppendValue(std::string& line, const StoreTable& table, const StoreRow& row, std::size_t at) {
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
    if (!value) {
        line += "null";
    } else if (column.number) {
        line += *value;
    } else {
        AppendJsonText(line, *value, NotUtf8::Bytes);
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
    const StoreTable& table = rows.Table();
    std::vector<std::string> names;
    for (const StoreColumn& column : table.columns) {
        names.push_back((names.empty() ? "{\"" : ", \"") + column.name + "\": ");
    }
    std::uint64_t count = 0;
    for (; const StoreRow* row = rows.Row(); rows.Next()) {
        file.Text() += count++ == 0 ? "\n" : ",\n";
        for (std::size_t column = 0; column < names.size(); ++column) {
            file.Text() += names[column];
            AppendValue(file.Text(), table, *row, column);
        }
        file.Text() += '}';
        file.MayWrite(before + count);
    }
    return count;
}

std::uint64_t WriteStore(DataBase& dataBase, std::optional<Partition> scope, ExportFile& file) {
    const auto member = [&](const char* name, const std::string& value) {
        file.Text() += (file.Text().empty() ? "{\"" : ", \"") + std::string(name) + "\": " + value;
    };
    std::string format;
    AppendJsonText(format, Exchange::Format, NotUtf8::Bytes);
    member(Exchange::FormatMember, format);
    member(Exchange::VersionMember, std::to_string(Exchange::Version));
    if (scope) {
        member(Exchange::ConfigMember, std::to_string(scope->config));
        member(Exchange::PartitionMember, std::to_string(scope->number));
    }
    file.Text() += ", \"" + std::string(Exchange::TablesMember) + "\": {";
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
    const char* before = "\n";
    for (TableCursor& cursor : cursors) {
        file.Text() += before + ('"' + cursor.Table().name) + "\": [";
        rows += WriteTable(cursor, file, rows);
        file.Text() += "\n]";
        before = ",\n";
    }
    file.Text() += "\n}}\n";
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
                           "Nothing is exported: configuration " + std::to_string(scope->config) +
                               ", partition " + std::to_string(scope->number) + " has no rows");
    }
    written.Finish();
    return rows;
}

} // namespace KAL_AUTO_Node
