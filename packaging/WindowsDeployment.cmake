# The Windows installation folder as windeployqt lays it out: the programs beside the Qt
# and MinGW runtime DLLs they load, Qt's plugins in their folders (platforms,
# sqldrivers, imageformats, iconengines, styles, tls) beside them. The DLLs are found by
# reading the programs' and plugins' imports, so a new dependency comes along by itself.

get_filename_component(_corvane_qt_prefix "${Qt6_DIR}/../../.." ABSOLUTE)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-libgcc-file-name
                OUTPUT_VARIABLE _corvane_libgcc OUTPUT_STRIP_TRAILING_WHITESPACE)
get_filename_component(_corvane_gcc_dir "${_corvane_libgcc}" DIRECTORY)
set(CORVANE_RUNTIME_DLL_DIRS
    "${_corvane_qt_prefix}/bin"
    "${_corvane_gcc_dir}"
    "/usr/x86_64-w64-mingw32/lib")

set(_corvane_plugins "")
foreach(plugin IN ITEMS platforms/qwindows sqldrivers/qsqlite imageformats/qgif
                        imageformats/qico imageformats/qjpeg imageformats/qsvg
                        iconengines/qsvgicon styles/qwindowsvistastyle tls/qschannelbackend
                        tls/qcertonlybackend)
    set(file "${_corvane_qt_prefix}/plugins/${plugin}.dll")
    if(EXISTS "${file}")
        get_filename_component(folder "${plugin}" DIRECTORY)
        install(FILES "${file}" DESTINATION "${CMAKE_INSTALL_BINDIR}/${folder}")
        list(APPEND _corvane_plugins "${file}")
    endif()
endforeach()

find_program(CORVANE_MINGW_OBJDUMP x86_64-w64-mingw32-objdump REQUIRED)
install(CODE "
    set(CMAKE_GET_RUNTIME_DEPENDENCIES_PLATFORM windows+pe)
    set(CMAKE_GET_RUNTIME_DEPENDENCIES_TOOL objdump)
    set(CMAKE_GET_RUNTIME_DEPENDENCIES_COMMAND \"${CORVANE_MINGW_OBJDUMP}\")
    file(GET_RUNTIME_DEPENDENCIES
        EXECUTABLES \"$<TARGET_FILE:corvane-monitor>\" \"$<TARGET_FILE:corvane-decode>\"
                    \"$<TARGET_FILE:corvane-spc>\"
        MODULES ${_corvane_plugins}
        DIRECTORIES ${CORVANE_RUNTIME_DLL_DIRS}
        PRE_EXCLUDE_REGEXES \"^api-ms-\" \"^ext-ms-\"
        RESOLVED_DEPENDENCIES_VAR dlls
        UNRESOLVED_DEPENDENCIES_VAR unresolved)
    # The scan looks DLL names up in lower case, which finds Qt6Core.dll on no Linux
    # file system; such names are matched here ignoring case. What is found nowhere is
    # the system's own (kernel32.dll and the like).
    foreach(name IN LISTS unresolved)
        foreach(folder IN ITEMS ${CORVANE_RUNTIME_DLL_DIRS})
            file(GLOB candidates \"\${folder}/*.dll\")
            foreach(candidate IN LISTS candidates)
                get_filename_component(file_name \"\${candidate}\" NAME)
                string(TOLOWER \"\${file_name}\" lower)
                if(lower STREQUAL name)
                    list(APPEND dlls \"\${candidate}\")
                endif()
            endforeach()
        endforeach()
    endforeach()
    list(REMOVE_DUPLICATES dlls)
    file(INSTALL \${dlls} DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
")
