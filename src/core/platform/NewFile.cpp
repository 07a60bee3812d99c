#include "platform/NewFile.h"

#include "platform/Interruption.h"
#include "platform/RuntimeError.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

[[noreturn]] void Fail(const std::filesystem::path& name, const std::string& why) {
    throw RuntimeError(ErrorNumber::StoreFailure, "Cannot write '" + name.string() + "': " + why);
}

void Require(bool done, const std::filesystem::path& name) {
    if (!done) {
        // Without the name of the call that failed, which tells a person nothing.
        Fail(name, std::generic_category().message(errno));
    }
}

// Not every file system can, nor may everybody read every folder; the entry is there all the same.
void SyncFolder(const std::filesystem::path& folder) {
    try {
        fsync(Descriptor(folder, O_RDONLY | O_DIRECTORY).Number());
    } catch (const RuntimeError&) {
        return;
    }
}

void WriteAll(int descriptor, const std::filesystem::path& name, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = write(descriptor, content.data(), content.size());
        Require(written >= 0 || errno == EINTR, name);
        content.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
}

bool SameFile(int descriptor, const std::filesystem::path& name) {
    struct stat one {};

    struct stat other {};

    return fstat(descriptor, &one) == 0 && lstat(name.c_str(), &other) == 0 && one.st_ino == other.st_ino &&
           one.st_dev == other.st_dev;
}

} // namespace

Descriptor::Descriptor(const std::filesystem::path& path, int flags)
    : number_(open(path.c_str(), flags | O_CLOEXEC, 0666)) {
    Require(number_ >= 0, path);
}

Descriptor::~Descriptor() { close(number_); }

NewFolders::NewFolders(const std::filesystem::path& folder) {
    try {
        Make(folder);
    } catch (...) {
        TakeBack();
        throw;
    }
}

NewFolders::~NewFolders() { TakeBack(); }

void NewFolders::Keep() {
    for (const std::filesystem::path& folder : made_) {
        SyncFolder(folder.parent_path());
    }
    made_.clear();
}

void NewFolders::Make(const std::filesystem::path& folder) {
    std::error_code ignored;
    if (folder.empty() || std::filesystem::is_directory(folder, ignored)) {
        return;
    }
    Make(folder.parent_path());
    if (mkdir(folder.c_str(), 0777) == 0) {
        made_.push_back(folder);
    } else {
        // Another program may have made it meanwhile.
        Require(errno == EEXIST && std::filesystem::is_directory(folder, ignored), folder);
    }
}

void NewFolders::TakeBack() {
    for (; !made_.empty(); made_.pop_back()) {
        rmdir(made_.back().c_str()); // not where somebody put something into it meanwhile
    }
}

NewFile::NewFile(const std::filesystem::path& place, Readers readers)
    : place_(place), name_(place.string() + ".new"), file_(name_, O_WRONLY | O_CREAT | O_NOFOLLOW) {
    // The other one may also just have given the file its place.
    if (flock(file_.Number(), LOCK_EX | LOCK_NB) != 0 || !SameFile(file_.Number(), name_)) {
        Fail(name_, "another program is making it");
    }
    Require(readers == Readers::Any || fchmod(file_.Number(), S_IRUSR | S_IWUSR) == 0, name_);
}

NewFile::~NewFile() {
    if (!placed_) {
        unlink(name_.c_str());
    }
}

void NewFile::Write(std::string_view content) {
    Require(ftruncate(file_.Number(), 0) == 0, name_);
    Append(content);
    Require(fsync(file_.Number()) == 0, name_);
}

void NewFile::Append(std::string_view content) {
    Interruption::Look();
    WriteAll(file_.Number(), name_, content);
}

void NewFile::Place() {
    Require(fsync(file_.Number()) == 0, name_); // others may have written it
    placed_ = renameat2(AT_FDCWD, name_.c_str(), AT_FDCWD, place_.c_str(), RENAME_NOREPLACE) == 0;
    // Not every file system knows that way.
    Require(placed_ || (errno == EINVAL && link(name_.c_str(), place_.c_str()) == 0), place_);
    SyncFolder(place_.parent_path());
}

void NewFile::Replace() {
    Require(fsync(file_.Number()) == 0, name_);
    placed_ = rename(name_.c_str(), place_.c_str()) == 0;
    Require(placed_, place_);
    SyncFolder(place_.parent_path());
}

bool Output::IsStream(const std::filesystem::path& place) {
    std::error_code ignored;
    const auto kind = std::filesystem::status(place, ignored).type();
    using enum std::filesystem::file_type;
    return kind == fifo || kind == character || kind == block || kind == socket;
}

Output::Output(const std::filesystem::path& place) : place_(place) {
    if (IsStream(place)) {
        stream_.emplace(place, O_WRONLY | O_NOCTTY);
        return;
    }
    std::error_code ignored;
    const auto named = std::filesystem::weakly_canonical(place, ignored);
    file_.emplace(named.empty() ? place : named).Write("");
}

void Output::Append(std::string_view content) {
    if (file_) {
        file_->Append(content);
    } else {
        WriteAll(stream_->Number(), place_, content);
    }
}

void Output::Finish() {
    if (file_) {
        file_->Replace();
    }
}

} // namespace KAL_AUTO_Node
