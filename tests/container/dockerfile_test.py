#!/usr/bin/env python3
"""Holds the Dockerfile to what the rest of the project says, without building it.

usage: dockerfile_test.py SOURCE_DIRECTORY COMMAND
"""

import pathlib
import re
import subprocess
import sys


def require(holds, what):
    if not holds:
        sys.exit(f"does not hold: {what}")


def instructions(text):
    """Instructions with their arguments, continued lines joined, comments left out."""
    lines = [line for line in text.splitlines() if not line.lstrip().startswith("#")]
    joined = re.sub(r"\s*\\\n\s*", " ", "\n".join(lines))
    return [line.split(None, 1) for line in joined.splitlines() if line.strip()]


def stages(steps):
    """The instructions of each FROM to the next."""
    found = []
    for word, arguments in steps:
        if word == "FROM":
            found.append([])
        if found:
            found[-1].append((word, arguments))
    return found


def installed(stage):
    """Packages that a stage installs, in their order."""
    packages = []
    for word, arguments in stage:
        if word == "RUN":
            for command in re.split(r"\s*&&\s*", arguments):
                if command.startswith("apt-get install "):
                    packages += [w for w in command.split()[2:] if not w.startswith("-")]
    return packages


def build_packages(source):
    text = (source / "scripts/common.sh").read_text()
    return re.search(r'^build_packages="([^"]*)"', text, re.MULTILINE).group(1).split()


def check_packages(build, final, source, command):
    compiled_with = installed(build)
    require(compiled_with == sorted(compiled_with), "packages stand in order")
    require(set(compiled_with) | {"gnuplot-nox"} == set(build_packages(source)),
            f"the build installs what the scripts do: {compiled_with}")
    runs_with = installed(final)
    require(runs_with == sorted(runs_with), "packages stand in order")
    require("gnuplot-nox" in runs_with, "the figure can be drawn")
    # The libraries of the command, as dpkg knows them on this machine, but for those that any Debian has.
    needed = re.findall(r"=> (/\S+)", subprocess.run(
        ["ldd", command], capture_output=True, text=True, check=True).stdout)
    for library in ("libglog", "libgomp", "libz"):
        (path,) = [p for p in needed if pathlib.Path(p).name.startswith(library + ".")]
        owner = subprocess.run(["dpkg", "-S", f"*/{pathlib.Path(path).name}"], capture_output=True,
                               text=True, check=True).stdout.split(":")[0]
        require(owner in runs_with, f"{owner}, which holds {path}, is installed")


def check_manners(steps, build, final):
    for word, arguments in steps:
        if word == "RUN" and "apt-get" in arguments:
            require("apt-get update &&" in arguments, "package lists are read in the same step")
            require("--yes --no-install-recommends" in arguments, "no more than is named is installed")
            require("rm -rf /var/lib/apt/lists/*" in arguments, "no package lists are left")
        require(word != "ADD", "files are copied")
    require({a.split()[0] for stage in (build, final) for w, a in stage[:1]} == {"${BASE}"},
            "both stages stand on the same Debian")
    (base,) = [a for w, a in steps if w == "ARG"]
    require(re.fullmatch(r"BASE=\S*debian:12-slim", base), "which is Debian 12")
    words = [word for word, _ in final]
    users = [arguments for word, arguments in final if word == "USER"]
    require(users and users[-1] not in ("root", "0"), "it does not run as root")
    require(words.index("USER") > max(i for i, word in enumerate(words) if word in ("RUN", "COPY")),
            "what it holds is root's")
    require(final[-1] == ("ENTRYPOINT", '["ovik-tsne"]'), "it is the command")


def main():
    source, command = pathlib.Path(sys.argv[1]), sys.argv[2]
    steps = instructions((source / "Dockerfile").read_text())
    found = stages(steps)
    require(len(found) == 2, "one stage builds, the other one runs")
    check_packages(*found, source, command)
    check_manners(steps, *found)
    ignored = (source / ".dockerignore").read_text().split("\n")
    require({"build", ".git", "out", "dist"} <= set(ignored), "what is built here stays here")


main()
