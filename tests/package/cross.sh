#!/usr/bin/env bash
# Builds and installs the libraries for another processor, and a program with them by find_package,
# and runs it in an emulator: cross.sh SOURCES TOOLCHAIN FOLDER
set -euo pipefail
sources=$1 toolchain=$2 folder=$3
consumer=$(dirname "$(realpath "$0")")
rm -rf "$folder/prefix"
cmake -S "$sources" -B "$folder/build" --toolchain "$toolchain" -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=30 -DQAL_BUILD_TOOLS=OFF -DQAL_BUILD_EXAMPLES=OFF
cmake --build "$folder/build" --parallel 2
cmake --install "$folder/build" --prefix "$folder/prefix"
cmake -S "$consumer" -B "$folder/consumer" --toolchain "$toolchain" \
  -DQAL_kinematics_DIR="$(dirname "$(find "$folder/prefix" -name QAL_kinematicsConfig.cmake)")"
cmake --build "$folder/consumer"
readelf -h "$folder/consumer/consumer" | grep -q AArch64
qemu-aarch64 -L /usr/aarch64-linux-gnu "$folder/consumer/consumer"
