#include "HistoryModel.h"
#include "audit/Repoint.h"
#include "exchange/ExchangeImport.h"
#include "exchange/Export.h"
#include "exchange/StoreOfText.h"
#include "platform/RuntimeError.h"
#include "store/Connection.h"
#include "testing/Saver.h"
#include "testing/TestStore.h"
#include "upkeep/RemoveNode.h"

#include <algorithm>
#include <chrono>
#include <random>
#include <sstream>
#include <thread>

namespace KAL_AUTO_Node {

namespace {

constexpr Partition Where{1, 1};
constexpr int FirstNode = 3;
constexpr int Rows = 3;
// A server that was killed comes back.
constexpr std::chrono::milliseconds AfterFailure(20);

NodePlace PlaceOf(int node) { return {Where, static_cast<std::int16_t>(FirstNode + node)}; }

std::string RowText(const std::string& digits, int target) {
    return digits + '>' + std::to_string(target) + ',';
}

std::string Whole(const std::string& text, int target) {
    const std::string row = RowText(text, target);
    return text + '/' + text + '|' + row + row + row;
}

bool IsWhole(const std::string& content) {
    const std::string text = content.substr(0, content.find('/'));
    return content == Whole(text, FirstTarget) || content == Whole(text, FirstTarget + 1);
}

std::string TextOf(const NodeContent& content) {
    if (!content.node) {
        return "-";
    }
    std::string text = content.node->label.value_or("") + '/';
    text += (content.entry ? content.entry->label.value_or("") : "") + '|';
    for (const Action& action : content.node->actions) {
        text += RowText(action.low.value_or(""), action.target.number);
    }
    std::ranges::replace(text, ' ', '_');
    return text;
}

std::string OrDot(const std::string& text) { return text.empty() ? "." : text; }

std::int64_t Now() { return std::chrono::steady_clock::now().time_since_epoch().count(); }

class Recorder {
  public:
    explicit Recorder(const char* const* arguments)
        : name_(arguments[0]), file_(name_, std::ios::app),
          random_(static_cast<unsigned>(std::stoul(arguments[1]))), text_(std::stoi(arguments[2])),
          left_(std::stoi(arguments[3])), kind_(arguments[4]) {}

    void Run() {
        if (kind_ == "begin") {
            return Prepare();
        }
        while (kind_ != "end" && left_ > 0) {
            Work(Random(NodesInHistory));
        }
        for (int node = 0; kind_ == "end" && node < NodesInHistory; ++node) {
            PutBack(node);
            Load(node);
            LogAndDrop(node);
        }
    }

  private:
    void Work(int node) {
        switch (Random(20)) {
        case 0:
        case 1:
            return Restore(node);
        case 2:
        case 3:
        case 4:
            return CopyOrRemove(node, Random(3) > 0);
        case 5:
        case 6:
            return RepointTarget(Random(2));
        case 7:
        case 8:
            return CarryOutAndBack(Random(2) == 0);
        default:
            PutBack(node);
            Load(node);
            if (loaded_.at(static_cast<std::size_t>(node)).ends_with(',')) {
                Save(node);
            }
        }
    }

    std::optional<std::string> Do(const Operation& operation, const std::function<std::string()>& act) {
        --left_;
        std::ostringstream begin;
        begin << operation.verb << ' ' << operation.node << ' ' << operation.other << ' '
              << OrDot(operation.seen) << ' ' << OrDot(operation.next) << ' ' << Now() << '\n';
        file_ << begin.str() << std::flush;
        std::optional<std::string> answer;
        try {
            answer = act();
        } catch (const RuntimeError& error) {
            const bool fails =
                error.Number() == ErrorNumber::StoreLocked || error.Number() == ErrorNumber::StoreUnreachable;
            const bool mayBeHalf = operation.verb == "save" && !dataBase_.IsRemote();
            if (error.Number() != ErrorNumber::OutcomeUnknown && !(fails && mayBeHalf)) {
                answer = error.Number() == ErrorNumber::Busy ? "busy" : fails ? "failed" : error.what();
                std::ranges::replace(*answer, ' ', '_');
            }
            std::this_thread::sleep_for(fails ? AfterFailure : AfterFailure.zero());
        }
        file_ << std::to_string(Now()) + ' ' + OrDot(answer.value_or("?")) + '\n' << std::flush;
        return answer;
    }

    void Load(int node) {
        std::string& loaded = loaded_.at(static_cast<std::size_t>(node));
        loaded = Do({0, "load", node}, [&] {
                     if (kind_ == "stale" && !loaded.empty() && Random(5) == 0) {
                         return loaded;
                     }
                     const Snapshot one(Of(node).Store());
                     const NodeContent content = Of(node).Read();
                     if (content.node) {
                         Of(node).Load();
                     }
                     return TextOf(content);
                 }).value_or("");
    }

    void PutBack(int node) {
        Do({0, "back", node}, [&] {
            History& history = Of(node).Versions();
            history.CatchUp();
            const auto half = history.Unfinished(PlaceOf(node));
            return std::string(half && history.PutBackUnfinished(PlaceOf(node), half->number) ? "1" : "0");
        });
    }

    void Save(int node) {
        const std::string seen = loaded_.at(static_cast<std::size_t>(node));
        const int target = std::stoi(seen.substr(seen.find('>') + 1));
        const std::string text = std::to_string(text_++);
        Of(node).GoingOver = kind_ == "lost";
        Do({0, "save", node, 0, seen, Whole(text, target)}, [&]() -> std::string {
            AutoNode intended = Of(node).Seen().node.value();
            intended.label = text;
            intended.prompts.clear(); // of which a content here tells nothing
            intended.actions.clear();
            for (int row = 1; row <= Rows; ++row) {
                intended.actions.push_back({row, {0, "MSG", target, {}}, text, text});
            }
            const auto met = Of(node).Save(intended);
            return !met                             ? "done"
                   : met->kind == Obstacle::Changed ? "changed"
                   : met->kind == Obstacle::Gone    ? "gone"
                                                    : "busy";
        });
        if (kind_ == "half" && Random(10) == 0) {
            dataBase_
                .Prepare("DELETE FROM Detail_AUTO_Action WHERE ConfigID = 1 AND PartID = 1 AND SequenceNo = 3"
                         " AND NodeMasterID = " +
                         std::to_string(FirstNode + node))
                ->Run({});
        }
    }

    void Restore(int node) {
        std::optional<Version> newest;
        std::string before;
        try {
            newest = history_.Newest(PlaceOf(node));
            before = TextOf(history_.Before(PlaceOf(node), newest ? newest->number : 0));
        } catch (const RuntimeError&) {
            return; // there is none, or it has gone meanwhile, or nothing can be read
        }
        Do({0, "restore", node, 0, {}, before},
           [&] { return TextOf(history_.PutBack(PlaceOf(node), newest->number, "restore")); });
    }

    void CopyOrRemove(int node, bool copies) {
        const int other = (node + 1) % NodesInHistory;
        const NodeKey key = PlaceOf(node).Key();
        Do({0, copies ? "copy" : "remove", node, other}, [&]() -> std::string {
            const auto obstacles = copies ? CopyNode(dataBase_, history_, names_,
                                                     OrderOf(key, FirstNode + other), SaveDate, Carry::Out)
                                                .obstacles
                                          : RemoveNode(dataBase_, history_, names_, {Where, key, {}, false},
                                                       SaveDate, Carry::Out)
                                                .obstacles;
            return obstacles.empty() ? "done" : "hindered";
        });
    }

    void RepointTarget(int target) {
        Do({0, "repoint", target, 1 - target}, [&] {
            const std::array map{
                Replacement{{MessageType, FirstTarget + target}, {MessageType, FirstTarget + 1 - target}}};
            const RepointPlan plan = Repoint(dataBase_, history_, names_, Where, map, SaveDate);
            return plan.obstacles.empty() ? std::to_string(plan.changes.size()) : "hindered";
        });
    }

    void CarryOutAndBack(bool back) {
        const std::string file = name_ + ".text"; // which goes with the store where this is killed
        std::vector<std::string> contents;
        Do({0, "export"}, [&] {
            std::string all;
            Export(dataBase_, Where, file);
            StoreOfText exported(file, nullptr);
            for (int node = 0; node < NodesInHistory; ++node) {
                all += contents.emplace_back(TextOf(ReadContent(exported.Store(), PlaceOf(node)))) + ';';
            }
            return all;
        });
        const auto whole = std::ranges::find_if(contents, IsWhole);
        if (!back || whole == contents.end() || std::ranges::any_of(contents, [](const auto& content) {
                return content != "-" && !IsWhole(content);
            })) {
            return;
        }
        const std::string from = whole->substr(0, whole->find('/'));
        const std::string to = std::to_string(text_++);
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        std::string changed = text.str();
        ReplaceAll(changed, from, to);
        std::ofstream(file) << changed;
        std::string becomes;
        for (const std::string& content : contents) {
            becomes += content + ';';
        }
        ReplaceAll(becomes, from, to);
        Do({0, "import", 0, 0, {}, becomes}, [&] {
            static_cast<void>(ImportExchange(dataBase_, file, Import::Carry, [](const auto&...) {}));
            return std::string("done");
        });
    }

    void LogAndDrop(int node) {
        Do({0, "log", node}, [&] {
            std::string log;
            for (const Version& version : history_.Versions(PlaceOf(node))) {
                if (version.state == VersionState::Finished) {
                    log.insert(0, version.work + ':' +
                                      TextOf(history_.Before(PlaceOf(node), version.number)) + ';');
                }
            }
            std::ranges::replace(log, ' ', '_');
            return log;
        });
        dataBase_
            .Prepare("DELETE FROM Node_AUTO_Version WHERE NodeNumber = " + std::to_string(FirstNode + node))
            ->Run({});
    }

    // The targets, and the first of the nodes; a first state that nobody saved is none to be restored.
    void Prepare() {
        for (const auto& [key, number] : {std::pair{NodeKey{MessageType, 1}, FirstTarget},
                                          {NodeKey{MessageType, 1}, FirstTarget + 1},
                                          {NodeKey{AutoType, 1}, FirstNode}}) {
            CopyNode(dataBase_, history_, names_, OrderOf(key, number), SaveDate, Carry::Out);
        }
        Load(0);
        loaded_[0] = Whole("any", FirstTarget);
        Save(0);
        dataBase_.Prepare("DELETE FROM Node_AUTO_Version")->Run({});
    }

    static CopyOrder OrderOf(const NodeKey& node, int number) {
        return {Where, node, Where, number, std::nullopt, Missing::Keep};
    }

    int Random(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    Saver& Of(int node) { return savers_.at(static_cast<std::size_t>(node)); }

    std::string name_;
    std::ofstream file_;
    std::mt19937 random_;
    int text_;
    int left_;
    std::string kind_;
    std::array<Saver, NodesInHistory> savers_{Saver(PlaceOf(0)), Saver(PlaceOf(1)), Saver(PlaceOf(2))};
    DataBase dataBase_;
    History history_{dataBase_};
    TypeNames names_{dataBase_};
    std::array<std::string, NodesInHistory> loaded_;
};

} // namespace

std::vector<Operation> OperationsIn(const std::string& file, int actor) {
    std::vector<Operation> operations;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        Operation& operation = operations.emplace_back();
        operation.actor = actor;
        std::istringstream(line) >> operation.verb >> operation.node >> operation.other >> operation.seen >>
            operation.next >> operation.begin;
        std::string answer;
        if (std::getline(lines, line) && std::istringstream(line) >> operation.end >> answer &&
            answer != "?") {
            operation.answer = answer == "." ? "" : answer;
        }
    }
    return operations;
}

int Record(const char* const* arguments) {
    std::optional<Recorder> recorder;
    while (!recorder) {
        try {
            recorder.emplace(arguments);
        } catch (const RuntimeError&) {
            std::this_thread::sleep_for(AfterFailure);
        }
    }
    recorder->Run();
    return 0;
}

} // namespace KAL_AUTO_Node
