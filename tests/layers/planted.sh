#!/usr/bin/env bash
# Compiles an include that a layer may have, and one that it may not, in the layer's own folder:
#   planted.sh FOLDER ALLOWED FORBIDDEN COMPILER...
set -u
folder=$1 allowed=$2 forbidden=$3
planted=$folder/planted.cpp
trap 'rm -f "$planted"' EXIT

compiles() {  # INCLUDE COMPILER...
  echo "#include \"$1\"" >"$planted"
  shift
  "$@" "$planted"
}

compiles "$allowed" "${@:4}" || { echo "$allowed is refused"; exit 1; }
compiles "$forbidden" "${@:4}" 2>"$planted.words" && { echo "$forbidden is taken"; exit 1; }
words=$(<"$planted.words")
rm -f "$planted.words"
[[ $words == *"No such file"* || $words == *"file not found"* ]] || { echo "$words"; exit 1; }
