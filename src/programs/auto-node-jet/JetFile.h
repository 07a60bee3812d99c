#pragma once

#include <cstdint>
// Before the library, which would declare its templates as functions of C.
#include <glib.h>
#include <mdbtools.h>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

class JetSink;
struct JetValue;

// A Jet file, read through the library that knows its form. A damaged one can make that library do anything:
// this runs in a process of its own. What can be told is a RuntimeError.
class JetFile {
  public:
    // Opens it and reads its first page alone; nothing is opened afterwards.
    explicit JetFile(const char* path);
    ~JetFile();

    JetFile(const JetFile&) = delete;
    JetFile& operator=(const JetFile&) = delete;

    // Tells of all the user's tables, and of the rows of those whose folded names are wanted.
    void Tell(const std::set<std::string>& wanted, JetSink& sink);

  private:
    struct Row;

    void RequireWholeCatalog();
    void TellTable(MdbCatalogEntry* entry, bool withRows, JetSink& sink);
    // Returns how many rows cannot be read.
    template <class Take>
    std::uint32_t ForEachRow(MdbTableDef* table, Take take);
    void ReadValue(const MdbColumn& column, const MdbField& field, const Row& row, std::string& text,
                   JetValue& value);
    // The memo's bytes, wherever they lie; nothing where not all of them can be found.
    std::optional<std::string_view> Memo(int start, std::size_t size);
    // Of the bytes of a text.
    [[nodiscard]] std::optional<std::string> Text(std::string_view bytes) const;

    MdbHandle* file_;
    std::string memo_; // that was put together last
};

} // namespace KAL_AUTO_Node
