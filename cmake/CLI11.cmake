# CLI11::CLI11, the command-line parser of the examples: headers alone, so the system's copy serves cross builds
# too. It is reached through a directory of its own, since /usr/include must not be searched for another system.
find_path(CLI11_PARENT CLI/CLI.hpp PATHS /usr/include /usr/local/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/cli11)
file(CREATE_LINK ${CLI11_PARENT}/CLI ${PROJECT_BINARY_DIR}/cli11/CLI SYMBOLIC)
if(NOT TARGET CLI11::CLI11)
    add_library(CLI11::CLI11 INTERFACE IMPORTED)
    target_include_directories(CLI11::CLI11 INTERFACE ${PROJECT_BINARY_DIR}/cli11)
endif()
