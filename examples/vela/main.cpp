// vela: a command-line host of VelaCPUBase.
#include "commands.hpp"
#include "failure.hpp"
#include "paths.hpp"

#include <vela/version.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <new>

namespace host {
namespace {

constexpr const char *description = "vela: a command-line host of the VelaCPUBase kernels.";

constexpr const char *examples = R"(Examples:
  vela info                                what this processor gets from the library
  vela info --slots video                  every kernel of a family, and the tier that runs
  vela enhance photo.bmp out               smoothed, sharpened and 4:2:2 copies in directory out
  vela convert photo.bmp photo.nv12 --to NV12   pictures and raw video from one pixel layout to another
  vela formats                             the layouts and the conversions
  vela tonemap graded.dpx graded.bmp       a PQ picture of BT.2020, tone-mapped for a display of 100 cd/m2
  vela curves                              the transfer curves as CSV
)";

#if defined(VELA_AUDIO)
constexpr const char *audioExamples =
    "  vela audio a.wav b.wav mix.wav           two sounds mixed; --gain -6,0 for the first at half its amplitude\n";
#else
constexpr const char *audioExamples = "";
#endif

constexpr const char *moreExamples = R"(  vela --library ./libVelaCPUBase.so info  with a library of your choice

'vela SUBCOMMAND --help' explains a subcommand. Exit status: 0 done, 1 failed, 2 wrong usage.)";

std::string versionText()
{
    return "vela " + std::to_string(VELA_VERSION_MAJOR) + '.' + std::to_string(VELA_VERSION_MINOR) + '.' +
           std::to_string(VELA_VERSION_PATCH);
}

int complain(const std::string &message, ExitStatus status)
{
    std::cout.flush();
    std::cerr << "vela: " << message << '\n';
    return status;
}

// An unknown subcommand is told by its name rather than by its absence.
std::string usageProblem(const CLI::App &app, const CLI::ParseError &error)
{
    const std::vector<std::string> unknown = app.remaining();
    if (app.get_subcommands().empty() && !unknown.empty())
        return "'" + unknown.front() + "' is neither a subcommand nor an option";
    return error.what();
}

int run(std::vector<std::string> arguments)
{
    CLI::App app(description, "vela");
    Session session;
    app.add_option("--library", session.libraryOption,
                   "Library to load (default: the one beside this program, then the system's search)")
        ->type_name("PATH");
    app.set_version_flag("--version", versionText());
    app.require_subcommand(1);
    app.footer(std::string(examples) + audioExamples + moreExamples);

    addInfoCommand(app, session);
    addEnhanceCommand(app, session);
    addConvertCommand(app, session);
    addFormatsCommand(app, session);
    addTonemapCommand(app, session);
    addCurvesCommand(app, session);
#if defined(VELA_AUDIO)
    addAudioCommand(app, session);
#endif

    try {
        std::reverse(arguments.begin(), arguments.end()); // CLI11 takes them last first
        app.parse(arguments);
        if (!std::cout.flush())
            return complain("cannot write the output", exitFailure);
        return exitSuccess;
    } catch (const CLI::Success &request) { // --help, --version
        return app.exit(request);
    } catch (const CLI::ParseError &error) {
        return complain(usageProblem(app, error) + " (try 'vela --help')", exitUsage);
    } catch (const UsageError &error) {
        return complain(error.what(), exitUsage);
    } catch (const std::bad_alloc &) {
        return complain("not enough memory", exitFailure);
    } catch (const std::exception &error) {
        return complain(error.what(), exitFailure);
    }
}

} // namespace

const Library &Session::library()
{
    if (!loaded)
        loaded.emplace(pathFromUtf8(libraryOption));
    return *loaded;
}

} // namespace host

int main(int argc, char **argv)
{
    try {
        return host::run(host::programArguments(argc, argv));
    } catch (...) { // before the subcommands, or while complaining
        std::fputs("vela: failed, for want of memory or of an output\n", stderr);
        return host::exitFailure;
    }
}
