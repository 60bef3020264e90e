// The built program, run with its output caught. Every test gets a directory of its own.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <sys/wait.h>
#endif

namespace vela::test {

using Bytes = std::vector<std::uint8_t>;

inline std::string contentsOf(const std::filesystem::path &file)
{
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// Text as programs write it: lines end in CR LF on Windows.
inline std::string textOf(const std::filesystem::path &file)
{
    std::string text = contentsOf(file);
    std::erase(text, '\r');
    return text;
}

inline bool contains(const std::string &text, const std::string &part) { return text.find(part) != std::string::npos; }

// What the program says when something is wrong: one line.
inline bool isOneComplaint(const std::string &errors)
{
    return errors.starts_with("vela: ") && std::ranges::count(errors, '\n') == 1;
}

struct Outcome {
    int status;
    std::string output;
    std::string errors;
};

class RunVela : public testing::Test {
protected:
    void SetUp() override
    {
        const auto *test = testing::UnitTest::GetInstance()->current_test_info();
        std::string name = std::string("cli-test-") + test->test_suite_name() + "-" + test->name();
        std::ranges::replace(name, '/', '-'); // of tests with a parameter
        directory = std::filesystem::absolute(name);
        std::filesystem::remove_all(directory);
        std::filesystem::create_directories(directory);
        program = std::filesystem::absolute(VELA_PROGRAM).make_preferred();
    }

    void TearDown() override { std::filesystem::remove_all(directory); }

    // shellCommands come before the program's start, in the same shell.
    Outcome run(const std::string &arguments, const std::string &shellCommands = "") const
    {
        const std::filesystem::path output = directory / "stdout";
        const std::filesystem::path errors = directory / "stderr";
        std::string command = shellCommands + '"' + program.string() + "\" " + arguments + " > \"" + output.string() +
                              "\" 2> \"" + errors.string() + '"';
#if defined(_WIN32)
        const int status = std::system(('"' + command + '"').c_str()); // cmd takes the outer quotes off
#else
        const int raw = std::system(command.c_str());
        const int status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
#endif
        return {status, textOf(output), textOf(errors)};
    }

    // The file's name, quoted for the command line.
    std::string writeFile(const std::string &name, const Bytes &bytes) const
    {
        std::ofstream(directory / name, std::ios::binary)
            .write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return '"' + (directory / name).string() + '"';
    }

    std::filesystem::path directory;
    std::filesystem::path program;
};

} // namespace vela::test
