#include "host.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace vela::test {
namespace {

std::filesystem::path builtLibrary()
{
    const char *path = std::getenv("VELA_LIBRARY");
    if (!path)
        throw std::runtime_error("VELA_LIBRARY does not name the library to be tested");
    return path;
}

bool isDigit(char16_t character) { return character >= u'0' && character <= u'9'; }

bool isStamp(std::u16string_view text)
{
    constexpr std::u16string_view form = u"00/00/00 00:00:00";
    if (text.size() != form.size())
        return false;
    for (std::size_t i = 0; i < form.size(); ++i)
        if (form[i] == u'0' ? !isDigit(text[i]) : text[i] != form[i])
            return false;
    return true;
}

std::vector<std::filesystem::path> listLogs(const std::filesystem::path &directory, bool old)
{
    std::vector<std::filesystem::path> found;
    if (std::filesystem::is_directory(directory))
        for (const auto &entry : std::filesystem::directory_iterator(directory))
            if (entry.path().filename().string().starts_with("TesselSDK-19") == old)
                found.push_back(entry.path());
    return found;
}

} // namespace

Library::Library(const std::filesystem::path &path) : path_(path), module_(loader::load(path))
{
    if (!module_)
        throw std::runtime_error("cannot load " + path.string());
}

Library::~Library()
{
    if (module_)
        unload();
}

void Library::unload()
{
    loader::unload(std::exchange(module_, nullptr));
    // On Windows the clean-up thread may keep the library for a while.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (loader::isLoaded(path_) && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_FALSE(loader::isLoaded(path_)) << "the library stays loaded";
}

void *Library::find(const char *name) const
{
    void *symbol = loader::symbol(module_, name);
    if (!symbol)
        throw std::runtime_error(std::string("no export ") + name);
    return symbol;
}

Installation::Installation(const std::filesystem::path &subdirectory) : directory_(temporary_.path() / subdirectory)
{
    std::filesystem::create_directories(directory_);
    std::filesystem::copy_file(builtLibrary(), library());
}

std::filesystem::path Installation::library() const { return directory_ / builtLibrary().filename(); }

void Installation::addOldLogs(int count) const
{
    std::filesystem::create_directory(logDirectory());
    for (int i = 0; i < count; ++i) {
        char name[64];
        std::snprintf(name, sizeof(name), "TesselSDK-19991231-%06d.txt", i);
        writeFile(logDirectory() / name, "");
    }
}

std::size_t Installation::oldLogs() const { return listLogs(logDirectory(), true).size(); }

std::vector<std::filesystem::path> Installation::logs() const { return listLogs(logDirectory(), false); }

std::u16string Installation::log() const
{
    const std::vector<std::filesystem::path> found = logs();
    EXPECT_EQ(found.size(), 1u);
    if (found.size() != 1)
        return {};
    const std::string bytes = readFile(found[0]);
    EXPECT_EQ(bytes.substr(0, 2), "\xFF\xFE");
    EXPECT_EQ(bytes.size() % 2, 0u);
    std::u16string text;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        text.push_back(static_cast<char16_t>(high << 8 | low));
    }
    return text;
}

std::u16string masked(std::u16string text)
{
    constexpr std::size_t stampLength = 17;
    for (std::size_t i = 0; i + stampLength <= text.size(); ++i)
        if (isStamp(std::u16string_view(text).substr(i, stampLength)))
            text.replace(i, stampLength, u"<now>");
    return text;
}

const std::u16string startLine = u"\r\n#### Log Start - <now> ####\r\n";
const std::u16string stopLine = u"#### Log Stop - <now> ####\r\n";

std::u16string messageLine(const std::u16string &text) { return u"## <now>    " + text + u" ##\r\n"; }

} // namespace vela::test
