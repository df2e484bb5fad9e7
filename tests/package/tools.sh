#!/usr/bin/env bash
# The tools as they are installed, in a tree that has been moved, with nothing of the build around them:
# tools.sh PREFIX SCRATCH
set -euo pipefail
rm -rf "$2" && mkdir -p "$2/work" && cp -a "$1" "$2/moved"
bin=$2/moved/bin arm=$2/moved/share/QAL_kinematics/arms/bench_spherical.urdf
cd "$2/work"
run() { env -i PATH="$PATH" HOME=/nonexistent "$@"; }
expect() {  # WORDS COMMAND...: what the command has to print
  local words=$1 output
  shift
  output=$(run "$@") || { echo "$*: status $?" && exit 1; }
  [[ $output == *"$words"* ]] || { echo "$*: no '$words' in: $output" && exit 1; }
}
expect "360.54073" "$bin/qal" fk --deg --mm --joints 0 -10 10 0 90 0
expect "$arm" "$bin/mkik" "$arm" -o libik.so
expect "sound, nothing found" "$bin/ikcheck" libik.so --arm "$arm" --poses 100
expect "position x y z" "$bin/qal" fk --arm "$PWD/libik.so" --joints 0 0.1 0.2 0.3 0.4 0.5
expect "position x y z" "$bin/qal" fk --arm "$arm" --joints 0 0.1 0.2 0.3 0.4 0.5
run "$bin/qal" joint --from 0 0 0 0 1 0 --to 1 0 0 0 1 0 --csv move.csv >joint.txt
expect "joint speed" "$bin/qal" verify move.csv
