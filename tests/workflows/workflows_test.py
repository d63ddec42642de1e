#!/usr/bin/env python3
"""Runs what the descriptions in workflows/ tell a workflow manager to run, and holds it to what they
say of it: files that come out, options, the assertions of their own tests.

usage: workflows_test.py COMMAND SOURCE_DIRECTORY
"""

import fnmatch
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import textwrap
import xml.etree.ElementTree

import yaml


def require(holds, what):
    if not holds:
        sys.exit(f"does not hold: {what}")


def run(shell, script, directory, command):
    """Runs a script in which `ovik-tsne` is the command."""
    programs = pathlib.Path(directory) / "programs"
    programs.mkdir()
    (programs / "ovik-tsne").symlink_to(command)
    done = subprocess.run([shell, "-uec", script], cwd=directory, capture_output=True, text=True,
                          env=dict(os.environ, PATH=f"{programs}:{os.environ['PATH']}"))
    require(done.returncode == 0, f"{script}\nruns: {done.stdout}{done.stderr}")


def require_options(text, command, where):
    known = subprocess.run([command, "--help"], capture_output=True, text=True, check=True).stdout
    known = set(re.findall(r"--[a-z][a-z-]*", known))
    used = set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", text))
    require(used and used <= known, f"options of {where} are the command's: {sorted(used - known)}")


class GalaxyTool:
    """The parts of a wrapper that decide what runs."""

    def __init__(self, path):
        self.root = xml.etree.ElementTree.parse(path).getroot()
        self.command = self.root.findtext("command")
        self.parameters = {}
        for parameter in self.root.iterfind("inputs/param"):
            name = parameter.get("name") or parameter.get("argument").lstrip("-").replace("-", "_")
            self.parameters[name] = parameter

    def preset(self, name):
        """What a parameter stands for in the command if the user leaves it as it is."""
        parameter = self.parameters[name]
        kind = parameter.get("type")
        if kind == "select":
            return parameter.find("option").get("value")
        if kind == "boolean":
            checked = parameter.get("checked", "false") == "true"
            return parameter.get("truevalue" if checked else "falsevalue")
        return parameter.get("value", "")

    def script(self, given):
        """The command for these values, and presets for the others."""
        values = {name: given.get(name, self.preset(name)) for name in self.parameters}
        kept = []
        is_left_out = False
        for line in self.command.splitlines():
            condition = re.fullmatch(r"\s*#if \$(\w+)\s*", line)
            if condition:
                is_left_out = not values[condition.group(1)]
            elif line.strip() == "#end if":
                is_left_out = False
            elif not is_left_out:
                kept.append(line.strip())
        text = re.sub(r"(?<!\\)\$(\w+)", lambda name: values[name.group(1)], " ".join(kept))
        return text.replace("\\$", "$")


def check_assertion(assertion, path):
    text = path.read_text()
    lines = text.splitlines()
    if assertion.tag == "has_n_lines":
        require(len(lines) == int(assertion.get("n")), f"{path.name} has {len(lines)} lines")
    elif assertion.tag == "has_n_columns":
        columns = {len(line.split("\t")) for line in lines}
        require(columns == {int(assertion.get("n"))}, f"{path.name} has {columns} columns")
    elif assertion.tag == "has_text":
        require(assertion.get("text") in text, f"{path.name} has {assertion.get('text')}")
    elif assertion.tag == "has_line_matching":
        require(any(re.fullmatch(assertion.get("expression"), line) for line in lines),
                f"{path.name} has a line {assertion.get('expression')}")
    else:
        sys.exit(f"unknown assertion: {assertion.tag}")


def check_galaxy(command, folder, version):
    tool = GalaxyTool(folder / "ovik_tsne.xml")
    require(tool.root.get("version").startswith(version + "+galaxy"), "the wrapper has the version")
    require(tool.root.findtext("requirements/container") == f"ovik-tsne:{version}", "so has its image")
    arguments = " ".join(p.get("argument", "") for p in tool.parameters.values())
    require_options(tool.command + " " + arguments, command, "the Galaxy wrapper")
    used = set(re.findall(r"(?<!\\)\$(\w+)", tool.command))
    require(used == set(tool.parameters), f"parameters are used: {used ^ set(tool.parameters)}")
    outputs = {data.get("name"): data.get("from_work_dir") for data in tool.root.iterfind("outputs/data")}
    tests = tool.root.findall("tests/test")
    require(tests, "the wrapper has a test")
    matrix = str(folder / "test-data/rows.tsv")
    every_option = {"title": "Genes & more", "quality": "--quality", "names": "standard"}
    for test in tests:
        given = {param.get("name"): param.get("value") for param in test.iterfind("param")}
        given["matrix"] = str(folder / "test-data" / given["matrix"])
        require(int(test.get("expect_num_outputs")) == len(outputs), "the test counts the outputs")
        with tempfile.TemporaryDirectory() as directory:
            run("sh", tool.script(given), directory, command)
            for name, file in outputs.items():
                path = pathlib.Path(directory) / file
                require(path.stat().st_size > 0, f"{file} comes out")
                for assertion in test.iterfind(f"output[@name='{name}']/assert_contents/*"):
                    check_assertion(assertion, path)
    with tempfile.TemporaryDirectory() as directory:
        labels = pathlib.Path(directory) / "labels"
        labels.write_text("a\nb\n" * 20)
        given = dict(every_option, matrix=matrix, labels=str(labels), perplexity="5.0", max_iter="20")
        run("sh", tool.script(given), directory, command)
        require("trustworthiness" in (pathlib.Path(directory) / "report.json").read_text(),
                "the measures are in the report")


class Module:
    """A process of the form that nf-core's modules have."""

    def __init__(self, path):
        self.text = path.read_text()

    def scripts(self):
        """The script of the process and that of its stub."""
        return re.findall(r'"""\n(.*?)"""', self.text, re.DOTALL)

    def outputs(self):
        """The name of each output, its pattern, and whether it may be missing."""
        return re.findall(r'path\(? ?"([^"]+)"\)?\s*, emit: (\w+)\s*(, optional: true)?', self.text)

    def filled(self, script, values):
        """A script as the shell gets it: without its indentation, values in their places."""
        script = textwrap.dedent(script).replace("\\\\", "\\")
        script = re.sub(r"(?<!\\)\$\{([\w.]+)\}", lambda name: values[name.group(1)], script)
        return script.replace("\\$", "$")


def check_nf_core(command, folder, matrix, version):
    module = Module(folder / "main.nf")
    require(f'container "ovik-tsne:{version}"' in module.text, "the module has the version")
    scripts = module.scripts()
    require(len(scripts) == 2, "there are a script and a stub")
    require_options(scripts[0].split("cat <<")[0], command, "the nf-core module")
    described = yaml.safe_load((folder / "meta.yml").read_text())
    names = [name for _, name, _ in module.outputs()]
    require(names and names == [list(output)[0] for output in described["output"]],
            f"the outputs are described: {names}")
    (inputs,) = described["input"]
    inputs = [list(entry)[0] for entry in inputs]
    require("tuple val(meta), path(matrix), path(labels)" in module.text
            and inputs == ["meta", "matrix", "labels"], f"the inputs are described: {inputs}")
    for script, arguments in zip(scripts, ("--max-iter 20 --perplexity 5 --coordinates tsv", "")):
        with tempfile.TemporaryDirectory() as directory:
            values = {"matrix": matrix, "prefix": "yeast", "task.cpus": "2", "task.process": "OVIK_TSNE",
                      "colours": "", "args": arguments}
            run("bash", module.filled(script, values), directory, command)
            left = os.listdir(directory)
            for pattern, name, optional in module.outputs():
                found = fnmatch.filter(left, pattern.replace("${prefix}", "yeast"))
                require(len(found) == 1 or (optional and not arguments), f"{name} comes out: {found}")
            versions = yaml.safe_load((pathlib.Path(directory) / "versions.yml").read_text())
            require(versions == {"OVIK_TSNE": {"ovik-tsne": version}}, f"versions are told: {versions}")


def main():
    command, source = str(pathlib.Path(sys.argv[1]).resolve()), pathlib.Path(sys.argv[2]).resolve()
    version = re.search(r"project\(ovik VERSION ([\d.]+)", (source / "CMakeLists.txt").read_text()).group(1)
    galaxy = source / "workflows/galaxy"
    check_galaxy(command, galaxy, version)
    check_nf_core(command, source / "workflows/nf-core/ovik/tsne", str(galaxy / "test-data/rows.tsv"), version)


main()
