#!/usr/bin/python3 -B
"""Everything that docs/tasks.md names is there: tasks.py ROOT FOLDER_OF_TOOLS"""

import ast
import re
import subprocess
import sys
from functools import lru_cache
from pathlib import Path

from markdown_it import MarkdownIt

ROOT, TOOLS = (Path(argument) for argument in sys.argv[1:])
PACKAGE = ROOT / "python/qal_kinematics"
BUILD_FILES = "\n".join(
    path.read_text() for folder in (".", "cmake", "src", "src/qal", "packaging")
    for pattern in ("CMakeLists.txt", "*.cmake", "*.in") for path in (ROOT / folder).glob(pattern)
)


@lru_cache
def help_of(*command):
    run = subprocess.run([TOOLS / command[0], *command[1:], "--help"], capture_output=True, text=True)
    return run.stdout if run.returncode == 0 else ""


def of_command(code):
    command = re.match(r"[a-z]+( [a-z]+)*", code)[0]
    text = help_of(*command.split())
    rest = code[len(command):].split()
    return f"Usage: {command} " in text and all(re.search(rf"{word}\b", text) for word in rest)


@lru_cache
def members():
    """The parameters of each member of Python's classes, and of its functions, those of no class."""
    made = [made for file in ("_core.pyi", "_reach.py", "errors.py")
            for made in ast.parse((PACKAGE / file).read_text()).body]
    items = [("", item) for item in made] + [
        (one.name, item) for one in made if isinstance(one, ast.ClassDef)
        for item in [*one.body, ast.parse("def __init__(self): 0").body[0]]
    ]
    return {
        (name, item.name): {parameter.arg for parameter in item.args.args + item.args.kwonlyargs}
        for name, item in items if isinstance(item, ast.FunctionDef)
    }


def of_python(code):
    name, *rest = re.fullmatch(r"([A-Za-z]+)(?:\.(\w+))?(?:\((.*)\))?", code).groups(default="")
    member = (name[0].upper() + name[1:], rest[0] or "__init__")
    found = members().get(member if member in members() else (rest[0], name))
    return found is not None and set(re.findall(r"\w+(?==)", rest[1])) <= found


def of_build(code):
    name = re.findall(r"[\w:.]+", code.removeprefix("-D").split("=")[0])[-1]
    return re.search(rf"\b{re.escape(name)}\b", BUILD_FILES)


def there(code, link):
    if link.endswith(".h"):
        text = (ROOT / "docs" / link).read_text()
        return all(re.search(rf"\b{part}\b", text) for part in code.split("::"))
    if "/" in code:
        return (ROOT / code).exists()
    if code.startswith("make "):
        return re.search(rf"^{code[5:]}:", (ROOT / "Makefile").read_text(), re.MULTILINE)
    if code.split()[0] in ("qal", "mkik", "ikcheck"):
        return of_command(code)
    if code == "pip install .":
        return (ROOT / "pyproject.toml").exists()
    if re.match(r"-D|QAL|find_package|pkg-config|libik", code):
        return of_build(code)
    if code == "Ikfunc":
        return True
    return of_python(code)


def named(text):
    for token in MarkdownIt().enable("table").parse(text):
        link = ""
        for child in token.children or []:
            link = child.attrs.get("href", "") if child.type == "link_open" else link
            link = "" if child.type == "link_close" else link
            if child.type == "code_inline":
                yield child.content, link


names = list(named((ROOT / "docs/tasks.md").read_text()))
missing = [f"docs/tasks.md: {code}: not there" for code, link in names if not there(code, link)]
if missing or len(names) < 100:
    sys.exit("\n".join(missing) or f"only {len(names)} names were read")
