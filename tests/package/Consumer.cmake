# Copyright (C) 2026 The kivcamui authors
# SPDX-License-Identifier: BSD-3-Clause

# What the package tests share: building the test's own host and plugin (each a CMake project of
# its own, in this folder) against an installed kivcamui, and running the host. Set before it is
# included: HERE (this folder), WORK (a scratch folder), GENERATOR, CXX, CXX_FLAGS (the
# sanitizers' flags in the sanitizer build, so that the host carries their run-time), LAUNCHER.

string(TIMESTAMP started %s)

# Says how long the test has taken so far, then what it does next.
function(step what)
    string(TIMESTAMP now %s)
    math(EXPR seconds "${now} - ${started}")
    message(STATUS "[${seconds} s] ${what}")
endfunction()

# run(<command...>): runs a command, and fails the test with its output when it fails.
function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output
        ERROR_VARIABLE output)
    if(result)
        list(JOIN ARGV " " command)
        message(FATAL_ERROR "${command}\nfailed (${result}):\n${output}")
    endif()
endfunction()

# build_project(<name> <prefix>): configures and builds the project <name> of this folder in
# WORK/<name> against the kivcamui installed in <prefix>, and nothing else.
function(build_project name prefix)
    step("building the ${name} against ${prefix}")
    set(options -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF
        -DCMAKE_CXX_COMPILER=${CXX} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}")
    if(LAUNCHER)
        list(APPEND options -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER})
    endif()
    run(${CMAKE_COMMAND} -S ${HERE}/${name} -B ${WORK}/${name} ${options})
    run(${CMAKE_COMMAND} --build ${WORK}/${name})
endfunction()

# run_host(<library> <panels...>): runs the host over the test's world and checks its report:
# that it runs with <library>, and the panel line of each camera, in order.
function(run_host library)
    step("running the host")
    execute_process(
        COMMAND ${CMAKE_COMMAND} -E env --unset=KIVCAMUI_WHITELIST --unset=KIVCAMUI_BLACKLIST
            KIVCAM_EMULATOR_WORLD=${HERE}/data/package-world.xml ${WORK}/host/package-host
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors TIMEOUT 120)
    set(expected "library ${library}\ncameras 2\n")
    foreach(panel IN LISTS ARGN)
        string(APPEND expected "panel ${panel}\n")
    endforeach()
    string(APPEND expected "done\n")
    if(result OR NOT output STREQUAL expected)
        message(FATAL_ERROR "The host said:\n${output}\ninstead of:\n${expected}\n"
            "(exit: ${result}); its messages:\n${errors}")
    endif()
    message(STATUS "The host said:\n${output}")
endfunction()
