# corvane_add_test(NAME <suite> SOURCES <files> LIBRARIES <libs> [LABELS <labels>]
#                  [TIMEOUT <seconds>])
# Builds one Qt Test suite and registers it with CTest. Every suite runs on the
# offscreen platform with a private runtime folder; slow suites carry the label "slow"
# so that `ctest -LE slow` skips them.
function(corvane_add_test)
    cmake_parse_arguments(ARG "" "NAME;TIMEOUT" "SOURCES;LIBRARIES;LABELS" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    add_executable(${ARG_NAME} ${ARG_SOURCES})
    target_link_libraries(${ARG_NAME} PRIVATE ${ARG_LIBRARIES} corvane_testsupport Qt6::Test)
    corvane_target_warnings(${ARG_NAME})
    add_test(NAME ${ARG_NAME} COMMAND ${ARG_NAME})
    set_tests_properties(${ARG_NAME} PROPERTIES
        TIMEOUT ${ARG_TIMEOUT}
        LABELS "${ARG_LABELS}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;XDG_RUNTIME_DIR=${CMAKE_BINARY_DIR}/runtime/${ARG_NAME};CORVANE_BIN_DIR=${CMAKE_BINARY_DIR}")
    # A folder of its own: the monitor's single-instance lock lives there, and suites that
    # start the monitor run side by side.
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/runtime/${ARG_NAME})
    file(CHMOD ${CMAKE_BINARY_DIR}/runtime/${ARG_NAME}
         DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endfunction()

file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/runtime)
file(CHMOD ${CMAKE_BINARY_DIR}/runtime DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
