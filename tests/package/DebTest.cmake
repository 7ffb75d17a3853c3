# Copyright (C) 2026 The kivcamui authors
# SPDX-License-Identifier: BSD-3-Clause

# cmake -DBUILD=<build folder> -DLIBDIR=... -DINCLUDEDIR=... -DBINDIR=... -DDOCDIR=...
#       -DCONFIG=... -DCONTENTS=<expected file list> ... -P DebTest.cmake
#       (see Consumer.cmake for the rest)
#
# Makes the Debian package of the build with CPack and checks it: its control fields and
# computed dependencies, and, extracted into a scratch root, its files against the expected list
# (where @LIBDIR@, @INCLUDEDIR@, @BINDIR@ and @DOCDIR@ stand for the build's folders, @CONFIG@
# for its build type). Then the test's host is built against the extracted tree and runs on it,
# with the sample plugin of the package serving both cameras.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/Consumer.cmake)

file(REMOVE_RECURSE ${WORK})
step("making the Debian package")
run(cpack -G DEB --config ${BUILD}/CPackConfig.cmake -B ${WORK}/deb)
file(GLOB debs ${WORK}/deb/kivcamui_*.deb)
list(LENGTH debs count)
if(NOT count EQUAL 1)
    message(FATAL_ERROR "cpack made no kivcamui_*.deb, or more than one: ${debs}")
endif()

step("checking its control fields")
execute_process(COMMAND dpkg-deb --field ${debs} Package Version Depends OUTPUT_VARIABLE fields
    COMMAND_ERROR_IS_FATAL ANY)
message(STATUS "${fields}")
foreach(expected "Package: kivcamui\n" "Version: 1.0.0\n"
        # computed from the libraries by dpkg-shlibdeps
        "libqt6core6" "libqt6quick6" "libpugixml1v5" "libaravis-0.8-0"
        # loaded at run time, so named by the package
        "qml6-module-qtquick-controls")
    string(FIND "${fields}" "${expected}" at)
    if(at EQUAL -1)
        message(FATAL_ERROR "The package's fields lack \"${expected}\"")
    endif()
endforeach()

step("checking its files")
run(dpkg --extract ${debs} ${WORK}/root)
file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE ${WORK}/root ${WORK}/root/*)
list(SORT files)
file(STRINGS ${CONTENTS} lines)
set(expected "")
foreach(line IN LISTS lines)
    if(line MATCHES "^#" OR line STREQUAL "")
        continue()
    endif()
    string(REPLACE "@LIBDIR@" ${LIBDIR} line ${line})
    string(REPLACE "@INCLUDEDIR@" ${INCLUDEDIR} line ${line})
    string(REPLACE "@BINDIR@" ${BINDIR} line ${line})
    string(REPLACE "@DOCDIR@" ${DOCDIR} line ${line})
    string(REPLACE "@CONFIG@" ${CONFIG} line ${line})
    list(APPEND expected usr/${line})
endforeach()
list(SORT expected)
set(missing ${expected})
list(REMOVE_ITEM missing ${files})
set(unexpected ${files})
list(REMOVE_ITEM unexpected ${expected})
if(missing OR unexpected)
    list(JOIN missing "\n  " missing)
    list(JOIN unexpected "\n  " unexpected)
    message(FATAL_ERROR "The package's files are not the expected ones (${CONTENTS}).\n"
        "Missing:\n  ${missing}\nUnexpected:\n  ${unexpected}")
endif()
list(LENGTH files count)
message(STATUS "${count} files, as expected")

build_project(host ${WORK}/root/usr)
run_host(${WORK}/root/usr/${LIBDIR}/libkivcamui.so.1.0.0
    "Acme_camera qrc:/kivcamuiEmulator/EmulatorPanel.qml"
    "Plain_camera qrc:/kivcamuiEmulator/EmulatorPanel.qml")
step("done")
