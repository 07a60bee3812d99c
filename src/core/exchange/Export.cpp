#include "exchange/Export.h"

#include "exchange/ExchangeFormat.h"
#include "exchange/FileKind.h"
#include "exchange/TableCursor.h"
#include "nodes/JsonText.h"
#include "platform/NewFile.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"
#include "store/Connection.h"

#include <algorithm>
#include <list>
#include <nlohmann/json.hpp>

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::json;

constexpr std::size_t BytesWrittenAtOnce = 64U << 10U;

void AppendText(std::string& line, const std::string& text) {
    try {
        AppendJsonText(line, text, NotUtf8::Refuse);
    } catch (const Json::type_error&) {
        static constexpr std::string_view digits = "0123456789abcdef";
        line += R"({"bytes": ")";
        for (const char byte : text) {
            line += digits[static_cast<unsigned char>(byte) >> 4U];
            line += digits[static_cast<unsigned char>(byte) & 0xFU];
        }
        line += "\"}";
    }
}

void AppendValue(std::string& line, const StoreColumn& column, const std::optional<std::string>& value) {
    auto number = value;
    if (!value) {
        line += "null";
    } else if (column.number && !WhyNot(column, number) && number == value) {
        line += *value;
    } else {
        AppendText(line, *value);
    }
}

class ExportFile {
  public:
    explicit ExportFile(const std::filesystem::path& place) : file_(place) { file_.Write(""); }

    std::string& Text() { return text_; }

    void MayWrite() {
        if (text_.size() >= BytesWrittenAtOnce) {
            file_.Append(text_);
            text_.clear();
        }
    }

    void Finish() {
        file_.Append(text_);
        file_.Replace();
    }

  private:
    NewFile file_;
    std::string text_; // not written yet
};

std::uint64_t WriteTable(TableCursor& rows, ExportFile& file) {
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
            AppendValue(file.Text(), table.columns[column], (*row)[column]);
        }
        file.Text() += '}';
        file.MayWrite();
    }
    return count;
}

std::uint64_t WriteStore(DataBase& dataBase, std::optional<Partition> scope, ExportFile& file) {
    const auto member = [&](const char* name, const Json& value) {
        file.Text() += (file.Text().empty() ? "{\"" : ", \"") + std::string(name) + "\": " + value.dump();
    };
    member(Exchange::FormatMember, Exchange::Format);
    member(Exchange::VersionMember, Exchange::Version);
    if (scope) {
        member(Exchange::ConfigMember, scope->config);
        member(Exchange::PartitionMember, scope->number);
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
        rows += WriteTable(cursor, file);
        file.Text() += "\n]";
        before = ",\n";
    }
    file.Text() += "\n}}\n";
    return rows;
}

// Where one may not write one cannot keep others from it either.
void TryToHold(std::optional<Transaction>& state, DataBase& dataBase) {
    try {
        state.emplace(dataBase);
    } catch (const RuntimeError& error) {
        if (error.Number() != ErrorNumber::PermissionDenied) {
            throw;
        }
    }
}

} // namespace

std::uint64_t Export(DataBase& dataBase, std::optional<Partition> scope, const std::filesystem::path& file) {
    std::error_code ignored;
    // Through a link the file that it names is replaced, not the link.
    std::filesystem::path place = std::filesystem::weakly_canonical(file, ignored);
    if (place.empty()) {
        place = file;
    }
    if (std::filesystem::exists(place, ignored) && !std::filesystem::is_empty(place, ignored) &&
        KindOf(place) != FileKind::Exchange) {
        throw RuntimeError(ErrorNumber::PermissionDenied,
                           "'" + file.string() + "' is something else than an export, and is left as it is");
    }
    std::optional<Transaction> state;
    TryToHold(state, dataBase);
    try {
        ExportFile written(place);
        const std::uint64_t rows = WriteStore(dataBase, scope, written);
        written.Finish();
        return rows;
    } catch (const RuntimeError&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw RuntimeError(ErrorNumber::StoreFailure,
                           "Cannot write '" + file.string() + "': " + error.what());
    }
}

} // namespace KAL_AUTO_Node
