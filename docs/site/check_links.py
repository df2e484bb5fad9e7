#!/usr/bin/python3 -B
"""Finds links that lead nowhere, anchors included.

check_links.py FOLDER       of the pages in a folder, which may load nothing from elsewhere
check_links.py FILE.md ...  of Markdown files as they lie in a repository"""

from __future__ import annotations

import re
import sys
from dataclasses import dataclass, field
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

from markdown_it import MarkdownIt


@dataclass
class Page:
    """What can be linked to in a page, and what it links to, with lines."""

    anchors: set[str] = field(default_factory=set)
    links: list[tuple[int, str]] = field(default_factory=list)
    loads: list[tuple[int, str]] = field(default_factory=list)


class _Html(HTMLParser):
    def __init__(self, text: str) -> None:
        super().__init__()
        self.page = Page()
        self.feed(text)

    def handle_starttag(self, tag: str, attrs: list[tuple[str, str | None]]) -> None:
        for name, value in attrs:
            if name == "id":
                self.page.anchors.add(value or "")
            elif name in ("href", "src") and value:
                place = (self.getpos()[0], value)
                self.page.links.append(place)
                if tag != "a":
                    self.page.loads.append(place)


def _anchor(heading: str) -> str:
    """As code hosts make it of a heading."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def _markdown(text: str) -> Page:
    page = Page()
    tokens = MarkdownIt().enable("table").parse(text)
    for before, token in zip([None, *tokens], tokens):
        if token.type != "inline":
            continue
        children = token.children or []
        if before is not None and before.type == "heading_open":
            page.anchors.add(_anchor("".join(child.content for child in children)))
        for child in children:
            target = child.attrs.get("href") or child.attrs.get("src")
            if target:
                page.links.append(((token.map or [0])[0] + 1, str(target)))
    return page


def _fault(link: str, path: Path, pages: dict[Path, Page], folder: Path | None) -> str | None:
    url = urlsplit(link)
    if url.scheme or url.netloc:
        return None
    target = (path.parent / unquote(url.path)).resolve() if url.path else path
    if folder is not None and not target.is_relative_to(folder):
        return "leads out of the folder"
    if not target.exists() or (folder is not None and not target.is_file()):
        return "there is no such file"
    if url.fragment and target in pages and unquote(url.fragment) not in pages[target].anchors:
        return "there is no such anchor"
    return None


def _faults(pages: dict[Path, Page], folder: Path | None) -> list[str]:
    found = []
    for path, page in sorted(pages.items()):
        for line, link in page.links:
            fault = _fault(link, path, pages, folder)
            if fault is not None:
                found.append(f"{path}:{line}: {link}: {fault}")
        found += [f"{path}:{line}: {link}: is loaded from elsewhere" for line, link in page.loads
                  if urlsplit(link).netloc]
    return found


def faults_of_folder(folder: Path) -> list[str]:
    """What is wrong with the links of a folder's pages."""
    folder = folder.resolve()
    return _faults({path: _Html(path.read_text()).page for path in folder.rglob("*.html")}, folder)


def faults_of_markdown(files: list[Path]) -> list[str]:
    """What is wrong with the links of Markdown files."""
    return _faults({path.resolve(): _markdown(path.read_text()) for path in files}, None)


def main() -> None:
    given = [Path(argument) for argument in sys.argv[1:]]
    if not given:
        sys.exit(__doc__)
    found = faults_of_folder(given[0]) if given[0].is_dir() else faults_of_markdown(given)
    if found:
        sys.exit("\n".join(found))


if __name__ == "__main__":
    main()
