#include "files.hpp"

#include "paths.hpp"

namespace host {

Failure unreadable(const std::filesystem::path &path, const std::string &reason)
{
    return Failure("cannot read " + quoted(path) + ": " + reason);
}

Failure unwritable(const std::filesystem::path &path, const std::string &reason)
{
    return Failure("cannot write " + quoted(path) + ": " + reason);
}

void checkIsFile(const std::filesystem::path &input)
{
    std::error_code error;
    if (!std::filesystem::exists(input, error))
        throw unreadable(input, "no such file, or no permission");
    if (!std::filesystem::is_regular_file(input, error))
        throw unreadable(input, "not a file");
}

void checkIsNotInput(const std::filesystem::path &output, const std::filesystem::path &input)
{
    std::error_code error;
    if (std::filesystem::equivalent(input, output, error))
        throw Failure("the output would replace the input " + quoted(input));
}

UnfinishedFile::UnfinishedFile(std::filesystem::path file) : name(std::move(file)), unfinishedName(name)
{
    unfinishedName += ".part";
    std::error_code error;
    if (std::filesystem::exists(name, error) && !std::filesystem::is_regular_file(name, error))
        throw unwritable(name, "there is something else of that name");
    if (std::filesystem::exists(unfinishedName, error))
        throw unwritable(name, quoted(unfinishedName) + " is in the way; remove it if no other run is writing it");
}

UnfinishedFile::~UnfinishedFile()
{
    std::error_code ignored;
    if (!finished)
        std::filesystem::remove(unfinishedName, ignored);
}

void UnfinishedFile::finish()
{
    std::error_code error;
    std::filesystem::rename(unfinishedName, name, error);
    if (error)
        throw unwritable(name, error.message());
    finished = true;
}

} // namespace host
