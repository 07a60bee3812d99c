#include "store/Batch.h"

#include "store/Connection.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>

namespace KAL_AUTO_Node {

std::vector<std::optional<std::string>> ValuesOf(Parameters parameters) {
    std::vector<std::optional<std::string>> values;
    for (const Parameter& parameter : parameters) {
        std::ranges::copy(parameter.Values(), std::back_inserter(values));
    }
    return values;
}

CommandRun::CommandRun(Command which, Parameters with) : command(which), parameters(ValuesOf(with)) {}

void Batch::Add(Command command, Parameters parameters) {
    if (dataBase_.IsRemote()) {
        waiting_.emplace_back(command, parameters);
    } else {
        written_.push_back(dataBase_.Execute(command, parameters));
    }
}

std::vector<std::int64_t> Batch::Run() {
    Send(false);
    return std::exchange(written_, {});
}

void Batch::Send(bool committing) {
    if (!waiting_.empty()) {
        written_ = dataBase_.RunTogether(std::exchange(waiting_, {}), committing);
    }
}

ReadAhead::ReadAhead(DataBase& dataBase) : dataBase_(dataBase), helps_(dataBase.BeginReadingAhead()) {}

ReadAhead::~ReadAhead() { dataBase_.EndReadingAhead(); }

void ReadAhead::Read(const std::function<void()>& read) {
    if (!helps_ || dataBase_.asking_ != nullptr) {
        read(); // by itself, or as a part of what is asked for already
        return;
    }
    DataBase::Asking asking;
    while (true) {
        std::exception_ptr failure;
        dataBase_.asking_ = &asking;
        try {
            read();
        } catch (...) {
            failure = std::current_exception();
        }
        dataBase_.asking_ = nullptr;
        if (asking.fresh.empty()) {
            if (failure) {
                std::rethrow_exception(failure);
            }
            return;
        }
        dataBase_.FetchAhead({asking.fresh.begin(), asking.fresh.end()});
        asking.known.merge(asking.fresh);
    }
}

void ReadAhead::Fetch(const std::function<void()>& read) {
    if (!helps_) {
        return;
    }
    Read([&] {
        try {
            read();
        } catch (const RuntimeError&) {
            return; // told by what reads it
        }
    });
}

void ReadAhead::Fetch(std::span<const StatementRun> runs) {
    if (helps_) {
        std::size_t reached = 0;
        dataBase_.Open().FetchAhead(runs, reached);
    }
}

} // namespace KAL_AUTO_Node
