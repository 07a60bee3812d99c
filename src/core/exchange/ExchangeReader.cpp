#include "exchange/ExchangeReader.h"

#include "exchange/ExchangeFormat.h"
#include "exchange/LinesOfText.h"
#include "nodes/JsonText.h"
#include "platform/RuntimeError.h"
#include "platform/WholeNumber.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <istream>
#include <nlohmann/json.hpp>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::json;

// What the parser tells of the text, in the words of its library.
class Handler {
  public:
    Handler(LinesOfText& source, ExchangeSink& sink, AnyBytes anyBytes)
        : source_(source), sink_(sink), anyBytes_(anyBytes) {}

    bool null() { return Value(std::nullopt, Kind::Null); }

    bool boolean(bool /*value*/) { Fail("true and false stand nowhere in this form"); }

    bool number_integer(Json::number_integer_t number) { return Whole(number); }

    bool number_unsigned(Json::number_unsigned_t number) { return Whole(number); }

    bool number_float(Json::number_float_t /*number*/, const std::string& text) {
        return Value(text, Kind::Number);
    }

    bool string(std::string& text) {
        if (place_ != Place::Row) {
            return Value(text, Kind::Text);
        }
        // The parser goes on with the memory of a row before.
        Field().swap(text);
        Check(Kind::Text);
        return true;
    }

    bool binary(Json::binary_t& /*bytes*/) { Fail("bytes stand nowhere in this form"); }

    bool start_object(std::size_t /*members*/) {
        switch (place_) {
        case Place::Outside:
            place_ = Place::Head;
            break;
        case Place::Tables:
            if (tablesBegun_) {
                Fail("a table is a list of rows");
            }
            tablesBegun_ = true;
            break;
        case Place::Rows:
            place_ = Place::Row;
            row_.resize(table_->columns.size());
            given_.assign(table_->columns.size(), 0);
            missing_ = given_.size();
            column_.reset();
            break;
        case Place::Row:
            place_ = Place::Bytes;
            bytes_.reset();
            break;
        default:
            Fail("nothing is told by an object here");
        }
        return true;
    }

    bool key(std::string& name) {
        switch (place_) {
        case Place::Head:
            BeginMember(name);
            break;
        case Place::Tables:
            BeginTable(name);
            break;
        case Place::Row:
            BeginColumn(name);
            break;
        default:
            if (name != BytesMember || bytes_) {
                Fail("a value that is no text has one member, bytes");
            }
        }
        return true;
    }

    bool end_object() {
        switch (place_) {
        case Place::Row:
            EndRow();
            place_ = Place::Rows;
            break;
        case Place::Bytes:
            if (!bytes_) {
                Fail("a value that is no text has one member, bytes");
            }
            if (anyBytes_ == AnyBytes::Refuse && !IsUtf8(*bytes_)) {
                Fail(Column().name + " is no UTF-8, and a server takes no other texts");
            }
            place_ = Place::Row;
            Field().swap(*bytes_);
            Check(Kind::Text);
            break;
        case Place::Tables:
            place_ = Place::Head;
            break;
        default:
            if (!tablesBegun_) {
                Fail("it holds no tables");
            }
            place_ = Place::Outside;
        }
        return true;
    }

    bool start_array(std::size_t /*items*/) {
        if (place_ != Place::Tables || table_ == nullptr) {
            Fail("nothing is told by a list here");
        }
        place_ = Place::Rows;
        before_.reset();
        sink_.TakeTable(*table_);
        return true;
    }

    bool end_array() {
        sink_.TakeEndOfTable();
        place_ = Place::Tables;
        return true;
    }

    bool parse_error(std::size_t /*position*/, const std::string& token, const Json::exception& error) {
        if (tablesBegun_ && place_ == Place::Outside) {
            Fail("something stands behind its end");
        }
        if (source_.AtEnd()) {
            Fail("it ends before it is whole");
        }
        // What cannot be read comes last in it.
        if (!token.empty() && std::string_view("<|=>").find(token.back()) != std::string_view::npos) {
            Fail("a merge has marked a conflict here; keep one of its sides, and none of the marks");
        }
        // Without the library's own number and place, which a person cannot look up.
        const std::string what = error.what();
        const auto colon = what.find(": ");
        Fail("it is no JSON: " + (colon == std::string::npos ? what : what.substr(colon + 2)));
    }

  private:
    enum class Place { Outside, Head, Tables, Rows, Row, Bytes };
    enum class Kind { Null, Number, Text };

    [[noreturn]] void Fail(const std::string& why) { FailForm(source_.Line(), why); }

    void BeginMember(const std::string& name) {
        if (!members_.insert(name).second) {
            Fail("\"" + name + "\" stands there twice");
        }
        member_ = name;
        if (name != Exchange::TablesMember) {
            return;
        }
        if (!members_.contains(Exchange::FormatMember) || !members_.contains(Exchange::VersionMember)) {
            Fail("its format and version do not stand before its tables");
        }
        if (config_.has_value() != partition_.has_value()) {
            Fail("a partition is told by both config and partition");
        }
        if (config_) {
            scope_ = {*config_, *partition_};
        }
        place_ = Place::Tables;
        sink_.TakeScope(scope_);
    }

    void BeginTable(const std::string& name) {
        table_ = FindTable(name);
        if (table_ == nullptr) {
            Fail("there is no table " + name);
        }
        if (!tables_.insert(table_).second) {
            Fail("the table " + name + " stands there twice");
        }
        if (scope_ && !table_->partitioned) {
            Fail("the table " + name + " is none of a partition's");
        }
    }

    void BeginColumn(const std::string& name) {
        // As a rule they stand in their order.
        const std::size_t next = column_ ? *column_ + 1 : 0;
        const bool isNext = next < table_->columns.size() && table_->columns[next].name == name;
        column_ = isNext ? std::optional(next) : FindColumn(*table_, name);
        if (!column_) {
            Fail(table_->name + " has no column " + name);
        }
        if (std::exchange(given_[*column_], 1) != 0) {
            Fail("the column " + name + " stands there twice");
        }
        --missing_;
    }

    template <class Number>
    bool Whole(Number number) {
        if (place_ == Place::Row && Column().number && std::in_range<std::int32_t>(number)) {
            // As nearly all are: in the one form that the column's numbers have.
            std::array<char, 12> digits{};
            const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
            Field().assign(digits.data(), end);
            return true;
        }
        return Value(std::to_string(number), Kind::Number);
    }

    bool Value(const std::optional<std::string>& value, Kind kind) {
        switch (place_) {
        case Place::Head:
            PutMember(value.value_or(""), kind);
            break;
        case Place::Row:
            row_[*column_] = value;
            Check(kind);
            break;
        case Place::Bytes:
            PutBytes(value.value_or(""), kind);
            break;
        default:
            Fail("no value stands here by itself");
        }
        return true;
    }

    void PutMember(const std::string& value, Kind kind) {
        const auto number = [&]() -> std::int16_t {
            const auto whole = kind == Kind::Number ? WholeNumber<std::int16_t>(value) : std::nullopt;
            if (!whole) {
                Fail("\"" + member_ + "\" is no number of a partition");
            }
            return *whole;
        };
        if (member_ == Exchange::FormatMember) {
            if (kind != Kind::Text || value != Exchange::Format) {
                Fail("it is no export of auto-node");
            }
        } else if (member_ == Exchange::VersionMember) {
            if (kind != Kind::Number || value != std::to_string(Exchange::Version)) {
                Fail("it is of a version that is not known here; this is version " +
                     std::to_string(Exchange::Version));
            }
        } else if (member_ == Exchange::ConfigMember && !tablesBegun_) {
            config_ = number();
        } else if (member_ == Exchange::PartitionMember && !tablesBegun_) {
            partition_ = number();
        } else {
            Fail("\"" + member_ + "\" means nothing here");
        }
    }

    void PutBytes(const std::string& digits, Kind kind) {
        bytes_ = kind == Kind::Text ? BytesOfDigits(digits) : std::nullopt;
        if (!bytes_) {
            Fail("bytes are a text of two digits each, 0 to 9 and a to f");
        }
    }

    [[nodiscard]] const StoreColumn& Column() const { return table_->columns[*column_]; }

    // The column's field in the row, as a text to be filled.
    std::string& Field() {
        auto& field = row_[*column_];
        return field ? *field : field.emplace();
    }

    // What the column's field was given.
    void Check(Kind kind) {
        if (kind == Kind::Number && !Column().number) {
            Fail(Column().name + " is a text, and stands in quotes");
        }
        if (kind == Kind::Text && Column().number) {
            Fail(Column().name + " is a number, and stands without quotes");
        }
        if (const auto why = WhyNot(Column(), row_[*column_])) {
            Fail(Column().name + ' ' + *why);
        }
    }

    void EndRow() {
        if (missing_ > 0) {
            const auto missing = std::ranges::find(given_, 0);
            Fail("the row has no " +
                 table_->columns[static_cast<std::size_t>(missing - given_.begin())].name);
        }
        const StoreKey key = RowKeyOf(*table_, row_);
        if (before_ && key <= *before_) {
            Fail("the rows of " + table_->name + " stand in the order of their keys, no key twice; " +
                 KeyText(*table_, row_) + " does not");
        }
        if (scope_ && (key[0] != scope_->config || key[1] != scope_->number)) {
            Fail("the row is one of another partition");
        }
        before_ = key;
        sink_.TakeRow(row_, source_.Line());
    }

    LinesOfText& source_;
    ExchangeSink& sink_;
    AnyBytes anyBytes_;
    Place place_ = Place::Outside;
    std::set<std::string> members_;
    std::string member_;
    std::optional<std::int16_t> config_;
    std::optional<std::int16_t> partition_;
    std::optional<Partition> scope_;
    bool tablesBegun_ = false;
    std::set<const StoreTable*> tables_;
    const StoreTable* table_ = nullptr;
    std::optional<std::size_t> column_;
    StoreRow row_;
    std::vector<char> given_;        // 1 for the columns that are; asked for each of them
    std::size_t missing_ = 0;        // columns that are not given yet
    std::optional<StoreKey> before_; // the key of the row before
    std::optional<std::string> bytes_;
};

} // namespace

void ReadExchange(std::istream& text, ExchangeSink& sink, AnyBytes anyBytes) {
    LinesOfText source(text);
    Handler handler(source, sink, anyBytes);
    std::istream bytes(&source);
    Json::sax_parse(bytes, &handler);
}

void ReadExchangeFile(const std::filesystem::path& file, const std::string& failure, ExchangeSink& sink,
                      AnyBytes anyBytes) {
    errno = 0;
    std::ifstream text(file, std::ios::binary);
    if (!text) {
        throw RuntimeError(ErrorNumber::StoreNotFound,
                           "Cannot read '" + file.string() + "': " + std::generic_category().message(errno));
    }
    try {
        ReadExchange(text, sink, anyBytes);
    } catch (const RuntimeError& error) {
        throw RuntimeError(error.Number(), failure + " '" + file.string() + "': " + error.what(),
                           error.Source());
    }
}

} // namespace KAL_AUTO_Node
