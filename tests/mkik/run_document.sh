#!/bin/sh
# Runs the commands of a document's console blocks, in order and in a folder of their own, and
# compares what they print with what the document shows; "..." stands for any text.
# usage: run_document.sh DOCUMENT ARM TOOLS COUNT [FILE]
# ARM is what the document calls arm.urdf; FILE is its toml block, my_arm.toml unless said, or its bash
# block where the name doesn't end in .toml; TOOLS is the folder of the tools; COUNT is the least number
# of commands. A command that is to fail ends in "# exit status N".
set -eu
document=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp "$2" "$folder/arm.urdf"
PATH=$3:$PATH
cd "$folder"

# One file for each command, with what is shown below it.
awk '/^```/ { inside = ($0 == "```console"); next }
     inside && /^\$ / { ++n; print substr($0, 3) > (n ".command"); printf "" > (n ".shown"); next }
     inside { print > (n ".shown") }' "$document"
file=${5:-my_arm.toml}
case $file in *.toml) kind=toml ;; *) kind=bash ;; esac
awk -v fence="\`\`\`$kind" '/^```/ { inside = ($0 == fence); next } inside' "$document" > "$file"

n=1
while [ -e "$n.command" ]; do
  echo "\$ $(cat "$n.command")"
  expected=$(sed -n 's/.*# exit status \([0-9]*\)$/\1/p' "$n.command")
  status=0
  sh -e "./$n.command" > "$n.printed" 2>&1 || status=$?
  if [ "$status" != "${expected:-0}" ]; then
    cat "$n.printed"
    echo "exit status $status, ${expected:-0} is expected"
    exit 1
  fi
  # Each shown line is a pattern: its own text, with ".*" for "...".
  sed -e 's/[][\\.*^$]/\\&/g' -e 's/\\\.\\\.\\\./.*/g' -e 's/.*/^&$/' "$n.shown" > "$n.patterns"
  while IFS= read -r pattern; do
    if ! grep -q -e "$pattern" "$n.printed"; then
      cat "$n.printed"
      echo "shown, but not printed: $pattern"
      exit 1
    fi
  done < "$n.patterns"
  n=$((n + 1))
done
[ "$n" -gt "$4" ] || { echo "$((n - 1)) commands; at least $4 are expected"; exit 1; }
