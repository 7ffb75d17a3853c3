# Copyright (C) 2026 The kivcamui authors
# SPDX-License-Identifier: BSD-3-Clause

# What the install adds beyond each library's own rules (KivcamuiLibrary.cmake): the CMake
# package, the documentation, and the Debian package made from it all by CPack.
include(CMakePackageConfigHelpers)

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kivcamui)
install(EXPORT kivcamuiTargets NAMESPACE kivcamui:: DESTINATION ${config_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/kivcamuiConfig.cmake.in
    ${CMAKE_BINARY_DIR}/cmake/kivcamuiConfig.cmake
    INSTALL_DESTINATION ${config_dir}
    PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/cmake/kivcamuiConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/cmake/kivcamuiConfig.cmake
    ${CMAKE_BINARY_DIR}/cmake/kivcamuiConfigVersion.cmake
    DESTINATION ${config_dir})

# The udev rule that lets the local user open USB3 Vision cameras, where udev reads the rules of
# packages (under /usr, not the library folder). An install elsewhere does not reach udev: the
# README says what to do then.
install(FILES ${PROJECT_SOURCE_DIR}/data/udev/70-kivcamui-usb3-vision.rules
    DESTINATION lib/udev/rules.d)

# The licence, and Debian's machine-readable copyright file where Debian looks for it.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/data/debian/copyright
    DESTINATION ${CMAKE_INSTALL_DOCDIR})

# As in the source tree, so that the README's links hold.
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR})

# One Debian package with everything a host needs to build and run: cpack -G DEB (see
# scripts/package). The shared library dependencies are computed by dpkg-shlibdeps; the QML
# modules that the library's components import are loaded at run time, so they are named here.
set(CPACK_PACKAGE_NAME kivcamui)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_VENDOR "kivcamui")
set(CPACK_PACKAGE_CONTACT "kivcamui developers <kivcamui@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "QML extension library for camera discovery and control")
set(CPACK_PACKAGE_DESCRIPTION "kivcamui takes a Qt Quick application from finding cameras to
a connected camera whose controller panel is showing: discovery of cameras and devices,
editable camera descriptions, custom camera assembly, connection with controller panels from
plugins, and editors of the sensor and display windows. With its companion libraries, the
sample controller plugin, the kivcam-list tool, the headers, and the CMake and pkg-config files.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# A shlibs file for packages built against this one, and the ldconfig trigger.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qml6-module-qtqml, qml6-module-qtquick, \
qml6-module-qtquick-controls, qml6-module-qtquick-layouts, qml6-module-qtquick-templates, \
qml6-module-qtquick-window")
# Building a host against the package needs Qt's own development files.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "qt6-base-dev, qt6-declarative-dev, fonts-font-awesome")
include(CPack)
