# PkgConfig::sndfile, libsndfile, for sound in the command-line host: there if it is wanted (VELA_AUDIO) and found.
# Debian has none for MinGW, so a Windows build goes without.
if(VELA_AUDIO AND NOT WIN32 AND NOT TARGET PkgConfig::sndfile)
    find_package(PkgConfig QUIET)
    if(PkgConfig_FOUND)
        pkg_check_modules(sndfile QUIET IMPORTED_TARGET GLOBAL sndfile)
    endif()
endif()
