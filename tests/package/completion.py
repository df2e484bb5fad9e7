"""Command lines as bash, zsh and fish complete them, with what is installed: SHELL PREFIX SCRATCH."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

ARMS = "share/QAL_kinematics/arms/"
FILES = ["arm.urdf", "cell 2.urdf", "cell.toml", "libik.so", "notes.md", "seam.csv", "seam.yaml"]

# A line as far as it is typed; what has to be offered, and what must not be.
CASES = [
    ("qal ", "fk help explain", "--arm arm.urdf folder/"),
    ("qal pl", "plan plot", "line explain"),
    ("qal -", "--arm --version --help", "--json"),
    ("qal explain li", "line", "plot arm.urdf"),
    ("qal help ve", "verify", "explain"),
    # Files by their kind; where no file is of it, any.
    ("qal plan ", "cell.toml folder/", "notes.md arm.urdf --arm"),
    ("qal convert seam.csv ", "seam.yaml", "arm.urdf notes.md --to"),
    ("qal verify se", "seam.csv seam.yaml", "notes.md"),
    ("qal fk --arm ", f"arm.urdf cell%2.urdf cell.toml libik.so ^{ARMS}reference.urdf", "seam.csv notes.md"),
    ("qal fk --arm=a", "arm.urdf", "cell.toml notes.md --arm"),
    ("qal fk --arm no", "notes.md", "arm.urdf"),
    (f"mkik --arm ^{ARMS}ref", f"^{ARMS}reference.urdf", f"^{ARMS}bench_parallel.urdf"),
    ("ikcheck ", "libik.so", "arm.urdf notes.md"),
    # Words of options that take only these.
    ("qal line --profile ", "limited fixed ramp s-curve", "trapezoid arm.urdf --speed"),
    ("qal joint --profile=tr", "trapezoid", "limited"),
    ("qal convert seam.csv out --to ", "csv json ros", "notes.md"),
    ("qal plot seam.csv --only angle,ve", "angle,velocity", "velocity angle,tool"),
    # Numbers: nothing in place of the first one, and behind it what else the command takes.
    ("qal fk --joints ", "", "arm.urdf notes.md --deg"),
    ("qal fk --joints 0 -.5 ", "--deg --arm", "notes.md --joints"),
    ("qal plan cell.toml --o", "--out", "--only cell.toml"),
    ("qal --arm arm.urdf pl", "plan plot", "notes.md"),
    ("qal plan -- c", "cell.toml", "--csv"),
    ("mkik arm.urdf --n", "--nominal", "--poses"),
]

BASH = r"""
answer() { COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _qal_tools "${COMP_WORDS[0]}"; printf '%s\n' "${COMPREPLY[@]}" --; }
"""

# A shell at a terminal, whose compadd tells what it is given that fits.
ZSHRC = r"""
PROMPT=
fpath=($COMPLETIONS $fpath)
autoload -U compinit
compinit -u -d $ZDOTDIR/dump
compadd() {
  [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]] && { builtin compadd "$@"; return }
  local -a fitting
  builtin compadd -O fitting "$@"
  (( $#fitting )) && print -rl -- $fitting >>$ANSWER
  builtin compadd "$@"
}
answer() { _main_complete; print -r -- -- >>$ANSWER }
zle -C answer list-choices answer
bindkey '^T' answer
touch $ANSWER
"""
ZSH = r"""
zmodload zsh/zpty
wait_for() { repeat 400; do [[ -e $ANSWER && $(grep -c "^--$" $ANSWER) -eq $1 ]] && return; sleep 0.05; done; exit 1 }
zpty shell zsh -d -i
wait_for 0
"""


def in_bash(lines, completions):
    script = BASH + "".join(f"source '{completions}/bash-completion/completions/{t}'\n" for t in ("qal", "mkik", "ikcheck"))
    for line in lines:
        words = re.findall(r"[^ =]+|=", line) + ([""] if line[-1] in " =" else [])
        script += f"COMP_WORDS=({' '.join(map(repr, words))}); answer\n"
    return run(["bash", "--norc", "-c", script])


def in_fish(lines, _):
    return run(["fish", "-c", "".join(f"complete -C '{line}'; printf '%s\\n' --\n" for line in lines)])


def in_zsh(lines, completions):
    os.environ["COMPLETIONS"] = f"{completions}/zsh/vendor-completions"
    (pathlib.Path(os.environ["ZDOTDIR"]) / ".zshrc").write_text(ZSHRC)
    script = ZSH
    for count, line in enumerate(lines, 1):
        script += f"zpty -w -n shell $'\\C-u{line}\\C-t'\nwait_for {count}\n"
    run(["zsh", "-f", "-c", script + "zpty -d shell"])
    return pathlib.Path(os.environ["ANSWER"]).read_text()


def run(command):
    done = subprocess.run(command, capture_output=True, text=True, timeout=120)
    assert done.returncode == 0, f"{command[0]}: status {done.returncode}: {done.stderr}{done.stdout}"
    return done.stdout


def offered(text, line):
    """The words of an answer, without what a shell says about them and what stands before a =."""
    before = re.match(r"(.* )?(--\w+=)?", line).group(2) or ""
    words = set()
    for each in text.splitlines():
        word = each.split("\t")[0].replace("\\ ", " ")
        word = word[len(before):] if word.startswith(before) else word
        words.add(word + "/" if os.path.isdir(word) and not word.endswith("/") else word)
    return words


def main(shell, prefix, scratch):
    shutil.rmtree(scratch, ignore_errors=True)
    (scratch / "here" / "folder").mkdir(parents=True)
    for name in FILES:
        (scratch / "here" / name).touch()
    os.environ.update(
        PATH=f"{prefix}/bin:{os.environ['PATH']}", HOME=str(scratch), ZDOTDIR=str(scratch),
        XDG_DATA_DIRS=f"{prefix}/share", ANSWER=str(scratch / "answer"), LC_ALL="C.UTF-8", TERM="dumb")
    os.chdir(scratch / "here")
    there = lambda text: text.replace("^", f"{prefix}/")
    lines = [there(line) for line, _, _ in CASES]
    answers = {"bash": in_bash, "zsh": in_zsh, "fish": in_fish}[shell](lines, f"{prefix}/share")
    answers = re.split(r"^--\n", answers, flags=re.M)
    assert len(answers) == len(CASES) + 1, answers
    failures = 0
    for (_, must, must_not), line, answer in zip(CASES, lines, answers):
        words = offered(answer, line)
        missing = {w.replace("%", " ") for w in there(must).split()} - words
        wrong = set(there(must_not).split()) & words
        if missing or wrong:
            failures += 1
            print(f"{shell}: '{line}' offers {sorted(words)}; missing {missing}, wrong {wrong}")
    return failures != 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], *(pathlib.Path(each).resolve() for each in sys.argv[2:])))
