"""What is public: the headers in cmake/public_headers.txt, and the names marked OVIK_API in them."""
import re

ROOMS = ("annotation", "input", "neighbours", "plots", "results", "stats", "util")


def public_headers(project):
    """The headers that programs may include, as paths below the project's root."""
    lines = (project / "cmake/public_headers.txt").read_text(encoding="utf-8").splitlines()
    return [line for line in lines if line and not line.startswith("#")]


def other_headers(project):
    """The headers of the rooms that programs may not include."""
    found = {
        path.relative_to(project).as_posix() for room in ROOMS for path in (project / room).rglob("*.h")
    }
    return sorted(found - set(public_headers(project)))


def included_headers(text):
    """What a header includes of this project."""
    return re.findall(r'^\s*#\s*include\s+"([^"]+)"', text, re.MULTILINE)


def without_comments(text):
    """The text without comments, preprocessor lines, and what stands in strings."""
    text = re.sub(r'"(\\.|[^"\\\n])*"|\'(\\.|[^\'\\\n])+\'|//[^\n]*|/\*.*?\*/',
                  lambda match: '""' if match[0][0] in "\"'" else " ", text, flags=re.DOTALL)
    return re.sub(r"^\s*#(\\\n|[^\n])*", "", text, flags=re.MULTILINE)


def scope_name(opening):
    """The name of the namespace or type that a brace opens; None for other braces."""
    match = re.search(r"\bnamespace\s+([\w:]+)\s*$", opening)
    if match:
        return match[1]
    match = re.search(r"\b(?:class|struct)\s+(?:OVIK_API\s+)?(\w+)\s*(?:final\s*)?(?::[^:].*)?$",
                      opening, re.DOTALL)
    return match[1] if match else None


def declared_name(declaration):
    """The name that a declaration gives to what stands behind its mark OVIK_API."""
    behind = declaration.split("OVIK_API", 1)[1]
    match = re.match(r"\s*(\w+)\s*(?:final\s*)?(?::[^:]|$)", behind)
    if match and re.search(r"\b(?:class|struct)\s+OVIK_API", declaration):
        return match[1]
    match = re.search(r"(operator\s*[^\s\w(]+|~?\w+)\s*\(", behind)
    if match:
        return match[1]
    return re.search(r"(\w+)\s*(?:=|$)", behind.strip())[1]


def marked_names(text):
    """The qualified names, without arguments, of all that is marked OVIK_API in a header."""
    names = set()
    scopes = []
    declaration = ""

    def take(text):
        if "OVIK_API" in text:
            names.add("::".join([*filter(None, scopes), declared_name(text.strip())]))

    for part in re.split(r"([{};])", without_comments(text)):
        if part == "{":
            take(declaration)
            scopes.append(scope_name(declaration.strip()))
        elif part == "}":
            scopes.pop()
        elif part == ";":
            take(declaration)
        else:
            declaration = re.sub(r"^\s*(?:(?:public|private|protected)\s*:\s*)+", "", part)
            continue
        declaration = ""
    return names


def public_names(project):
    """The qualified names of all that is marked in the public headers."""
    names = set()
    for header in public_headers(project):
        names |= marked_names((project / header).read_text(encoding="utf-8"))
    return names


def misplaced(project):
    """What contradicts the list of public headers, a line each."""
    found = []
    public = set(public_headers(project))
    for header in sorted(public):
        if not (project / header).is_file():
            found.append(f"listed as public, but not there: {header}")
            continue
        text = (project / header).read_text(encoding="utf-8")
        found += [
            f"{header} is public and includes {included}, which is not"
            for included in included_headers(text)
            if included not in public
        ]
    for header in other_headers(project):
        names = marked_names((project / header).read_text(encoding="utf-8"))
        found += [f"marked OVIK_API in {header}, which is not public: {name}" for name in sorted(names)]
    return found
