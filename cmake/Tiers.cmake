# Tier sources: the only files that are compiled for more than the base processor.

set(VELA_TIER_FLAGS_SSE2 -msse2 -mno-sse3)
set(VELA_TIER_FLAGS_SSSE3 -mssse3 -mno-sse4.1)
set(VELA_TIER_FLAGS_AVX -mavx -mno-avx2)
set(VELA_TIER_FLAGS_AVX2 -mavx2 -mno-fma)
if(WIN32)
    # MinGW does not keep 32-byte stack slots aligned, so spills must not be aligned moves.
    list(APPEND VELA_TIER_FLAGS_AVX -Wa,-muse-unaligned-vector-move)
    list(APPEND VELA_TIER_FLAGS_AVX2 -Wa,-muse-unaligned-vector-move)
endif()
# Link-time optimisation would take a tier's code apart before it can be checked. A tier includes the texts of whole
# topics and ships some of them; the others are dropped.
set(VELA_TIER_FLAGS_COMMON -fno-lto -Wno-unused-function)
# Kernels throw nothing; without optimisation the compiler would still make room for it, and refer to its runtime.
list(APPEND VELA_TIER_FLAGS_COMMON -fno-exceptions)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Every slot has an address of its own, even where two kernels come out the same.
    list(APPEND VELA_TIER_FLAGS_COMMON -fno-ipa-icf)
endif()

# vela_tier_sources(TARGET TIER source...): adds sources with the flags of their tier.
function(vela_tier_sources target tier)
    target_sources(${target} PRIVATE ${ARGN})
    set_property(SOURCE ${ARGN} APPEND PROPERTY COMPILE_OPTIONS ${VELA_TIER_FLAGS_COMMON} ${VELA_TIER_FLAGS_${tier}})
endfunction()

# vela_check_tiers(LIBRARY OBJECTS): linking the library fails unless the objects of the target OBJECTS are fit for
# their tiers. Sanitizers and coverage add symbols and initialisers of their own, so there nothing is checked.
function(vela_check_tiers library objects)
    if(VELA_INSTRUMENTED)
        message(STATUS "Instrumented build: tier objects are not checked")
        return()
    endif()
    add_custom_command(TARGET ${library} PRE_LINK
        COMMAND sh ${PROJECT_SOURCE_DIR}/cmake/check-tier-objects ${CMAKE_NM} ${CMAKE_OBJDUMP}
            $<TARGET_OBJECTS:${objects}>
        COMMENT "Checking tier objects" COMMAND_EXPAND_LISTS VERBATIM)
endfunction()
