"""Makes links of names. In the guides, as in the references, code that is the name of something
documented leads there; links to public headers and to examples lead to their pages. What is
undocumented of the Python package is warned of."""

from __future__ import annotations

import posixpath
import re
from collections.abc import Iterator
from typing import Any

from docutils import nodes
from sphinx import addnodes
from sphinx.application import Sphinx
from sphinx.transforms import SphinxTransform
from sphinx.transforms.post_transforms import SphinxPostTransform
from sphinx.util import logging
from sphinx.util.nodes import make_refnode

from cpp_pages import page_of

_PYTHON_PAGES = ("python", "docs/python")
_IN_CONTENTS = ("class", "struct", "enum", "enum-class", "function", "type")
_Place = tuple[str, str]  # page and anchor


class FilesOnPages(SphinxTransform):
    """A link to a file of the repository that has a page becomes one to the page."""

    default_priority = 300

    def apply(self, **_: Any) -> None:
        for node in list(self.document.findall(addnodes.download_reference)):
            folder = posixpath.dirname(self.env.docname)
            path = posixpath.normpath(posixpath.join(folder, node["reftarget"]))
            page = _page(path, self.env.found_docs)
            if page is None:
                continue
            link = addnodes.pending_xref(refdoc=self.env.docname, refdomain=None, reftype="myst",
                                         reftarget="/" + page, refexplicit=True, refwarn=True)
            link += node.children
            node.replace_self(link)


class CppContents(SphinxTransform):
    """Classes, functions and types of a header are in the contents of its page."""

    default_priority = 310

    def apply(self, **_: Any) -> None:
        for made in self.document.findall(addnodes.desc):
            name = made[0].next_node(addnodes.desc_name)
            if made["domain"] == "cpp" and made["objtype"] in _IN_CONTENTS and name is not None:
                outer = [node[0]["ids"][0] for node in _around(made) if isinstance(node, addnodes.desc)]
                made[0]["_toc_parts"] = (*reversed(outer), made[0]["ids"][0])
                made[0]["_toc_name"] = name.astext() + ("()" if made["objtype"] == "function" else "")


def _around(node: nodes.Node) -> Iterator[nodes.Element]:
    while node.parent is not None:
        node = node.parent
        yield node


def _page(path: str, pages: set[str]) -> str | None:
    page = page_of(path.removeprefix("src/")) if path.startswith("src/") else path
    return page if page in pages else None


class NamesAsLinks(SphinxPostTransform):
    """Code that is the name of something documented becomes a link to it."""

    default_priority = 800

    def run(self, **_: Any) -> None:
        self._mark_code()
        if not hasattr(self.app, "qal_names"):
            self.app.qal_names = (_cpp_names(self.env), _python_names(self.env))  # type: ignore[attr-defined]
        cpp, python = self.app.qal_names  # type: ignore[attr-defined]
        files = {name: (name, "") for name in self.env.found_docs if name.startswith("examples/")}
        page = self.env.docname
        names = {**files, **cpp, **python} if page in _PYTHON_PAGES else {**files, **python, **cpp}
        for literal in list(self.document.findall(nodes.literal)):
            place = names.get(_name(literal.astext()))
            if place is not None and not self._is_there(literal, place):
                self._link(literal, *place)

    def _mark_code(self) -> None:
        """Makes code of what is named without being marked as such, and no code within code."""
        for cited in list(self.document.findall(nodes.title_reference)):
            cited.replace_self(nodes.literal("", cited.astext()))
        for literal in list(self.document.findall(nodes.literal)):
            if literal.next_node(nodes.reference) is not None:
                literal.replace_self(literal.children)
        if not self.env.docname.startswith("cpp/"):
            return
        for text in list(self.document.findall(nodes.Text)):
            parts = re.split(r"\b(k[A-Z]\w+)", text.astext())
            if len(parts) > 1 and isinstance(text.parent, nodes.paragraph):
                marked = [nodes.literal("", part) if i % 2 else nodes.Text(part) for i, part in enumerate(parts)]
                text.parent.replace(text, [node for node in marked if node.astext()])

    def _is_there(self, literal: nodes.literal, place: _Place) -> bool:
        """Whether it stands in a heading, or in what it would lead to."""
        return any(
            isinstance(node, nodes.title) or (isinstance(node, addnodes.desc) and place[1] in node[0]["ids"])
            for node in _around(literal)
        )

    def _link(self, literal: nodes.literal, page: str, anchor: str) -> None:
        link = make_refnode(self.app.builder, self.env.docname, page, anchor, [])
        around = next((node for node in _around(literal) if isinstance(node, nodes.reference)), None)
        if around is None:
            literal.replace_self(link)
            link += literal
        elif around.get("refuri", "").split("#")[0] == link.get("refuri", "").split("#")[0]:
            around["refuri"] = link["refuri"]  # to the header's page: on to the name


def _name(code: str) -> str:
    """`PlanLine()` is PlanLine, `arm.plan_line(...)` Arm.plan_line."""
    name = code.split("(")[0]
    return name[:1].upper() + name[1:] if re.fullmatch(r"[a-z]+\.\w+", name) else name


def _cpp_names(env: Any) -> dict[str, _Place]:
    names: dict[str, _Place] = {}
    found = [entry for entry in env.get_domain("cpp").get_objects() if not entry[2].endswith("Param")]
    # The outer first. Of two headers the later: kinematics.h before batch.h, which has the same of many.
    found.sort(key=lambda entry: str(entry[3]), reverse=True)
    found.sort(key=lambda entry: int(entry[0].count("::")))
    for full, _, _, page, anchor, _ in found:
        short = full.removeprefix("qal::")
        scope, _, last = full.rpartition("::")
        keys = [full, short]
        if scope in ("Ikfunc", "qal::classic", "qal::Reason"):
            keys.append(last)
        for key in keys:
            names.setdefault(key, (page, anchor))
    return names


def _python_names(env: Any) -> dict[str, _Place]:
    names: dict[str, _Place] = {}
    for full, _, kind, page, anchor, _ in sorted(env.get_domain("py").get_objects()):
        short = full.removeprefix("qal_kinematics.")
        for key in [full, short] + ([short.split(".")[-1]] if kind == "method" else []):
            names.setdefault(key, (page, anchor))
    return names


def require_docstring(_: Sphinx, what: str, name: str, __: Any, ___: Any, lines: list[str]) -> None:
    if not any(lines):
        logging.getLogger(__name__).warning("%s %s is not documented", what, name)


def shorten_signature(_: Sphinx, __: str, ___: str, ____: Any, _____: Any, signature: str | None,
                      returns: str | None) -> tuple[str | None, str | None]:
    """Without types: docstrings say more than `object`."""
    if signature is not None:
        signature = re.sub(r"\bself: [\w.]+(, )?", "", signature)
        signature = re.sub(r": [\w.\[\]]+( = )?", lambda match: "=" if match[1] else "", signature)
    if returns is not None:
        returns = None if returns in ("object", "Any") else re.sub(r"qal_kinematics\.|\[.*", "", returns)
    return signature, returns


def setup(app: Sphinx) -> dict[str, bool]:
    app.add_transform(FilesOnPages)
    app.add_transform(CppContents)
    app.add_post_transform(NamesAsLinks)
    app.connect("autodoc-process-docstring", require_docstring)
    app.connect("autodoc-process-signature", shorten_signature)
    return {"parallel_read_safe": True, "parallel_write_safe": True}
