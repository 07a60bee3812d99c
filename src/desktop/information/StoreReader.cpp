#include "information/StoreReader.h"

#include "platform/RuntimeError.h"

#include <QMetaObject>

namespace KAL_AUTO_Node {

StoreReader::StoreReader(std::filesystem::path file) : file_(std::move(file)) {}

StoreReader::~StoreReader() {
    Forget();
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    added_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void StoreReader::Forget() {
    const std::lock_guard lock(mutex_);
    ++round_;
    questions_.clear();
}

void StoreReader::Rest() {
    if (thread_.joinable()) {
        Add({});
    }
}

void StoreReader::Add(Work work) {
    {
        const std::lock_guard lock(mutex_);
        questions_.push_back({std::move(work), round_});
    }
    if (!thread_.joinable()) {
        thread_ = std::thread([this] { Run(); });
    }
    added_.notify_one();
}

void StoreReader::Run() {
    for (;;) {
        Question question;
        {
            std::unique_lock lock(mutex_);
            added_.wait(lock, [this] { return ending_ || !questions_.empty(); });
            if (ending_) {
                break;
            }
            question = std::move(questions_.front());
            questions_.pop_front();
        }
        if (!question.work) {
            dataBase_.reset();
            continue;
        }
        if (!dataBase_) {
            Waits waits;
            waits.unwanted = &ending_;
            dataBase_.emplace(file_, waits);
        }
        Reply(*dataBase_, question);
        LetGo();
    }
    dataBase_.reset();
}

void StoreReader::LetGo() {
    {
        const std::lock_guard lock(mutex_);
        if (!dataBase_ || !questions_.empty()) {
            return;
        }
    }
    // What was read must not be kept for the reading's sake while nobody asks.
    try {
        dataBase_->LetGo();
    } catch (const std::exception&) {
        dataBase_.reset(); // the next question tells what is wrong
    }
}

void StoreReader::Reply(DataBase& dataBase, const Question& question) {
    const Look look = [this, &question] {
        if (question.round != round_) {
            throw RuntimeError("Nobody wants to know any more");
        }
    };
    Result result = question.work(dataBase, look);
    if (result.failed) {
        dataBase_.reset(); // a line may be gone, and another one there
    }
    QMetaObject::invokeMethod(
        &here_,
        [this, round = question.round, deliver = std::move(result.deliver)] {
            if (round == round_) {
                deliver();
            }
        },
        Qt::QueuedConnection);
}

} // namespace KAL_AUTO_Node
