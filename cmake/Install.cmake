# Installed: the library, the headers with their slot lists, a CMake package and a pkg-config file. Both find the
# rest relative to themselves, so an installed tree may be moved.
include(CMakePackageConfigHelpers)

install(TARGETS VelaCPUBase EXPORT VelaCPUBaseTargets
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/vela TYPE INCLUDE COMPONENT development)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VelaCPUBase)
install(EXPORT VelaCPUBaseTargets NAMESPACE VelaCPUBase:: DESTINATION ${package_dir} COMPONENT development)
file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/VelaCPUBaseConfig.cmake
    CONTENT "include(\"\${CMAKE_CURRENT_LIST_DIR}/VelaCPUBaseTargets.cmake\")\n" @ONLY)
# Before 1.0 a minor version may change the interface.
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VelaCPUBaseConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/VelaCPUBaseConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/VelaCPUBaseConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

set(pc_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${pc_dir} OUTPUT_VARIABLE pc_prefix)
foreach(dir INCLUDEDIR LIBDIR)
    set(pc_${dir} ${CMAKE_INSTALL_${dir}})
    cmake_path(IS_ABSOLUTE pc_${dir} is_absolute)
    if(NOT is_absolute)
        string(PREPEND pc_${dir} "\${prefix}/")
    endif()
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/cmake/velacpubase.pc.in ${CMAKE_CURRENT_BINARY_DIR}/velacpubase.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/velacpubase.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
