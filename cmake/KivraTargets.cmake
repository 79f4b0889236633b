# What every target of the project has in common: language level, warnings, hidden symbols, sanitizers.
function(kivra_target target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        C_STANDARD 11
        C_STANDARD_REQUIRED ON
        C_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        C_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
    if(MSVC)
        target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:C,CXX>:/W4 /WX /utf-8>)
    else()
        target_compile_options(${target} PRIVATE
            $<$<COMPILE_LANGUAGE:C,CXX>:-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror>)
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
            # GCC 12 sees overlaps in assignments of short texts where there are none (GCC bug 105651).
            target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
        endif()
    endif()
    if(KIVRA_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${KIVRA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
            # This check opens a pipe, which fails in tests that leave no descriptor.
            -fno-sanitize=vptr)
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            # The sanitizers' own code makes GCC see uninitialised values where there are none.
            target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
        endif()
        target_link_options(${target} PRIVATE -fsanitize=${KIVRA_SANITIZE})
    endif()
endfunction()
