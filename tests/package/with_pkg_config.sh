#!/usr/bin/env bash
# Builds the consumer with nothing but pkg-config: with_pkg_config.sh PREFIX SOURCE OUTPUT
set -euo pipefail
PKG_CONFIG_PATH=$(dirname "$(find "$1" -name QAL_kinematics.pc)")
export PKG_CONFIG_PATH
read -ra flags < <(pkg-config --cflags --libs QAL_kinematics qal)
"${CXX:-c++}" -std=c++17 "$2" -o "$3" "${flags[@]}"
LD_LIBRARY_PATH=$(pkg-config --variable=libdir QAL_kinematics) "$3"
