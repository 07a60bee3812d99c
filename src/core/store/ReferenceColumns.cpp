#include "store/ReferenceColumns.h"

#include <algorithm>
#include <sstream>
#include <vector>

namespace KAL_AUTO_Node {

namespace {

constexpr int AutoType = 9;

// The columns of one table; "-" is the word of one that begins with none.
struct TableColumns {
    std::string_view table;
    int holderTypeID;
    std::string_view holder;
    std::string_view row;
    std::string_view words;
    bool hasTypeID = true;
};

constexpr TableColumns Tables[] = {
    {"Node_DTMF", 6, "NodeNumber", "0", "Timeout Invalid Abort"},
    {"Detail_DTMF_Prompts", 6, "NodeMasterID", "SequenceNo", "-"},
    {"Detail_DTMF_Action", 6, "NodeMasterID", "SequenceNo", "-"},
    {"Detail_CMD", 1, "NodeMasterID", "SequenceNo", "-"},
    {"Detail_TIME", 2, "NodeMasterID", "SequenceNo", "-"},
    {"Detail_DATE", 3, "NodeMasterID", "SequenceNo", "-"},
    {"Node_VOX", 7, "NodeNumber", "0", "Timeout Abort DTMF"},
    {"Detail_VOX_Prompts", 7, "NodeMasterID", "SequenceNo", "-"},
    {"Detail_VOX_Action", 7, "NodeMasterID", "SequenceNo", "- Prompt"},
    {"Detail_LIST", 8, "NodeMasterID", "SequenceNo", "-"},
    {"Node_TABLE", 13, "NodeNumber", "0", "Invalid Continue"},
    {"Detail_TABLE_Action", 13, "NodeMasterID", "SequenceNo", "-"},
    {"Node_DBN", 15, "NodeNumber", "0",
     "Greeting ValidMatch Abort Star Pound Zero FirstPrompt SecondPrompt Timeout Invalid BeforePrompt "
     "AfterPrompt ConfirmationExit"},
    {"Detail_DBN_Prompts", 15, "NodeMasterID", "PromptNumber", "Prompt"},
    {"Node_AUTO", AutoType, "NodeNumber", "0", "Timeout Invalid Abort Star Pound"},
    {"Detail_AUTO_Prompts", AutoType, "NodeMasterID", "SequenceNo", "-"},
    {"Detail_AUTO_Action", AutoType, "NodeMasterID", "SequenceNo", "-"},
    {"Node_XFER", 4, "NodeNumber", "0", "Hold MOH Busy1 Busy2 NoAnswer Answer", false},
};

std::vector<ReferenceColumn> Listed() {
    std::vector<ReferenceColumn> columns;
    for (const auto& [table, type, holder, row, words, hasTypeID] : Tables) {
        for (std::string_view rest = words; !rest.empty();) {
            const std::string_view word = rest.substr(0, rest.find(' '));
            rest.remove_prefix(std::min(rest.size(), word.size() + 1));
            columns.push_back({table, type, holder, row, word == "-" ? "" : word, hasTypeID});
        }
    }
    return columns;
}

constexpr std::string_view OfPartition = "WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID";

// One SELECT a column: what every row tells, and what is asked besides, and of which rows.
template <class TakesPart, class Write>
std::string OverAll(TakesPart takesPart, Write write) {
    std::ostringstream sql;
    const char* before = "";
    for (const ReferenceColumn& column : AllReferenceColumns()) {
        if (!takesPart(column)) {
            continue;
        }
        sql << before << "SELECT " << column.holderTypeID << " AS HolderTypeID, " << column.holder
            << " AS HolderNumber, " << &column - AllReferenceColumns().data() << " AS ReferenceNo, "
            << column.row << " AS RowNo, ";
        if (column.hasTypeID) {
            sql << column.word << "NodeTypeID";
        } else {
            sql << "CAST(NULL AS INTEGER)";
        }
        sql << " AS NodeTypeID, " << column.word << "NodeType AS NodeType";
        write(sql, column);
        before = "\nUNION ALL\n";
    }
    return sql.str();
}

} // namespace

std::span<const ReferenceColumn> AllReferenceColumns() {
    static const std::vector<ReferenceColumn> columns = Listed();
    return columns;
}

std::string UsesStatement() {
    return OverAll([](const ReferenceColumn&) { return true; },
                   [](std::ostream& sql, const ReferenceColumn& column) {
                       sql << "\n  FROM " << column.table << '\n'
                           << OfPartition << " AND " << column.word << "NodeNumber = :Given_NodeNumber AND "
                           << column.word
                           << (column.hasTypeID
                                   ? "NodeTypeID IN (:Given_TypeID, :Given_TypeID2, :Given_TypeID3)"
                                   : "NodeType IN (:Given_Type, :Given_Type2, :Given_Type3)");
                   });
}

namespace {

std::string ReferencesStatement(bool ofAutoNodes) {
    return OverAll(
        [&](const ReferenceColumn& column) { return (column.holderTypeID == AutoType) == ofAutoNodes; },
        [](std::ostream& sql, const ReferenceColumn& column) {
            sql << ", " << column.word << "NodeNumber AS NodeNumber\n  FROM " << column.table << '\n'
                << OfPartition;
        });
}

} // namespace

std::string OtherReferencesStatement() { return ReferencesStatement(false); }

std::string AutoReferencesStatement() { return ReferencesStatement(true); }

std::string RepointStatement(const ReferenceColumn& column) {
    std::ostringstream sql;
    sql << "UPDATE " << column.table << " SET ";
    if (column.hasTypeID) {
        sql << column.word << "NodeTypeID = :New_TypeID, ";
    }
    sql << column.word << "NodeType = :New_Type, " << column.word << "NodeNumber = :New_NodeNumber\n"
        << OfPartition << " AND " << column.word << "NodeNumber = :Given_NodeNumber AND " << column.word
        << (column.hasTypeID ? "NodeTypeID = :Given_TypeID" : "NodeType = :Given_Type") << " AND "
        << column.holder << " = :Given_Holder";
    if (column.HasRows()) {
        sql << " AND " << column.row << " = :Given_Row";
    }
    return sql.str();
}

} // namespace KAL_AUTO_Node
