#include "information/Pages.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/References.h"
#include "nodes/TypeCatalogue.h"

namespace KAL_AUTO_Node {

namespace {

struct UsesOfNode {
    TypeNames names;
    std::vector<StoredReference> uses;
    std::map<NodeKey, std::string> labels; // of the holders
};

UsesOfNode ReadUsesOfNode(DataBase& dataBase, const Subject& subject) {
    UsesOfNode read{TypeNames(dataBase), {}, {}};
    read.uses = ReadUses(dataBase, subject.partition, read.names, subject.key);
    read.labels = LabelsOfHolders(dataBase, subject.partition, read.uses);
    return read;
}

} // namespace

UsesPage::UsesPage()
    : InformationPage("InfoUses", QStringLiteral("&Used By"),
                      {QStringLiteral("Node"), QStringLiteral("Place"), QStringLiteral("Label")}) {}

void UsesPage::Begin(StoreReader& reader) {
    const auto read = [](DataBase& dataBase, const Subject& subject, const StoreReader::Look&) {
        return ReadUsesOfNode(dataBase, subject);
    };
    Ask(reader, read, [this](UsesOfNode found) {
        const auto uses = std::make_shared<const UsesOfNode>(std::move(found));
        const auto cell = [uses](int row, int column) {
            const StoredReference& use = uses->uses[static_cast<std::size_t>(row)];
            switch (column) {
            case 0:
                return FromUtf8(Visible(uses->names.Text(use.holder)));
            case 1:
                return FromUtf8(PlaceText(use.Column(), use.row));
            default:
                return ShownLabel(Visible(uses->labels.at(use.holder)));
            }
        };
        std::vector<QString>& lines = uses_.emplace();
        for (int row = 0; row < static_cast<int>(uses->uses.size()); ++row) {
            lines.push_back(cell(row, 0) + ", " + cell(row, 1));
        }
        List().Activated = [this, uses](int row) { Go(uses->uses[static_cast<std::size_t>(row)].holder); };
        Show(lines.size(), cell,
             lines.empty() ? QStringLiteral("Nothing refers to it.")
                           : QStringLiteral("What refers to it. Enter goes there."));
    });
}

} // namespace KAL_AUTO_Node
