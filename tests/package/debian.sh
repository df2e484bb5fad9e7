#!/usr/bin/env bash
# Installs the Debian packages into an empty Debian, uses them there and removes them again:
# debian.sh PACKAGES CACHE. What is downloaded stays in the folder CACHE for the next time. Exit status
# 77: nothing was tried, as the last line says why.
set -euo pipefail
packages=$(realpath "$1") here=$(realpath "$(dirname "$0")")
compgen -G "$packages/*.deb" >/dev/null || { echo "No packages in $packages" >&2 && exit 1; }
mkdir -p "$2"
cache=$(realpath "$2")
skip() { echo "Skipped: $*" && exit 77; }

# mmdebstrap mounts in a name space of its own, so that nothing stays mounted however it ends.
if [ "$(id -u)" -eq 0 ]; then
  mode=root
  unshare --mount true 2>/dev/null || skip "root may not mount here"
else
  mode=unshare
  unshare --user --map-auto --map-root-user --mount true 2>/dev/null ||
    skip "not root, and no user name spaces (sysctl, /etc/subuid, the package uidmap)"
fi
. /etc/os-release
mirror=http://deb.debian.org/debian
/usr/lib/apt/apt-helper download-file "$mirror/dists/$VERSION_CODENAME/InRelease" "$cache/InRelease" \
  >/dev/null 2>&1 || skip "$mirror isn't reached"

mkdir -p "$cache/archives"
exec mmdebstrap --quiet --mode=$mode --variant=minbase --format=null --skip=essential/unlink \
  --dpkgopt=force-unsafe-io --aptopt='Acquire::Languages "none"' \
  --setup-hook='mkdir -p "$1/var/cache/apt/archives"' \
  --setup-hook="sync-in $cache/archives /var/cache/apt/archives" \
  --customize-hook='mkdir "$1/srv/packages"' \
  --customize-hook="sync-in $packages /srv/packages" \
  --customize-hook="copy-in $here/debian_root.sh $here/CMakeLists.txt $here/consumer.cpp /srv" \
  --customize-hook='chroot "$1" bash /srv/debian_root.sh' \
  --customize-hook="sync-out /var/cache/apt/archives $cache/archives" \
  "$VERSION_CODENAME" /dev/null
