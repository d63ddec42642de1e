#!/usr/bin/env python3
"""Follows every link of the Markdown documents below a directory that does not lead to the network: to
a file that is there, and to a heading that it has.

usage: links.py DIRECTORY [DOCUMENT...], without documents all that there are
"""
import pathlib
import re
import sys

FENCE = re.compile(r"^```.*?^```$", re.DOTALL | re.MULTILINE)
LINKS = (
    re.compile(r"\]\(([^)\s]+)\)"),
    re.compile(r'\b(?:src|href)="([^"]+)"'),
)


def anchors(text):
    """What headings are reached by: small letters, without punctuation, dashes for blanks."""
    headings = re.findall(r"^#+ +(.*)$", FENCE.sub("", text), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def fault(document, link, root):
    """What is wrong with a link; none if nothing is."""
    path, _, anchor = link.partition("#")
    target = (document.parent / path).resolve() if path else document
    if not target.is_relative_to(root):
        return "leads out of the directory"
    if not target.is_file():
        return "leads to nothing"
    if anchor and anchor not in anchors(target.read_text()):
        return "leads to a heading that is not there"
    return None


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    documents = [root / name for name in sys.argv[2:]] or sorted(root.rglob("*.md"))
    failures = []
    followed = 0
    for document in documents:
        text = re.sub(r"`[^`\n]*`", "", FENCE.sub("", document.read_text()))
        for link in [link for kind in LINKS for link in kind.findall(text)]:
            if re.match(r"[a-z]+:", link):
                continue
            followed += 1
            what = fault(document, link, root)
            if what:
                failures.append(f"{document.relative_to(root)}: {link} {what}")
    if followed == 0:
        failures.append("there are no links to follow")
    print(f"{followed} links of {len(documents)} documents")
    sys.exit("\n".join(failures) if failures else 0)


main()
