#pragma once

#include "calls/Ranges.h"
#include "nodes/Identity.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

enum class Severity { Error, Warning, Note };

[[nodiscard]] const char* NameOf(Severity severity);

// What can be found in a partition, in the order of the rules below.
enum class Fault : std::size_t {
    MissingNode,
    TypeNotOffered,
    BeyondMaximum,
    TypeName,
    DuplicateEntry,
    SharedDigits,
    ReversedRange,
    RangeTooLong,
    RangeLengths,
    RangeNotDigits,
    SettingOutside,
    NoPrompts,
    NoWayOut,
    Unreferenced,
    OrphanRows,
    RegisteredWithoutNode,
    NotRegistered,
    AsTemplate,
    UnfinishedSave,
    RecordingMissing,
    RecordingCase,
    RecordingName,
    RecordingShared,
};

struct FaultRule {
    const char* code; // stays as it is: sites keep lists of accepted findings, programs read it
    Severity severity;
    const char* meaning;
    const char* advice; // what to do
};

inline constexpr std::array<FaultRule, 23> FaultRules = {{
    {"missing-node", Severity::Error, "The node referred to does not exist.",
     "Create it (`auto-node check --fix missing`) or refer to another."},
    {"type-not-offered", Severity::Error,
     "The place may not refer to nodes of that type, or the partition has none of them.",
     "Choose what the editor offers there, or give the type numbers in the partition settings."},
    {"beyond-maximum", Severity::Error, "The number is above the partition's highest number of the type.",
     "Choose a number that there is, or raise the type's maximum in the partition settings."},
    {"type-name", Severity::Warning, "The type's name that is stored is not that of the type's ID.",
     "Save the node in its editor, which stores the name of today."},
    {"duplicate-entry", Severity::Error, "An earlier action of the node has the same entry.",
     "Remove or change one of the two; the editor saves the node only then."},
    {"shared-digits", Severity::Warning, "Two actions hold the same digits; which of them wins is not known.",
     "Change one of the two ranges."},
    {"reversed-range", Severity::Error, "The range ends before it begins and holds no digits.",
     "Exchange its ends."},
    {"range-too-long", Severity::Error,
     "The range has more digits than the node takes, so that nobody reaches it.",
     "Raise the node's number of digits, or shorten the range."},
    {"range-lengths", Severity::Warning,
     "The range's ends differ in length; which digits it holds is not known.",
     "Make a range of each length."},
    {"range-not-digits", Severity::Warning,
     "An end of the range is missing or not of digits; which digits it holds is not known.",
     "Type digits in the editor."},
    {"setting-outside", Severity::Warning,
     "The setting has none of its values; the editor shows the first of them instead.",
     "Choose the value that is meant, and save."},
    {"no-prompts", Severity::Warning, "The node plays nothing: it has no prompt, or only EMPTY ones.",
     "Add a prompt."},
    {"no-way-out", Severity::Error,
     "All that the node leads to is itself and AUTO nodes that only lead back, so that nobody gets out.",
     "Let an exception or an action lead elsewhere."},
    {"unreferenced", Severity::Note, "No other node refers to the node; calls may enter there.",
     "Nothing, where calls enter there; else delete it, or refer to it."},
    {"orphan-rows", Severity::Warning, "Detail rows are stored of a node that does not exist.",
     "Delete the rows; nobody sees them, and they keep the node from being created."},
    {"registered-without-node", Severity::Error,
     "The register has the node, but there is no record of it: it counts as existing.",
     "Delete its row of the register, and create the node anew."},
    {"not-registered", Severity::Error,
     "There is a record of the node, but the register lacks it: it counts as missing.",
     "Add its row to the register, or delete the record."},
    {"as-template", Severity::Warning, "The node is still as its template made it.",
     "Make of it what it is to be, or delete it."},
    {"unfinished-save", Severity::Error, "A save of the node did not finish and has left it half-way.",
     "Put it back (`auto-node restore`), or save it anew."},
    {"recording-missing", Severity::Error,
     "The folder of recordings has no file of the name that the message plays.",
     "Record it, or copy it there."},
    {"recording-case", Severity::Error,
     "The folder has the message's file only under a name that differs in the case of letters.",
     "Rename the file, or the message's."},
    {"recording-name", Severity::Error,
     "The message names no file, or something in the folder that is none: a link, a folder, a name with a "
     "folder in it.",
     "Give the message the plain name of a file."},
    {"recording-shared", Severity::Warning,
     "Other messages name the same file, so that what changes one changes all.",
     "Nothing, where that is meant; else give each message a file of its own."},
}};

[[nodiscard]] constexpr const FaultRule& RuleOf(Fault fault) {
    return FaultRules[static_cast<std::size_t>(fault)];
}

[[nodiscard]] std::optional<Fault> FaultOf(std::string_view code);

// What is found where an action's range is of that kind; nothing where it is clear.
[[nodiscard]] std::optional<Fault> FaultOf(RangeKind kind);

struct Finding {
    Fault fault;
    NodeKey holder;
    std::string holderType; // the type's name
    std::string label;      // the holder's
    std::string where;      // the row or setting; empty where it is the whole node
    std::string subject;    // what is wrong there, such as the node referred to

    // The holder, as it is shown.
    [[nodiscard]] std::string Holder() const { return holder.Text(holderType); }

    // Where it is stored: a table, and the row's number where that is a list; empty where it is the whole
    // node.
    std::string_view table;
    int row = 0;

    // One line that tells the finding from others and stays as it is while rows move within their list. No
    // blanks end it, which a person's editor would take away.
    [[nodiscard]] std::string Key(Partition partition) const;
};

} // namespace KAL_AUTO_Node
