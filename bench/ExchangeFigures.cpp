#include "exchange/ExchangeImport.h"
#include "exchange/Export.h"
#include "exchange/JetFrames.h"
#include "exchange/JetImport.h"
#include "exchange/TableCursor.h"
#include "store/DataBase.h"
#include "testing/Relay.h"
#include "testing/TestStore.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>

// A store of 10,000 AUTO nodes with 9 + 9 rows each, 200,000 rows, brought into others as text and as a Jet
// file is told of: beside a bare reading of the text and, in a file, beside a raw writer of the same rows. On
// a server where KAL_TEST_SERVER names one.
namespace {

using namespace KAL_AUTO_Node;

constexpr const char* Content = R"(
    WITH RECURSIVE N (i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM N WHERE i < 10000)
    INSERT INTO Node_AUTO SELECT 1, 3, 9, i, 2, 'No', 5, 3, 2, 'MSG', 1, 'MSG', 1, 'MSG', 1, 'AUTO',
           'Menu ' || i, 0, 0, 0, 814, 814, 'NONE', 0, 'NONE', 0 FROM N;
    INSERT INTO Node_General_Pool SELECT 1, 3, 9, NodeNumber, 'AUTO', NodeDescription, '09/14/26' FROM Node_AUTO
     WHERE PartID = 3;
    WITH RECURSIVE N (i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM N WHERE i < 9)
    INSERT INTO Detail_AUTO_Prompts SELECT 1, 3, i, 0, i, NodeNumber, 'MSG' FROM Node_AUTO, N WHERE PartID = 3;
    WITH RECURSIVE N (i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM N WHERE i < 9)
    INSERT INTO Detail_AUTO_Action SELECT 1, 3, i, 9, i, NodeNumber, '' || i, '' || i, 'AUTO' FROM Node_AUTO, N
     WHERE PartID = 3)";

class Told : public nlohmann::json_sax<nlohmann::json> {
  public:
    bool null() override { return true; }

    bool boolean(bool) override { return true; }

    bool number_integer(number_integer_t) override { return true; }

    bool number_unsigned(number_unsigned_t) override { return true; }

    bool number_float(number_float_t, const string_t&) override { return true; }

    bool string(string_t&) override { return true; }

    bool binary(binary_t&) override { return true; }

    bool start_object(std::size_t) override { return true; }

    bool key(string_t&) override { return true; }

    bool end_object() override { return true; }

    bool start_array(std::size_t) override { return true; }

    bool end_array() override { return true; }

    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception&) override {
        return false;
    }
};

template <class Work>
double Seconds(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The two take turns.
template <class Ours, class Floor>
void Compare(const char* name, int turns, Ours ours, Floor floor) {
    std::vector<double> our;
    std::vector<double> raw;
    for (int turn = 0; turn < turns; ++turn) {
        our.push_back(ours());
        raw.push_back(floor());
    }
    std::ranges::sort(our);
    std::ranges::sort(raw);
    const auto middle = static_cast<std::size_t>(turns) / 2;
    std::printf("%s: %.3f s, raw %.3f s, %.2fx\n", name, our[middle], raw[middle], our[middle] / raw[middle]);
}

// How long the work on a store takes; on a server it goes over a line that counts the ways.
template <class Work>
double SecondsOn(const TestStore& store, Work work) {
    std::optional<Relay> line;
    auto file = store.File();
    if (TestStore::OnServer()) {
        std::string address;
        std::ifstream(file) >> address;
        const auto begin = address.find("@/") + 2;
        line.emplace(std::chrono::milliseconds(0));
        file = store.Folder() / "far";
        CreateServerStore(file, line->AddressOf(address.substr(begin, address.find('?') - begin)),
                          StoreContent::Empty);
        line->Ways();
    }
    const double seconds = Seconds([&] {
        DataBase dataBase(file);
        work(dataBase);
    });
    if (line) {
        std::printf("%d ways. ", line->Ways());
        std::filesystem::remove(file);
    }
    return seconds;
}

double ImportText(const TestStore& store, const std::filesystem::path& file) {
    return SecondsOn(store, [&](DataBase& dataBase) {
        static_cast<void>(ImportExchange(dataBase, file, Import::Carry, [](const auto&...) {}));
    });
}

void TellAsJet(DataBase& dataBase, const std::filesystem::path& file) {
    std::ofstream stream(file, std::ios::binary);
    JetFrameWriter writer([&](std::string_view bytes) { stream << bytes; });
    for (const StoreTable& table : StoreTables()) {
        JetTable told{table.name, 0, {}};
        for (const StoreColumn& column : table.columns) {
            told.columns.push_back(column.name);
        }
        for (TableCursor rows(dataBase, table, {}); rows.Row() != nullptr; rows.Next()) {
            ++told.rows;
        }
        writer.TakeTable(told);
        std::vector<JetValue> values;
        for (TableCursor rows(dataBase, table, {}); const StoreRow* row = rows.Row(); rows.Next()) {
            values.clear();
            for (const auto& value : *row) {
                values.push_back(value ? JetValue{JetValue::Text, *value} : JetValue{});
            }
            writer.TakeRow(values);
        }
        writer.TakeEndOfTable(0);
    }
    writer.End();
}

double ImportTold(const std::filesystem::path& file) {
    const TestStore empty(StoreContent::Empty);
    return SecondsOn(empty, [&](DataBase& dataBase) {
        Transaction all(dataBase);
        static_cast<void>(ImportJet(dataBase, {"/bin/cat"}, file, Damage::Refuse, [](const auto&...) {}));
        all.Commit();
        dataBase.Flush();
    });
}

double WriteRaw(const std::vector<std::vector<StoreRow>>& tables) {
    const TestStore empty(StoreContent::Empty);
    return Seconds([&] {
        sqlite3* raw = nullptr;
        sqlite3_open(empty.File().c_str(), &raw);
        sqlite3_exec(raw, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        for (std::size_t i = 0; i < tables.size(); ++i) {
            std::string sql = "INSERT INTO " + StoreTables()[i].name + " VALUES (?";
            for (std::size_t column = 1; column < StoreTables()[i].columns.size(); ++column) {
                sql += ", ?";
            }
            sqlite3_stmt* insert = nullptr;
            sqlite3_prepare_v2(raw, (sql + ')').c_str(), -1, &insert, nullptr);
            for (const StoreRow& row : tables[i]) {
                int position = 0;
                for (const auto& value : row) {
                    sqlite3_bind_text(insert, ++position, value ? value->data() : nullptr,
                                      static_cast<int>(value ? value->size() : 0), SQLITE_STATIC);
                }
                sqlite3_step(insert);
                sqlite3_reset(insert);
            }
            sqlite3_finalize(insert);
        }
        sqlite3_exec(raw, "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_close(raw);
    });
}

std::vector<std::vector<StoreRow>> RowsOf(DataBase& dataBase) {
    std::vector<std::vector<StoreRow>> tables;
    for (const StoreTable& table : StoreTables()) {
        tables.emplace_back();
        for (TableCursor rows(dataBase, table, {}); const StoreRow* row = rows.Row(); rows.Next()) {
            tables.back().push_back(*row);
        }
    }
    return tables;
}

void PrintPeakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM")) {
            std::printf("%s\n", line.c_str());
        }
    }
}

} // namespace

int main() {
    const int turns = TestStore::OnServer() ? 1 : 5;
    const TestStore store;
    store.Execute(Content);
    const auto text = store.Folder() / "store.json";
    const auto jet = store.Folder() / "told";
    DataBase dataBase(store.File());
    std::printf("%llu rows\n", static_cast<unsigned long long>(Export(dataBase, {}, text)));
    TellAsJet(dataBase, jet);
    Compare(
        "text, nothing differs", turns, [&] { return ImportText(store, text); },
        [&] {
            return Seconds([&] {
                std::ifstream bytes(text, std::ios::binary);
                Told told;
                nlohmann::json::sax_parse(bytes, &told);
            });
        });
    PrintPeakMemory();
    {
        const TestStore empty(StoreContent::Empty);
        std::printf("text, into an empty store: %.3f s\n", ImportText(empty, text));
    }
    store.Execute("UPDATE Node_AUTO SET RetryLimit = RetryLimit + 1");
    std::printf("text, every AUTO node differs: %.3f s\n", ImportText(store, text));
    PrintPeakMemory();
    if (TestStore::OnServer()) {
        std::printf("Jet file: %.3f s\n", ImportTold(jet));
    } else {
        const auto rows = RowsOf(dataBase);
        Compare(
            "Jet file", turns, [&] { return ImportTold(jet); }, [&] { return WriteRaw(rows); });
    }
}
