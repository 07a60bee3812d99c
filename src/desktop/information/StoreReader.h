#pragma once

#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <QObject>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

namespace KAL_AUTO_Node {

// What was asked for, or why it could not be read, for people.
template <class Content>
struct Answer {
    std::optional<Content> content;
    std::string failure;
};

// Reads the store for windows that must not wait for it: on a thread and a connection of its own, one
// question after the other. All but the reading happens on the thread that made the reader.
class StoreReader {
  public:
    // Opens nothing yet.
    explicit StoreReader(std::filesystem::path file);
    // What is being read is given up.
    ~StoreReader();

    StoreReader(const StoreReader&) = delete;
    StoreReader& operator=(const StoreReader&) = delete;

    // Raises what ends the reading, where nobody wants the answer any more. What takes long calls it.
    using Look = std::function<void()>;

    // Calls read(DataBase&, const Look&) on the thread, in one state of the store, and hands what it returns
    // to take as an Answer&; not any more once it is forgotten.
    template <class Read, class Take>
    void Ask(Read read, Take take) {
        using Content = std::invoke_result_t<Read, DataBase&, const Look&>;
        Add([read = std::move(read), take = std::move(take)](DataBase& dataBase, const Look& look) {
            const auto answer = std::make_shared<Answer<Content>>();
            try {
                const Snapshot snapshot(dataBase);
                answer->content = read(dataBase, look);
            } catch (const std::exception& error) {
                answer->failure = VisibleLines(error.what());
            }
            return Result{[answer, take] { take(*answer); }, !answer->content};
        });
    }

    // Nobody wants the answers that are still to come.
    void Forget();

    // The connection is closed once all is answered, until something is asked again.
    void Rest();

  private:
    struct Result {
        std::function<void()> deliver;
        bool failed;
    };

    using Work = std::function<Result(DataBase& dataBase, const Look& look)>;

    struct Question {
        Work work; // none: the connection is closed
        int round;
    };

    void Add(Work work);
    void Run();
    void Reply(DataBase& dataBase, const Question& question);
    void LetGo();

    std::filesystem::path file_;
    QObject here_; // answers come to where it lives
    std::mutex mutex_;
    std::condition_variable added_;
    std::deque<Question> questions_;
    std::atomic<bool> ending_ = false;
    std::atomic<int> round_ = 0; // the questions of those before are forgotten
    std::optional<DataBase> dataBase_;
    std::thread thread_; // from the first question on
};

} // namespace KAL_AUTO_Node
