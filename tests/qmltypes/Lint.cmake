# Copyright (C) 2026 The kivcamui authors
# SPDX-License-Identifier: BSD-3-Clause

# cmake -DTOOL=<qml-types> -DQMLLINT=<qmllint> -DSOURCE=<source folder> -DWORK=<scratch folder>
#       -DRESOURCES=<resource files> -DFILES=<QML files, relative to SOURCE> -P Lint.cmake
#
# Lints the QML files with the type information of the modules that the library and its plugins
# register at run time (written by qml-types), and fails on any warning.
#
# qmllint of Qt 6.4 finds the files of a resource file by their resource path (":/kivcamui/...")
# but does not read a qrc URL ("qrc:/kivcamui/...") in an import as one. So the files are linted
# as copies, under the same relative names, whose imports name resource paths; nothing else in
# them differs.
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE ${WORK})
execute_process(COMMAND ${TOOL} --qmltypes ${WORK}/qml RESULT_VARIABLE result)
if(result)
    message(FATAL_ERROR "qml-types could not write the type information")
endif()

foreach(file IN LISTS FILES)
    file(READ ${SOURCE}/${file} text)
    string(REGEX REPLACE "\n(import +\")qrc:/" "\n\\1:/" text "${text}")
    file(WRITE ${WORK}/src/${file} "${text}")
endforeach()

set(resources "")
foreach(resource IN LISTS RESOURCES)
    list(APPEND resources --resource ${resource})
endforeach()
execute_process(COMMAND ${QMLLINT} -I ${WORK}/qml ${resources} ${FILES}
    WORKING_DIRECTORY ${WORK}/src RESULT_VARIABLE result)
if(result)
    message(FATAL_ERROR "qmllint has warnings (above); fix them, or where a warning is wrong, "
        "silence exactly that one with a qmllint directive and a comment saying why")
endif()
list(LENGTH FILES count)
message(STATUS "${count} QML files pass qmllint")
