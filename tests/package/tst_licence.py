#!/usr/bin/python3
# Copyright (C) 2026 The kivcamui authors
# SPDX-License-Identifier: BSD-3-Clause
"""The project's licence as it is shipped and as the sources carry it.

Reads data/debian/copyright with Debian's own parser (python3-debian), strictly: a
machine-readable copyright file whose every file is BSD-3-Clause, with the licence text of
LICENSE. Then checks that every source file of the project carries the SPDX line of that
licence near its top, as Qt's sources carry theirs.

    tst_licence.py SOURCE_FOLDER
"""

import os
import sys

SPDX = "SPDX-License-Identifier: BSD-3-Clause"
# Files that are code or build scripts, by ending or by name.
ENDINGS = (".cpp", ".h", ".qml", ".py", ".cmake", ".in")
NAMES = ("CMakeLists.txt",)
# Shell scripts without an ending.
SCRIPTS = ("scripts/bootstrap", "scripts/demo", "scripts/package", "scripts/test", ".ci/run")
# Where no source is, or where the files are data the programs read (seed inputs of the fuzzers,
# test data).
SKIPPED = ("build", ".git", "fuzz/corpus")
HEAD_LINES = 5


def words(text):
    return " ".join(text.split())


def check_copyright(root):
    import debian.copyright

    with open(os.path.join(root, "data/debian/copyright"), encoding="utf-8") as file:
        parsed = debian.copyright.Copyright(file, strict=True)
    problems = []
    if parsed.header.upstream_name != "kivcamui":
        problems.append("Upstream-Name is %r, not kivcamui" % parsed.header.upstream_name)
    paragraphs = list(parsed.all_files_paragraphs())
    if [p.files for p in paragraphs] != [("*",)]:
        problems.append("the Files paragraphs are %r, not one for *" % [p.files for p in paragraphs])
    for paragraph in paragraphs:
        if paragraph.license.synopsis != "BSD-3-Clause":
            problems.append("%r is under %r" % (paragraph.files, paragraph.license.synopsis))
    licences = {p.license.synopsis: p.license.text for p in parsed.all_license_paragraphs()}
    with open(os.path.join(root, "LICENSE"), encoding="utf-8") as file:
        licence = file.read()
    body = licence[licence.index("Redistribution"):]
    if words(licences.get("BSD-3-Clause", "")) != words(body):
        problems.append("its BSD-3-Clause text differs from LICENSE")
    return problems


def is_source(relative):
    name = os.path.basename(relative)
    return relative in SCRIPTS or name in NAMES or name.endswith(ENDINGS)


def unlicensed_sources(root):
    missing = []
    for folder, folders, files in os.walk(root):
        relative_folder = os.path.relpath(folder, root)
        folders[:] = sorted(f for f in folders
                            if not os.path.normpath(os.path.join(relative_folder, f))
                            .startswith(SKIPPED))
        for name in sorted(files):
            relative = os.path.normpath(os.path.join(relative_folder, name))
            if not is_source(relative):
                continue
            with open(os.path.join(root, relative), encoding="utf-8", errors="replace") as file:
                head = [file.readline() for _ in range(HEAD_LINES)]
            if not any(SPDX in line for line in head):
                missing.append(relative)
    return missing


def main():
    root = sys.argv[1]
    problems = ["data/debian/copyright: " + p for p in check_copyright(root)]
    problems += ["%s: no \"%s\" in its first %d lines" % (f, SPDX, HEAD_LINES)
                 for f in unlicensed_sources(root)]
    for problem in problems:
        print(problem)
    print("%d problems" % len(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
