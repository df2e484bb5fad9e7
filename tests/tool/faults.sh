#!/usr/bin/env bash
# Commands whose output or input goes wrong: faults.sh QAL MKIK ARM. Each time one plain line and the
# right exit status, a good file left as it was, and nothing beside it.
set -uo pipefail
qal=$1 mkik=$2 arm=$3
folder=$(mktemp -d)
trap 'umount "$folder/small" 2>/dev/null; rm -rf "$folder"' EXIT
failed=0
fail() { echo "$@" && failed=1; }
line=(line --from 0 0.3 0.2 0 1 0 --by 0 0.3 0 --speed 1 --profile fixed --full)

# expect LAST-LINE-PATTERN FOLDER COMMAND...: bad usage, and the folder's good.csv stays, alone.
expect() {
  local pattern="^(qal line|mkik): $1\$" where=$2 message status
  shift 2
  message=$("$@" 2>&1 >/dev/null)
  status=$?
  [ $status -eq 2 ] && [[ ${message##*$'\n'} =~ $pattern ]] ||
    fail "status $status, '$message' (expected 2, '$pattern'): $*"
  [ "$(ls -A "$where")" = good.csv ] && [ "$(cat "$where/good.csv")" = good ] ||
    fail "left behind by $*: $(ls -la "$where")"
}
good() { mkdir -p "$1" && echo good >"$1/good.csv" && echo "$1"; }

# A limit on file sizes, and a disk that fills up.
limited=$(good "$folder/limited")
expect "cannot write .*/good.csv: File too large" "$limited" \
  bash -c 'ulimit -f 8; exec "$@"' _ "$qal" "${line[@]}" --csv "$limited/good.csv"
mkdir "$folder/small"
if mount -t tmpfs -o size=64k tmpfs "$folder/small" 2>/dev/null; then
  small=$(good "$folder/small")
  expect "cannot write .*/good.csv: No space left on device" "$small" \
    "$qal" "${line[@]}" --csv "$small/good.csv"
else
  echo "skipped: a full disk (no right to mount one)"
fi

# A folder in the file's place; a folder that may not be written.
taken=$(good "$folder/taken")
expect "cannot write $folder: Is a directory" "$taken" "$qal" "${line[@]}" --csv "$folder"
locked=$(good "$folder/locked")
chmod 755 "$folder" && chmod 666 "$locked/good.csv" && chmod 555 "$locked"
user=()
[ "$(id -u)" -ne 0 ] || user=(setpriv --reuid 65534 --clear-groups)
if "${user[@]}" test -x "$qal"; then
  expect "cannot write .*/good.csv: Permission denied" "$locked" \
    "${user[@]}" "$qal" "${line[@]}" --csv "$locked/good.csv"
else
  echo "skipped: a read-only folder (another user can't run $qal)"
fi

# Input that isn't one: a folder, an endless file, one of 2 GB; in 2 GiB of memory.
mkdir "$folder/arm.toml"
truncate -s 2G "$folder/big.toml"
ln -s /dev/zero "$folder/endless.toml"
for input in "arm:Is a directory" "big:larger than 64 MiB" "endless:larger than 64 MiB"; do
  expect "cannot read .*: ${input#*:}" "$limited" \
    bash -c 'ulimit -v 2097152; exec "$@"' _ "$mkik" "$folder/${input%%:*}.toml"
done

# No environment at all, and a locale that isn't there, change no byte.
plain=$("$qal" "${line[@]}" --csv - 2>&1)
for odd in "env -i" "env LC_ALL=tlh_QO LANG=C.UTF-8 HOME=/nowhere"; do
  [ "$($odd "$qal" "${line[@]}" --csv - 2>&1)" = "$plain" ] || fail "another output with $odd"
done

# Stopped while the file is written beside: the old file or the whole new one, and nothing else.
stopped=$(good "$folder/stopped")
"$qal" "${line[@]}" --csv "$folder/whole.csv" >/dev/null
for try in $(seq 10); do
  "$qal" "${line[@]}" --csv "$stopped/good.csv" >/dev/null 2>&1 &
  until compgen -G "$stopped/good.csv.*" >/dev/null || ! kill -0 $! 2>/dev/null; do :; done
  kill -TERM $! 2>/dev/null
  wait $! 2>/dev/null
  [ "$(ls -A "$stopped")" = good.csv ] &&
    { [ "$(cat "$stopped/good.csv")" = good ] || cmp -s {"$folder/whole","$stopped/good"}.csv; } ||
    fail "stopped, try $try: $(ls -la "$stopped")"
  rm -f "$stopped"/good.csv.*
done
# Stopped while the compiler runs, which doesn't care: it goes as well, and what it has started and
# written. Jobs of their own (-m) don't ignore Ctrl-C.
cat >"$folder/slow" <<'END'
#!/bin/sh
trap '' INT TERM HUP
sleep 1000 & echo $$ $! > "$(dirname "$0")/running"
wait
END
chmod +x "$folder/slow" && mkdir "$folder/scratch"
set -m
for stop in INT TERM HUP; do
  TMPDIR=$folder/scratch CXX=$folder/slow "$mkik" "$arm" -o "$stopped/good.csv" 2>/dev/null &
  until [ -s "$folder/running" ] || ! kill -0 $! 2>/dev/null; do sleep 0.01; done
  kill -$stop $! && wait $! 2>/dev/null
  [ $? -eq $((128 + $(kill -l $stop))) ] && [ -z "$(ls -A "$folder/scratch")" ] ||
    fail "mkik stopped by $stop: $(ls -R "$folder/scratch")"
  sleep 0.1
  for process in $(cat "$folder/running"); do
    grep -sq '^State:[[:space:]]*[^ZX[:space:]]' /proc/$process/status || continue
    fail "$process goes on after $stop"
    kill -KILL $process
  done
  rm "$folder/running"
done
set +m
exit $failed
