# Copyright (C) 2026 The kivcamui authors
# SPDX-License-Identifier: BSD-3-Clause

# cmake -DBUILD=<build folder> -DLIBDIR=<its library folder, relative> ... -P InstallTest.cmake
# (see Consumer.cmake for the rest)
#
# Installs the build into a prefix and moves the installed tree elsewhere, then builds against it
# a host and a controller UI plugin of their own, the plugin installed where the package says.
# The host runs on the installed library, which finds both its plugin and the sample plugin
# beside it: the first camera's panel comes from the test's plugin, the second's from the sample.
# Last, each library's pkg-config file is valid and a program builds with what it says.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/Consumer.cmake)

file(REMOVE_RECURSE ${WORK})
step("installing ${BUILD}")
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/installed)
# Relocatable: nothing in the tree may remember where it was installed.
file(RENAME ${WORK}/installed ${WORK}/prefix)
set(prefix ${WORK}/prefix)

build_project(plugin ${prefix})
# Staged, so that a wrong plugin folder shows here and never writes outside the test's folder.
run(${CMAKE_COMMAND} -E env DESTDIR=${WORK}/staged ${CMAKE_COMMAND} --install ${WORK}/plugin)
set(plugin ${prefix}/${LIBDIR}/libkivcamuiAcme.so)
if(NOT EXISTS ${WORK}/staged${plugin})
    file(GLOB_RECURSE staged RELATIVE ${WORK}/staged ${WORK}/staged/*)
    message(FATAL_ERROR "The plugin was not installed beside libkivcamui.so but as ${staged}")
endif()
file(COPY ${WORK}/staged${plugin} DESTINATION ${prefix}/${LIBDIR})

build_project(host ${prefix})
run_host(${prefix}/${LIBDIR}/libkivcamui.so.1.0.0
    "Acme_camera qrc:/kivcamuiAcme/AcmePanel.qml controller Acme"
    "Plain_camera qrc:/kivcamuiEmulator/EmulatorPanel.qml")

step("checking the pkg-config files")
set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
foreach(library kiv kivcam kivreduce kivui kivcamui)
    run(pkg-config --validate ${library})
endforeach()
execute_process(COMMAND pkg-config --cflags --libs kivcamui OUTPUT_VARIABLE flags
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
separate_arguments(extra UNIX_COMMAND "${CXX_FLAGS}")
file(WRITE ${WORK}/pkg-config/host.cpp
    "#include <kivcamui/plugin/InitPlugin.h>\nint main()\n{\n    kivcamuiInitPlugin();\n}\n")
# Qt wants position-independent code of its users; its pkg-config files leave that to them.
run(${CXX} -std=c++20 -fPIC ${extra} ${WORK}/pkg-config/host.cpp ${flags}
    -o ${WORK}/pkg-config/host)
step("done")
