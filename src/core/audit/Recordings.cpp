#include "audit/Recordings.h"

#include "audit/PartitionCheck.h"
#include "platform/FoldCase.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace KAL_AUTO_Node {

namespace {

// The names in a folder, without those of what lies in folders below it.
class SoundFolder {
  public:
    explicit SoundFolder(const std::filesystem::path& folder) {
        try {
            for (const auto& entry : std::filesystem::directory_iterator(folder)) {
                const std::string name = entry.path().filename().string();
                const bool isFile = entry.symlink_status().type() == std::filesystem::file_type::regular;
                files_.emplace(name, isFile);
                if (isFile) {
                    folded_.emplace(FoldCase(name), name);
                }
            }
        } catch (const std::filesystem::filesystem_error& error) {
            throw RuntimeError(ErrorNumber::StoreNotFound,
                               "Cannot read '" + folder.string() + "': " + error.code().message());
        }
    }

    void Look(Recording& recording) {
        if (recording.file.empty()) {
            recording.sound = Sound::NoName;
        } else if (recording.file.find_first_of("/\\") != std::string::npos || recording.file == "..") {
            recording.sound = Sound::LeadsAway;
        } else if (const auto found = files_.find(recording.file); found != files_.end()) {
            recording.sound = found->second ? Sound::There : Sound::NoFile;
        } else if (const auto other = folded_.find(FoldCase(recording.file)); other != folded_.end()) {
            recording.sound = Sound::OtherCase;
            recording.other = other->second;
        } else {
            recording.sound = Sound::Missing;
        }
    }

    [[nodiscard]] std::vector<std::string> Without(const std::set<std::string>& named) const {
        std::vector<std::string> rest;
        for (const auto& [name, isFile] : files_) {
            if (isFile && !named.contains(FoldCase(name))) {
                rest.push_back(name);
            }
        }
        return rest;
    }

  private:
    std::map<std::string, bool> files_; // whether they are files
    std::map<std::string, std::string> folded_;
};

} // namespace

const char* NameOf(Sound sound) {
    static constexpr std::array<const char*, 6> names = {"there",   "missing", "other-case",
                                                         "no-file", "no-name", "leads-away"};
    return names.at(static_cast<std::size_t>(sound));
}

Recordings ReadRecordings(DataBase& dataBase, const TypeNames& names, Partition partition,
                          const std::optional<std::filesystem::path>& folder) {
    Recordings found;
    std::map<std::string, std::vector<std::pair<Partition, int>>> namers; // by the name without its case
    std::set<std::string> named;
    const auto partitions = PartitionsWithRows(dataBase);
    const auto query = [&](const Partition& of) {
        return dataBase.Query(Command::Get_Recordings, {of, MessageType});
    };
    ReadAhead ahead(dataBase);
    ahead.Fetch([&] {
        for (const Partition& of : partitions) {
            static_cast<void>(query(of));
        }
    });
    for (const Partition& of : partitions) {
        for (ResultSet rows = query(of); !rows.AtEnd(); rows.MoveNext()) {
            const int message = rows.Number("NodeNumber");
            const std::string file(rows.Field("VexoFilename").value_or(""));
            named.insert(FoldCase(file));
            if (message == TemplateNumber) {
                continue;
            }
            if (!file.empty()) {
                namers[FoldCase(file)].emplace_back(of, message);
            }
            if (of == partition) {
                found.messages.push_back({message, "", file, {}, {}, {}, ""});
            }
        }
    }
    std::map<int, std::string> labels;
    for (ResultSet rows = dataBase.Query(Command::Get_Register, {partition});
         !rows.AtEnd() && rows.Number("NodeTypeID") <= MessageType; rows.MoveNext()) {
        if (rows.Number("NodeTypeID") == MessageType) {
            labels[rows.Number("NodeNumber")] = rows.Field("NodeDescription").value_or("");
        }
    }
    std::set<NodeKey> messages;
    for (const Recording& recording : found.messages) {
        messages.insert({MessageType, recording.message});
    }
    std::map<int, std::set<int>> players;
    for (const StoredReference& use : ReadUses(dataBase, partition, names, messages)) {
        if (use.holder.typeID == AutoType) {
            players[*use.number].insert(use.holder.number);
        }
    }
    std::optional<SoundFolder> sounds;
    if (folder) {
        sounds.emplace(*folder);
        found.unnamed = sounds->Without(named);
    }
    for (Recording& recording : found.messages) {
        recording.label = labels[recording.message];
        const auto& menus = players[recording.message];
        recording.players.assign(menus.begin(), menus.end());
        for (const auto& [of, message] : namers[FoldCase(recording.file)]) {
            const std::string name = NodeKey{MessageType, message}.Text(names.Name(MessageType));
            if (of != partition) {
                recording.shared.push_back(name + " of " + of.Text());
            } else if (message != recording.message) {
                recording.shared.push_back(name);
            }
        }
        if (sounds) {
            sounds->Look(recording);
        }
    }
    return found;
}

std::vector<Finding> FindingsOf(const Recordings& recordings, const TypeNames& names) {
    std::vector<Finding> findings;
    for (const Recording& recording : recordings.messages) {
        const auto add = [&](Fault fault, const std::string& subject) {
            findings.push_back({fault,
                                {MessageType, recording.message},
                                names.Name(MessageType),
                                recording.label,
                                "VexoFilename",
                                subject,
                                "Node_MSG",
                                0});
        };
        switch (recording.sound.value_or(Sound::There)) {
        case Sound::There:
            break;
        case Sound::Missing:
            add(Fault::RecordingMissing, recording.file);
            break;
        case Sound::OtherCase:
            add(Fault::RecordingCase, recording.file + ", there as " + recording.other);
            break;
        case Sound::NoFile:
        case Sound::NoName:
        case Sound::LeadsAway:
            add(Fault::RecordingName, recording.file);
            break;
        }
        if (!recording.shared.empty()) {
            add(Fault::RecordingShared, recording.file + ", also of " + recording.shared.front());
        }
    }
    return findings;
}

} // namespace KAL_AUTO_Node
