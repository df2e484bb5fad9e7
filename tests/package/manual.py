"""The manual as it is installed, read by man: MAN1 BIN."""

import pathlib
import re
import subprocess
import sys

SECTIONS = ["NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXIT STATUS", "EXAMPLES", "SEE ALSO"]


def output(command):
    return subprocess.run(command, capture_output=True, text=True, check=True, timeout=60)


def commands_in(words):
    """The commands that a help lists, without other names for them."""
    listed = output([*words, "--help"]).stdout.partition("\nSubcommands:\n")[2].partition("\n\n")[0]
    return re.findall(r"^  ([\w-]+)", listed, flags=re.M)


def faults_of(page, words):
    env = ["env", "MANWIDTH=200", "LC_ALL=C.UTF-8"]
    shown = output([*env, "man", "--warnings=w", "-E", "UTF-8", "-l", str(page)])
    yield from ([f"groff warns: {shown.stderr}"] if shown.stderr else [])
    headings = re.findall(r"^[A-Z][A-Z ]+$", shown.stdout, flags=re.M)
    yield from (f"no {each}" for each in SECTIONS if each not in headings)
    # Nothing of the help is lost, and nothing of it is taken for markup.
    text = " ".join(shown.stdout.split())
    for line in output([*words, "--help"]).stdout.partition("\nOptions:\n")[2].splitlines():
        if line.startswith(("Subcommands:", "Exit status:", "Environment:", "Example:")):
            line = line.partition(": ")[2]
        head, *about = re.split(r"  +", line.strip())
        head = re.sub(r"=\w[\w.-]*$| (Needs|Excludes):? .*| REQUIRED", "", head.replace(",-", ", -"))
        yield from (f"'{each}' is missing" for each in [head, *about] if each not in text)


def main(man1, bin_folder):
    tools = [(bin_folder / tool,) for tool in ("qal", "mkik", "ikcheck")]
    pages = {}
    for words in tools:
        pages["-".join([words[0].name, *words[1:]])] = words
        tools += [(*words, each) for each in commands_in(words)]
    faults = [f"{name}: {fault}" for name, words in pages.items() for fault in faults_of(man1 / f"{name}.1", words)]
    there = {each.name[:-2] for each in man1.iterdir()}
    faults += [f"{name}: a page of no command" for name in there - set(pages)]
    for name in there:
        pointed = re.findall(r"\\fB(\S+)\\fR\(1\)", (man1 / f"{name}.1").read_text())
        faults += [f"{name}: points to {each}(1)" for each in pointed if each.replace("\\-", "-") not in there]
    print("\n".join(faults))
    return bool(faults) or len(there) < 15


if __name__ == "__main__":
    sys.exit(main(*map(pathlib.Path, sys.argv[1:])))
