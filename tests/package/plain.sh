#!/usr/bin/env bash
# Compiles the fixed interface with a program of a user's, by nothing but a compiler, and runs it
# with the solver in FOLDER: plain.sh SOURCES FOLDER OUTPUT
set -euo pipefail
cd "$1"
"${CXX:-c++}" -std=c++17 -Isrc src/core/*.cpp src/kinematics/*/*.cpp examples/01_straight_line.cpp \
  -L"$2" -lik -o "$3"
LD_LIBRARY_PATH=$2 "$3" | grep -qx '351 waypoints, one every 0.005 s'
