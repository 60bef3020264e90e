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
# A tier's table names the kernels that the tier has; the other slots are null.
set(VELA_TIER_FLAGS_COMMON -Wno-missing-field-initializers)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Every slot has an address of its own, even where two kernels come out the same.
    list(APPEND VELA_TIER_FLAGS_COMMON -fno-ipa-icf)
endif()

# vela_tier_sources(TARGET TIER source...): adds sources with the flags of their tier.
function(vela_tier_sources target tier)
    target_sources(${target} PRIVATE ${ARGN})
    set_property(SOURCE ${ARGN} APPEND PROPERTY COMPILE_OPTIONS ${VELA_TIER_FLAGS_COMMON} ${VELA_TIER_FLAGS_${tier}})
endfunction()
