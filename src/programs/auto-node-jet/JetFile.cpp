#include "auto-node-jet/JetFile.h"

#include "exchange/JetFrames.h"
#include "exchange/JetText.h"
#include "platform/FoldCase.h"
#include "platform/RuntimeError.h"

#include <memory>

namespace KAL_AUTO_Node {

namespace {

// Marks the place of a row that is deleted, or that was moved to another page, where it is found as well.
constexpr int GoneFlag = 0x4000;
constexpr int OffsetMask = 0x1FFF;

// The first four bytes of a memo's field tell its length and where its bytes are: behind this head, in a row
// of another page, or in a chain of such rows.
constexpr std::size_t MemoHeadBytes = 12;
constexpr std::uint32_t MemoInline = 0x80000000;
constexpr std::uint32_t MemoInOneRow = 0x40000000;
constexpr std::uint32_t MemoLength = 0x3FFFFFFF;

constexpr std::size_t MostTextBytes = 16U << 20U;

constexpr const char* CatalogTable = "MSysObjects";

using TableDefinition = std::unique_ptr<MdbTableDef, void (*)(MdbTableDef*)>;

template <class Item>
Item* ItemOf(GPtrArray* items, unsigned position) {
    return static_cast<Item*>(g_ptr_array_index(items, position));
}

// Of the tables' definitions alone; nothing where it cannot be read.
TableDefinition DefinitionOf(MdbCatalogEntry* entry) {
    TableDefinition table(mdb_read_table(entry), &mdb_free_tabledef);
    if (table && (mdb_read_columns(table.get()) == nullptr || table->columns->len != table->num_cols)) {
        table.reset();
    }
    return table;
}

// As the library writes it.
std::string DecimalText(char* text) {
    const std::unique_ptr<char, void (*)(void*)> owner(text, &g_free);
    return JetDecimalText(text != nullptr ? text : "");
}

std::size_t WidthOf(const MdbColumn& column) {
    switch (column.col_type) {
    case MDB_BYTE:
        return 1;
    case MDB_INT:
        return 2;
    case MDB_LONGINT:
    case MDB_FLOAT:
        return 4;
    case MDB_MONEY:
    case MDB_DOUBLE:
    case MDB_DATETIME:
        return 8;
    case MDB_NUMERIC:
        return 17;
    default:
        return 0;
    }
}

} // namespace

// Where a row lies on the page that is loaded.
struct JetFile::Row {
    int start = 0;
    std::size_t size = 0;
    int columns = 0; // that the table had when the row was written
};

JetFile::JetFile(const char* path) : file_(mdb_open(path, MDB_NOFLAGS)) {
    if (file_ == nullptr) {
        throw RuntimeError("it cannot be opened as a Jet file");
    }
    if (file_->f->jet_version > MDB_VER_JET4) {
        throw RuntimeError("it has a later form than Jet 4");
    }
}

JetFile::~JetFile() {
    if (file_ != nullptr) {
        mdb_close(file_);
    }
}

void JetFile::Tell(const std::set<std::string>& wanted, JetSink& sink) {
    if (mdb_read_catalog(file_, MDB_ANY) == nullptr) {
        throw RuntimeError("its list of tables cannot be read");
    }
    RequireWholeCatalog();
    for (unsigned i = 0; i < file_->num_catalog; ++i) {
        auto* entry = ItemOf<MdbCatalogEntry>(file_->catalog, i);
        if (mdb_is_user_table(entry) != 0) {
            TellTable(entry, wanted.contains(FoldAscii(entry->object_name)), sink);
        }
    }
}

// The list of tables is a table like others, with a count of its own rows.
void JetFile::RequireWholeCatalog() {
    for (unsigned i = 0; i < file_->num_catalog; ++i) {
        auto* entry = ItemOf<MdbCatalogEntry>(file_->catalog, i);
        if (std::string_view(entry->object_name) == CatalogTable) {
            const TableDefinition table = DefinitionOf(entry);
            std::uint32_t rows = 0;
            if (table && ForEachRow(table.get(), [&](const auto&...) { ++rows; }) == 0 &&
                rows >= table->num_rows) {
                return;
            }
        }
    }
    throw RuntimeError("its list of tables is damaged");
}

void JetFile::TellTable(MdbCatalogEntry* entry, bool withRows, JetSink& sink) {
    const TableDefinition table = DefinitionOf(entry);
    JetTable told{entry->object_name, table ? table->num_rows : 0, {}};
    for (unsigned i = 0; table && i < table->num_cols; ++i) {
        told.columns.emplace_back(ItemOf<MdbColumn>(table->columns, i)->name);
    }
    sink.TakeTable(told);
    std::uint32_t unreadable = 0;
    if (table && withRows) {
        std::vector<std::string> texts(table->num_cols);
        std::vector<JetValue> values(table->num_cols);
        unreadable = ForEachRow(table.get(), [&](const std::vector<MdbField>& fields, const Row& row) {
            std::size_t bytes = 0;
            for (const MdbField& field : fields) {
                const auto column = static_cast<unsigned>(field.colnum);
                ReadValue(*ItemOf<MdbColumn>(table->columns, column), field, row, texts[column],
                          values[column]);
                bytes += values[column].text.size();
                if (bytes > MostJetFrameBytes / 2) {
                    throw RuntimeError("a row of " + told.name + " is larger than any that is read");
                }
            }
            sink.TakeRow(values);
        });
    }
    sink.TakeEndOfTable(unreadable);
}

template <class Take>
std::uint32_t JetFile::ForEachRow(MdbTableDef* table, Take take) {
    std::uint32_t unreadable = 0;
    std::vector<MdbField> fields(table->num_cols);
    mdb_rewind_table(table);
    while (mdb_read_next_dpg(table) != 0) {
        const int rows = mdb_get_int16(file_->pg_buf, file_->fmt->row_count_offset);
        for (int i = 0; i < rows; ++i) {
            Row row;
            const bool found = mdb_find_row(file_, i, &row.start, &row.size) == 0;
            if (found && (row.start & GoneFlag) != 0) {
                continue;
            }
            row.start &= OffsetMask;
            row.columns =
                found && row.size > 0 ? mdb_crack_row(table, row.start, row.size, fields.data()) : -1;
            if (row.columns < 0) {
                ++unreadable;
                continue;
            }
            take(fields, row);
        }
    }
    return unreadable;
}

void JetFile::ReadValue(const MdbColumn& column, const MdbField& field, const Row& row, std::string& text,
                        JetValue& value) {
    const auto set = [&](std::optional<std::string> read, const char* failure = "cannot be read") {
        value.state = read ? JetValue::Text : JetValue::Unreadable;
        text = read ? std::move(*read) : std::string(failure);
        value.text = text;
    };
    // A column that is younger than the row holds nothing there.
    const bool isNull = column.col_num >= row.columns || field.is_null != 0;
    if (column.col_type == MDB_BOOL) {
        return set(isNull ? "0" : "-1");
    }
    if (isNull) {
        value = {};
        return;
    }
    const auto size = static_cast<std::size_t>(field.siz);
    if (field.siz < 0 || field.start < row.start ||
        static_cast<std::size_t>(field.start - row.start) + size > row.size || size < WidthOf(column)) {
        return set(std::nullopt);
    }
    unsigned char* const page = file_->pg_buf;
    const std::string_view bytes(reinterpret_cast<const char*>(page) + field.start, size);
    switch (column.col_type) {
    case MDB_BYTE:
        return set(std::to_string(page[field.start]));
    case MDB_INT:
        return set(std::to_string(static_cast<std::int16_t>(mdb_get_int16(page, field.start))));
    case MDB_LONGINT:
        return set(std::to_string(static_cast<std::int32_t>(mdb_get_int32(page, field.start))));
    case MDB_FLOAT:
        return set(JetNumberText(mdb_get_single(page, field.start)));
    case MDB_DOUBLE:
        return set(JetNumberText(mdb_get_double(page, field.start)));
    case MDB_MONEY:
        return set(DecimalText(mdb_money_to_string(file_, field.start)));
    case MDB_NUMERIC:
        return set(DecimalText(mdb_numeric_to_string(file_, field.start, column.col_scale, column.col_prec)));
    case MDB_DATETIME:
        return set(JetDateText(mdb_get_double(page, field.start)), "is no date");
    case MDB_TEXT:
        return set(Text(bytes), "is no text in the file's letters");
    case MDB_MEMO: {
        const auto memo = Memo(field.start, size);
        return memo ? set(Text(*memo), "is no text in the file's letters")
                    : set(std::nullopt, "is not whole");
    }
    default:
        return set(std::nullopt, "is of a kind that no column here takes");
    }
}

std::optional<std::string_view> JetFile::Memo(int start, std::size_t size) {
    if (size < MemoHeadBytes) {
        return std::nullopt;
    }
    const auto head = static_cast<std::uint32_t>(mdb_get_int32(file_->pg_buf, start));
    const std::size_t length = head & MemoLength;
    if ((head & MemoInline) != 0) {
        const auto* bytes = reinterpret_cast<const char*>(file_->pg_buf) + start + MemoHeadBytes;
        return length <= size - MemoHeadBytes ? std::optional(std::string_view(bytes, length)) : std::nullopt;
    }
    if (length > MostTextBytes) {
        return std::nullopt;
    }
    const bool isChain = (head & MemoInOneRow) == 0;
    const std::size_t linkBytes = isChain ? 4 : 0;
    auto place = static_cast<int>(mdb_get_int32(file_->pg_buf, start + 4));
    memo_.clear();
    while (place != 0 && memo_.size() < length) {
        void* page = nullptr;
        int offset = 0;
        std::size_t bytes = 0;
        if (mdb_find_pg_row(file_, place, &page, &offset, &bytes) != 0 || bytes <= linkBytes) {
            return std::nullopt;
        }
        offset &= OffsetMask;
        memo_.append(static_cast<const char*>(page) + offset + linkBytes, bytes - linkBytes);
        place = isChain ? static_cast<int>(mdb_get_int32(page, offset)) : 0;
    }
    if (memo_.size() < length) {
        return std::nullopt;
    }
    memo_.resize(length);
    return memo_;
}

std::optional<std::string> JetFile::Text(std::string_view bytes) const {
    if (!IS_JET3(file_)) {
        return JetUnicodeText(bytes);
    }
    // The library's own way puts question marks where it fails. No letter of a code page takes more than four
    // bytes in UTF-8.
    std::string text(4 * bytes.size(), '\0');
    char* in = const_cast<char*>(bytes.data());
    char* out = text.data();
    std::size_t inLeft = bytes.size();
    std::size_t outLeft = text.size();
    iconv(file_->iconv_in, nullptr, nullptr, nullptr, nullptr);
    if (iconv(file_->iconv_in, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1)) {
        return std::nullopt;
    }
    text.resize(text.size() - outLeft);
    return text;
}

} // namespace KAL_AUTO_Node
