# Toolchain for the Windows x86_64 build: MinGW-w64 g++ with the cross-built Qt SDK, and
# wine as the emulator that runs the suites. The SDK is unpacked once into a cache folder
# outside the source tree and reused from there:
#   CORVANE_QT_MINGW  an unpacked SDK folder, or the SDK tarball to unpack
#   otherwise         ../shared/windows/qt6.4.2-mingw-w64-x86_64.tar.xz beside the checkout
# The unpacked SDK lives in ${XDG_CACHE_HOME:-~/.cache}/corvane/qt6-mingw.

set(_corvane_sdk_archive_name qt6.4.2-mingw-w64-x86_64.tar.xz)

if(DEFINED ENV{XDG_CACHE_HOME} AND NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
    set(_corvane_cache "$ENV{XDG_CACHE_HOME}/corvane")
else()
    set(_corvane_cache "$ENV{HOME}/.cache/corvane")
endif()

set(_corvane_given "$ENV{CORVANE_QT_MINGW}")
if(_corvane_given AND IS_DIRECTORY "${_corvane_given}")
    set(CORVANE_QT_MINGW_PREFIX "${_corvane_given}")
else()
    set(CORVANE_QT_MINGW_PREFIX "${_corvane_cache}/qt6-mingw")
    if(_corvane_given)
        set(_corvane_archive "${_corvane_given}")
    else()
        get_filename_component(_corvane_archive
            "${CMAKE_CURRENT_LIST_DIR}/../../../shared/windows/${_corvane_sdk_archive_name}"
            ABSOLUTE)
    endif()
    if(NOT EXISTS "${CORVANE_QT_MINGW_PREFIX}/lib/cmake/Qt6/qt.toolchain.cmake")
        if(NOT EXISTS "${_corvane_archive}")
            message(FATAL_ERROR "No Qt SDK for MinGW: neither ${CORVANE_QT_MINGW_PREFIX} nor "
                                "${_corvane_archive}. Set CORVANE_QT_MINGW, or build one with "
                                "scripts/windows/build-qt-sdk.sh.")
        endif()
        message(STATUS "Unpacking ${_corvane_archive} into ${_corvane_cache}")
        file(MAKE_DIRECTORY "${_corvane_cache}")
        file(ARCHIVE_EXTRACT INPUT "${_corvane_archive}" DESTINATION "${_corvane_cache}")
    endif()
endif()

set(QT_CHAINLOAD_TOOLCHAIN_FILE "${CORVANE_QT_MINGW_PREFIX}/lib/cmake/mingw-w64-x86_64.cmake")
include("${CORVANE_QT_MINGW_PREFIX}/lib/cmake/Qt6/qt.toolchain.cmake")

# The SDK's wrapper puts Qt's DLLs and the MinGW runtime on wine's DLL path and passes the
# QT_* variables on, which wine drops otherwise.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CORVANE_QT_MINGW_PREFIX}/bin/wine-run.sh"
    CACHE FILEPATH "Runs a Windows executable of the build" FORCE)
