#!/usr/bin/env python3
"""Compiles every public header by itself, with warnings as errors.

usage: headers_alone.py COMPILER INCLUDE_DIR PROJECT

INCLUDE_DIR has the headers as programs include them.
"""
import pathlib
import subprocess
import sys

import public_interface

compiler, include_dir, project = sys.argv[1:]
headers = public_interface.public_headers(pathlib.Path(project))
if not headers:
    sys.exit("no header is public")
broken = []
for header in headers:
    result = subprocess.run(
        [compiler, "-std=c++20", "-fopenmp", "-Wall", "-Wextra", "-Wpedantic", "-Werror",
         "-fsyntax-only", "-I", include_dir, "-x", "c++", "-"],
        input=f"#include <ovik/{header}>\n", capture_output=True, text=True, check=False)
    if result.returncode != 0:
        broken.append(f"{header}:\n{result.stderr}")
sys.exit("\n".join(broken) if broken else 0)
