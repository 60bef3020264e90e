// The subcommands. To add one: write its file, declare it here, and list it in main.cpp.
#pragma once

#include "library.hpp"

#include <optional>

namespace CLI {
class App;
}

namespace host {

// What all subcommands share.
class Session {
public:
    std::string libraryOption; // --library

    // The library, loaded when the first subcommand asks for it: help needs none.
    const Library &library();

private:
    std::optional<Library> loaded;
};

// Each adds its subcommand to the application; the work happens in the subcommand's callback, which reports
// problems by throwing Failure or UsageError.
void addInfoCommand(CLI::App &app, Session &session);
void addEnhanceCommand(CLI::App &app, Session &session);
void addConvertCommand(CLI::App &app, Session &session);
void addFormatsCommand(CLI::App &app, Session &session);
void addTonemapCommand(CLI::App &app, Session &session);
void addCurvesCommand(CLI::App &app, Session &session);
void addAudioCommand(CLI::App &app, Session &session); // where libsndfile is: see VELA_AUDIO

} // namespace host
