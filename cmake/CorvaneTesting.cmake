# corvane_add_test(NAME <suite> SOURCES <files> LIBRARIES <libs> [LABELS <labels>]
#                  [TIMEOUT <seconds>] [SHARED_MAIN])
# Builds one Qt Test suite and registers it with CTest. Every suite runs on the
# offscreen platform with a private runtime folder; slow suites carry the label "slow"
# so that `ctest -LE slow` skips them. With SHARED_MAIN the sources register several
# test classes (CORVANE_TEST_SUITE) that one executable runs in turn.
function(corvane_add_test)
    cmake_parse_arguments(ARG "SHARED_MAIN" "NAME;TIMEOUT" "SOURCES;LIBRARIES;LABELS" ${ARGN})
    if(ARG_SHARED_MAIN)
        list(APPEND ARG_SOURCES ${PROJECT_SOURCE_DIR}/tests/support/SuiteMain.cpp)
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    # On Windows only the suites chosen for wine are built and run; the others stay
    # buildable targets outside "all".
    if(WIN32 AND NOT ARG_NAME IN_LIST CORVANE_WINE_SUITES)
        add_executable(${ARG_NAME} EXCLUDE_FROM_ALL ${ARG_SOURCES})
        target_link_libraries(${ARG_NAME} PRIVATE ${ARG_LIBRARIES} corvane_testsupport Qt6::Test)
        return()
    endif()
    add_executable(${ARG_NAME} ${ARG_SOURCES})
    target_link_libraries(${ARG_NAME} PRIVATE ${ARG_LIBRARIES} corvane_testsupport Qt6::Test)
    corvane_target_warnings(${ARG_NAME})
    add_test(NAME ${ARG_NAME} COMMAND ${ARG_NAME})
    set(environment "QT_QPA_PLATFORM=offscreen"
        "XDG_RUNTIME_DIR=${CMAKE_BINARY_DIR}/runtime/${ARG_NAME}"
        "CORVANE_BIN_DIR=${CMAKE_BINARY_DIR}")
    if(CMAKE_CROSSCOMPILING)
        # One wine prefix per build tree: its registry and C: drive are the suites' own.
        list(APPEND environment "WINEPREFIX=${CORVANE_WINE_PREFIX}")
        set_tests_properties(${ARG_NAME} PROPERTIES FIXTURES_REQUIRED wine_prefix)
    endif()
    set_tests_properties(${ARG_NAME} PROPERTIES
        TIMEOUT ${ARG_TIMEOUT}
        LABELS "${ARG_LABELS}"
        ENVIRONMENT "${environment}")
    # A folder of its own: the monitor's single-instance lock lives there, and suites that
    # start the monitor run side by side.
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/runtime/${ARG_NAME})
    file(CHMOD ${CMAKE_BINARY_DIR}/runtime/${ARG_NAME}
         DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endfunction()

set(CORVANE_WINE_PREFIX ${CMAKE_BINARY_DIR}/wine)

# The suites that run under wine: no pseudo-terminal, no POSIX process, no widgets (the
# widget suites draw the same on every platform and cost the most to link).
set(CORVANE_WINE_SUITES
    tst_protocol
    tst_stats tst_capability tst_controlchart
    tst_monitor
    tst_conventions tst_socketport tst_spcdatabase
    tst_sampling
    tst_configurationset tst_startup
    tst_decode tst_spctool
    tst_windowsplatform)

file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/runtime)
file(CHMOD ${CMAKE_BINARY_DIR}/runtime DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
