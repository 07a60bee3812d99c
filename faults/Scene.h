#pragma once

#include "Report.h"
#include "testing/Saver.h"
#include "testing/TestStore.h"

#include <array>
#include <optional>
#include <string>

namespace KAL_AUTO_Node {

// The node that all savers save.
inline constexpr NodePlace Place{{1, 2}, 1};

// Nodes of every type that templates make, none of which is there.
inline constexpr std::array<NodeKey, 12> MissingNodes = {{{0, 701},
                                                          {1, 702},
                                                          {2, 703},
                                                          {3, 704},
                                                          {4, 705},
                                                          {6, 706},
                                                          {7, 707},
                                                          {8, 708},
                                                          {9, 709},
                                                          {12, 710},
                                                          {13, 711},
                                                          {15, 712}}};

// Makes those that are not there.
void CreateMissing(NodeSave& save);

// What a saver makes of a node: no other saver's has any row in common with it.
[[nodiscard]] AutoNode Intended(AutoNode node, int saver, int rows);
[[nodiscard]] NodeContent IntendedContent(const NodeContent& before, int saver, int rows);

// Of a server's there is nothing to choose.
enum class Journal { WriteAhead, Rollback, Server };
inline constexpr std::array Journals = {Journal::WriteAhead, Journal::Rollback};
[[nodiscard]] const char* NameOf(Journal journal);

// A store where this program and its children look for it, made anew for every try.
class Scene {
  public:
    // The node has that many rows.
    explicit Scene(Journal journal, int rows = 20);

    // Nobody has the store open.
    void Reset();
    // From now on every try begins with the store as it is.
    void Keep();

    [[nodiscard]] const std::filesystem::path& Folder() const { return store_.Folder(); }

    [[nodiscard]] std::filesystem::path File() const { return store_.File(); }

    [[nodiscard]] const NodeContent& Before() const { return before_; }

    [[nodiscard]] int Rows() const { return rows_; }

    void Execute(const std::string& sql) const { store_.Execute(sql); }

    // A copy of the store as it is made for every try.
    [[nodiscard]] std::filesystem::path Original() const { return Folder() / "original"; }

    // Looks at what a try has left, as somebody who opens the node next does, who puts it back where that is
    // offered. It has to be as it was, or as saver 1 intended and said to be so; half of it has to be marked,
    // and put back exactly. A further save has to go through.
    void Judge(Row& row);

    // The same of the missing nodes: a further save makes them all, each with all that its template has.
    void JudgeCreations(Row& row, bool puttingBack);

    void RequireSound(Row& row) const;

  private:
    void JudgeNode(Row& row);
    void SaveAnew(Row& row, bool creating) const;
    // What the template has and the node has not, or the other way round.
    [[nodiscard]] static std::optional<std::string> Incomplete(SQLite::Database& store, const NodeKey& node);

    TestStore store_;
    int rows_;
    NodeContent before_;
};

// The history's newest version first, in few words.
[[nodiscard]] std::string StatesOf(History& history);

} // namespace KAL_AUTO_Node
