"""Makes a page of each public header from what Doxygen read: its classes, functions, types and
constants, in the order in which the header has them."""

from __future__ import annotations

import re
import xml.etree.ElementTree as ET
from pathlib import Path

# Of what Doxygen calls by these kinds, Breathe has a directive `doxygen<kind>`.
_MEMBERS = ("function", "typedef", "enum", "variable")


def public_headers(root: Path) -> dict[str, list[str]]:
    """The headers that each library installs, as they are included."""
    install = (root / "cmake/QalInstall.cmake").read_text()
    listed = re.search(r"set\(QAL_PUBLIC_HEADERS\s([^)]*)\)", (root / "src/qal/CMakeLists.txt").read_text())
    assert listed is not None
    return {
        # Not the one that marks exports: a program has no use for it.
        "libQAL_kinematics": sorted(
            header for header in re.findall(r"\ssrc/([\w/]+\.h)", install) if header != "core/export.h"
        ),
        "libqal": ["qal/" + header for header in listed[1].split()],
    }


def page_of(header: str) -> str:
    return "cpp/" + header.removesuffix(".h").replace("/", "_")


def _text(element: ET.Element | None) -> str:
    return "" if element is None else "".join(element.itertext()).strip()


def _compounds(xml: Path, pattern: str) -> list[ET.Element]:
    return [ET.parse(path).getroot()[0] for path in xml.glob(pattern)]


def _file(element: ET.Element) -> str:
    location = element.find("location")
    return "" if location is None else location.get("file", "")


def _line(element: ET.Element) -> int:
    location = element.find("location")
    return 0 if location is None else int(location.get("line", 0))


def _class(xml: Path, inner: ET.Element) -> tuple[int, str]:
    made = ET.parse(xml / f"{inner.get('refid')}.xml").getroot()[0]
    return _line(made), f".. doxygen{made.get('kind')}:: {_text(inner)}\n   :members:\n"


def _member(member: ET.Element) -> tuple[int, str]:
    name, kind = _text(member.find("qualifiedname")), member.get("kind")
    if kind == "function":
        types = [_text(parameter.find("type")) for parameter in member.findall("param")]
        name += f"({', '.join(types)})"
    return _line(member), f".. doxygen{kind}:: {name}\n"


def _page(xml: Path, header: str, file: ET.Element, members: list[ET.Element]) -> str:
    classes = [inner for inner in file.findall("innerclass") if inner.get("prot") != "private"]
    names = {_text(inner) for inner in classes}
    # A class within a class is on the outer one's place.
    outer = [inner for inner in classes if _text(inner).rpartition("::")[0] not in names]
    parts = sorted([_class(xml, inner) for inner in outer] + [_member(member) for member in members])
    title = header.removeprefix("qal/")
    return "\n".join(
        [title, "=" * len(title), "", _text(file.find("briefdescription")), "",
         ".. code-block:: cpp", "", f"   #include <{header}>", "", *(text for _, text in parts)]
    )


def write_pages(xml: Path, libraries: dict[str, list[str]], folder: Path) -> None:
    """Writes a page of each header and one of all of them, from Doxygen's folder `xml`."""
    files = {_file(file): file for file in _compounds(xml, "*_8h.xml")}
    members: dict[str, list[ET.Element]] = {header: [] for header in files}
    for namespace in _compounds(xml, "namespace*.xml"):
        for member in namespace.iter("memberdef"):
            if member.get("kind") in _MEMBERS:
                members[_file(member)].append(member)
    (folder / "cpp").mkdir(parents=True, exist_ok=True)
    index = ["C++", "===", ""]
    for library, headers in libraries.items():
        index += [library, "-" * len(library), "", ".. list-table::", "   :widths: auto", ""]
        for header in headers:
            (folder / (page_of(header) + ".rst")).write_text(_page(xml, header, files[header], members[header]))
            brief = _text(files[header].find("briefdescription"))
            index += [f"   * - :doc:`{header} </{page_of(header)}>`", f"     - {brief}"]
        index += ["", ".. toctree::", "   :hidden:", ""]
        index += [f"   /{page_of(header)}" for header in headers] + [""]
    (folder / "cpp/index.rst").write_text("\n".join(index))
