# Copyright (C) 2026 The kivcamui authors
# SPDX-License-Identifier: BSD-3-Clause

# kivcamui_library(<target> DESCRIPTION <text> HEADERS <headers...> [REQUIRES <pkg-config modules...>])
#
# Makes a shared library of this project (added before with add_library) an installed one: its
# export header (build/include/<target>/<target>_export.h), its version and SONAME, its public
# headers (installed under <includedir>/<target>/ as the source tree has them; every other header
# of its folder stays private), its place in the CMake package as kivcamui::<target>, and a
# pkg-config file <target>.pc that requires the given modules.
function(kivcamui_library target)
    cmake_parse_arguments(ARG "" "DESCRIPTION" "HEADERS;REQUIRES" ${ARGN})
    set(export_header ${CMAKE_BINARY_DIR}/include/${target}/${target}_export.h)
    generate_export_header(${target} EXPORT_FILE_NAME ${export_header})
    # The base folders are the include folders in the build tree; installed, the headers keep
    # their paths relative to them. Two sets, as the build folder may lie in the source tree.
    target_sources(${target}
        PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARG_HEADERS}
        PUBLIC FILE_SET export_header TYPE HEADERS BASE_DIRS ${CMAKE_BINARY_DIR}/include
        FILES ${export_header})
    set_target_properties(${target} PROPERTIES
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    # The headers are C++20.
    target_compile_features(${target} PUBLIC cxx_std_20)
    install(TARGETS ${target} EXPORT kivcamuiTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILE_SET export_header DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

    # The prefix is found from the file's own place, so that an installed tree can be moved.
    file(RELATIVE_PATH to_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
    string(REGEX REPLACE "/$" "" to_prefix ${to_prefix})
    set(PKG_NAME ${target})
    set(PKG_DESCRIPTION ${ARG_DESCRIPTION})
    list(JOIN ARG_REQUIRES " " PKG_REQUIRES)
    set(PKG_PREFIX "\${pcfiledir}/${to_prefix}")
    configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in
        ${CMAKE_BINARY_DIR}/pkgconfig/${target}.pc @ONLY)
    install(FILES ${CMAKE_BINARY_DIR}/pkgconfig/${target}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
