set(twdp_test_environment LC_ALL=C.UTF-8 QTEST_FUNCTION_TIMEOUT=1500000
    LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0)

if(TWDP_COVERAGE)
    # Counts that can't be written, because a test lets the disk be full, must not look like the program's messages.
    list(APPEND twdp_test_environment GCOV_ERROR_FILE=/dev/null)
endif()

# twdp_add_test(NAME <name> SOURCE <file> LABEL <unit|gui|fault|engine|package> LIBRARIES <targets...>)
#
# One executable per unit, which ends with 77 if this machine can't do what it tests. A gui test runs
# twice: on the offscreen platform and in a real X server of 1920 x 1080, because fonts, focus and
# window sizes differ between the two. Latin-1 letters in file names need a UTF-8 locale;
# LeakSanitizer's suppressions name only what is not ours.
function(twdp_add_test)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME;SOURCE;LABEL" "LIBRARIES")
    add_executable(${arg_NAME} ${arg_SOURCE})
    twdp_target(${arg_NAME})
    target_link_libraries(${arg_NAME} PRIVATE ${arg_LIBRARIES} Qt5::Test)
    # The folder is a label as well, so that the tests of one can be asked for.
    cmake_path(GET arg_SOURCE PARENT_PATH folder)
    cmake_path(GET folder FILENAME folder)
    set(labels ${arg_LABEL} ${folder})
    add_test(NAME ${arg_NAME} COMMAND ${arg_NAME})
    set_tests_properties(${arg_NAME} PROPERTIES LABELS "${labels}" TIMEOUT 1500
        SKIP_RETURN_CODE 77
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${twdp_test_environment}")
    if(arg_LABEL STREQUAL gui)
        add_test(NAME ${arg_NAME}_x11
            COMMAND xvfb-run -a -s "-screen 0 1920x1080x24" $<TARGET_FILE:${arg_NAME}>)
        set_tests_properties(${arg_NAME}_x11 PROPERTIES LABELS "${labels}" TIMEOUT 1500
            ENVIRONMENT "QT_QPA_PLATFORM=xcb;${twdp_test_environment}")
    endif()
endfunction()
