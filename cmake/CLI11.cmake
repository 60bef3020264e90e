# vela_cli11, the command-line parser CLI11: headers alone, so the system's copy serves cross builds too. A cross
# compiler must see it but no other header of the system, hence a directory with nothing else in it.
if(NOT TARGET vela_cli11)
    find_path(CLI11_DIRECTORY CLI/CLI.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/cli11)
    file(CREATE_LINK ${CLI11_DIRECTORY}/CLI ${PROJECT_BINARY_DIR}/cli11/CLI SYMBOLIC)
    add_library(vela_cli11 INTERFACE)
    target_include_directories(vela_cli11 SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/cli11)
endif()
