// Files that are read and written: what is wrong with them, and results that appear when they are complete.
#pragma once

#include "failure.hpp"

#include <filesystem>
#include <string>

namespace host {

Failure unreadable(const std::filesystem::path &path, const std::string &reason);
Failure unwritable(const std::filesystem::path &path, const std::string &reason);

// Throws Failure unless there is a file of that name.
void checkIsFile(const std::filesystem::path &input);

// Throws Failure if both are names of one file.
void checkIsNotInput(const std::filesystem::path &output, const std::filesystem::path &input);

// A file that is written under another name beside its own and appears when all is done: whatever goes wrong, a file of
// that name stays as it was.
class UnfinishedFile {
public:
    // Throws Failure if something is in the way.
    explicit UnfinishedFile(std::filesystem::path file);
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile &) = delete;
    UnfinishedFile &operator=(const UnfinishedFile &) = delete;

    const std::filesystem::path &path() const { return name; }
    const std::filesystem::path &pathUntilFinished() const { return unfinishedName; }

    // Gives the file its own name; it must be closed. Throws Failure.
    void finish();

private:
    std::filesystem::path name;
    std::filesystem::path unfinishedName;
    bool finished = false;
};

} // namespace host
