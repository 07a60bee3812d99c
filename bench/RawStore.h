#pragma once

#include "bench/Content.h"
#include "bench/Recording.h"

#include <array>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace KAL_AUTO_Node {

// The floor of everything that uses the store: the editor's own statements through the engine's C interface,
// in the same order and with the same values; each prepared once, texts bound where they lie, and every value
// of every row copied out, one behind the other.
class RawStore {
  public:
    explicit RawStore(const std::filesystem::path& file);
    ~RawStore();

    RawStore(const RawStore&) = delete;
    RawStore& operator=(const RawStore&) = delete;

    // All that opening the editor reads, Load included.
    void Open(Place place);
    void Load(Place place);
    // Commands as the editor ran them.
    void Perform(const std::vector<Performed>& commands);
    // The same, and the sync that ends a save.
    void Save(const std::vector<Performed>& commands);

  private:
    using Texts = std::initializer_list<std::string_view>;

    // Of a place, as parameters.
    struct Key {
        explicit Key(Place place)
            : partition(std::to_string(place.partition)), node(std::to_string(place.node)) {}

        std::string config = std::to_string(BenchConfig);
        std::string partition;
        std::string node;
    };

    sqlite3_stmt* Prepared(Command command);
    template <class Values>
    sqlite3_stmt* Bound(Command command, const Values& values);
    template <class Values>
    void Run(Command command, const Values& values);
    template <class Values, class Use>
    void Read(Command command, const Values& values, Use&& use);
    template <class Values>
    void Read(Command command, const Values& values);
    void ReadReference(const Key& key, sqlite3_stmt* row, int typeColumn, int numberColumn);
    void ReadTypes(const Key& key, std::string_view set);
    void CopyRow(sqlite3_stmt* row);
    void Pragma(const std::string& sql);
    void Require(bool done) const;

    sqlite3* database_ = nullptr;
    std::array<sqlite3_stmt*, CommandCount> prepared_{};
    std::string copied_;
    int logPages_ = 0;
};

} // namespace KAL_AUTO_Node
