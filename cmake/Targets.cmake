# Settings that all targets share. The CMakeLists.txt of a folder names sources and dependencies only.

option(TWDP_WARNINGS_AS_ERRORS "Stop at the first warning" OFF)
set(TWDP_SANITIZE "" CACHE STRING "Sanitizers to build with, as the compiler names them")
option(TWDP_FUZZ "Build the fuzzers; needs clang" OFF)
option(TWDP_COVERAGE "Count lines and branches; needs gcc" OFF)
# Programs hold the code of the layers. As libraries a small change is linked once, not into each test.
set(TWDP_INNER_LIBRARIES STATIC CACHE STRING "Kind of the libraries of the layers; SHARED is not for installing")

function(twdp_set_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wold-style-cast -Wcast-align -Wformat=2 -Wundef
        -Woverloaded-virtual $<$<BOOL:${TWDP_WARNINGS_AS_ERRORS}>:-Werror>)
endfunction()

function(twdp_set_sanitizers target)
    if(TWDP_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${TWDP_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${TWDP_SANITIZE})
    endif()
endfunction()

# Protection by compiler and linker against mistakes that nobody found yet. Checked copies need the
# sizes that only an optimised build knows; the sanitizers check more and must not be bypassed.
function(twdp_set_hardening target)
    target_compile_options(${target} PRIVATE -fstack-protector-strong -fstack-clash-protection
        $<$<STREQUAL:${CMAKE_SYSTEM_PROCESSOR},x86_64>:-fcf-protection=full>)
    if(NOT TWDP_SANITIZE)
        target_compile_options(${target} PRIVATE
            $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>)
    endif()
    # All code is position-independent already: Qt asks for it.
    get_target_property(type ${target} TYPE)
    target_link_options(${target} PRIVATE -Wl,-z,relro,-z,now
        $<$<STREQUAL:${type},EXECUTABLE>:-pie>)
endfunction()

# Every target counts: the fuzzer learns from all code that it reaches.
function(twdp_set_counters target)
    if(TWDP_FUZZ)
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
    if(TWDP_COVERAGE)
        # Nothing of ours throws or catches: without exceptions each branch is a decision of the
        # source, and none a way out of every call and past every temporary.
        target_compile_options(${target} PRIVATE --coverage -fno-exceptions)
        target_compile_definitions(${target} PRIVATE TWDP_COVERAGE)
        target_link_options(${target} PRIVATE --coverage)
        # Only in this dialect does gcc keep the counts of a process that becomes another program.
        set_target_properties(${target} PROPERTIES CXX_EXTENSIONS ON)
    endif()
endfunction()

# twdp_target(<target>): include paths from the project's root, so that every #include names the
# folder it uses; warnings and sanitizers as the preset asks.
function(twdp_target target)
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
    target_compile_definitions(${target} PRIVATE QT_DEPRECATED_WARNINGS QT_NO_FOREACH)
    twdp_set_warnings(${target})
    twdp_set_hardening(${target})
    twdp_set_sanitizers(${target})
    twdp_set_counters(${target})
endfunction()
