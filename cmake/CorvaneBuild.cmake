# Build rules shared by every target of the project: warnings, sanitizers and the
# rule that logic libraries stay free of QtWidgets.

if(CORVANE_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer
                        -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=address,undefined)
endif()

# Warnings are errors on our own code; third-party headers come in as system headers.
function(corvane_target_warnings target)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /WX)
    else()
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror)
    endif()
endfunction()

# A static library of one layer.
function(corvane_add_library target)
    cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
    add_library(${target} STATIC ${ARG_SOURCES})
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    corvane_target_warnings(${target})
endfunction()

# Collects every library that a target links, directly or through others.
function(_corvane_collect_links target out)
    set(seen ${${out}})
    get_target_property(links ${target} LINK_LIBRARIES)
    get_target_property(iface ${target} INTERFACE_LINK_LIBRARIES)
    foreach(lib IN LISTS links iface)
        if(NOT lib OR lib IN_LIST seen OR lib MATCHES "^\\$<")
            continue()
        endif()
        list(APPEND seen ${lib})
        if(TARGET ${lib})
            _corvane_collect_links(${lib} seen)
        endif()
    endforeach()
    set(${out} ${seen} PARENT_SCOPE)
endfunction()

# Logic must run in a plain QCoreApplication. This check fails the build when a logic
# library links QtWidgets (at configure time) or one of its sources includes a
# widget header (at build time, rerun whenever a source changes).
set(_corvane_widget_check_targets "" CACHE INTERNAL "")
function(corvane_forbid_widgets target)
    set_property(CACHE _corvane_widget_check_targets PROPERTY VALUE
                 "${_corvane_widget_check_targets};${target}")
endfunction()

function(corvane_check_widget_free_targets)
    foreach(target IN LISTS _corvane_widget_check_targets)
        if(NOT target)
            continue()
        endif()
        set(links "")
        _corvane_collect_links(${target} links)
        foreach(lib IN LISTS links)
            if(lib MATCHES "Widgets")
                message(FATAL_ERROR "${target} is a logic library but links ${lib}")
            endif()
        endforeach()
        get_target_property(sources ${target} SOURCES)
        get_target_property(source_dir ${target} SOURCE_DIR)
        set(absolute "")
        foreach(s IN LISTS sources)
            if(NOT IS_ABSOLUTE ${s})
                set(s ${source_dir}/${s})
            endif()
            list(APPEND absolute ${s})
        endforeach()
        set(stamp ${CMAKE_BINARY_DIR}/widget-check/${target}.stamp)
        add_custom_command(OUTPUT ${stamp}
            COMMAND ${CMAKE_COMMAND} -DSTAMP=${stamp} -DTARGET=${target}
                    "-DSOURCES=${absolute}" -P ${PROJECT_SOURCE_DIR}/cmake/CheckNoWidgets.cmake
            DEPENDS ${absolute} ${PROJECT_SOURCE_DIR}/cmake/CheckNoWidgets.cmake
            COMMENT "Checking that ${target} includes no widget header"
            VERBATIM)
        add_custom_target(${target}_no_widgets ALL DEPENDS ${stamp})
        add_dependencies(${target} ${target}_no_widgets)
    endforeach()
endfunction()
