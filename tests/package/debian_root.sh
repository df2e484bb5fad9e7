# Runs in an empty Debian, as debian.sh starts it: installs /srv/packages, uses them, removes them.
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
mapfile -t ours < <(for file in /srv/packages/*.deb; do dpkg-deb -f "$file" Package; done)
install() { apt-get -q -y --no-install-recommends install "$@" >/srv/apt.log 2>&1 || { cat /srv/apt.log; exit 1; }; }
step() { echo "$(date +%T) $*"; }
expect() {  # WORDS COMMAND...: what the command has to print
  local words=$1 output
  shift
  output=$("$@" 2>&1) || { echo "$*: status $?: $output" && exit 1; }
  [[ $output == *"$words"* ]] || { echo "$*: no '$words' in: $output" && exit 1; }
}
files() {  # what there is, without what apt and dpkg keep themselves
  find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /run -o -path /srv -o -path /tmp -o -path /root \
    -o -path /var/cache -o -path /var/log -o -path /var/lib/dpkg -o -path /var/lib/apt \) -prune \
    -o -printf '%y %p %l\n' | sort
}

step "what the packages need"
apt-get -s --no-install-recommends install /srv/packages/*.deb >/srv/plan.log 2>&1 || { cat /srv/plan.log; exit 1; }
mapfile -t needed < <(sed -n 's/^Inst \([^ ]*\).*/\1/p' /srv/plan.log | grep -vxF "$(printf '%s\n' "${ours[@]}")")
install "${needed[@]}" cmake g++ make
files >/srv/before

step "the packages: ${ours[*]}"
install /srv/packages/*.deb
mkdir /srv/work && cd /srv/work

step "the tools"
doc=/usr/share/doc/qal-kinematics-doc arms=/usr/share/QAL_kinematics/arms
qal plan $doc/examples/welding_seam.toml -o seam.csv >plan.txt
expect "no violation" qal verify seam.csv --strict
expect "bench_spherical" mkik $arms/bench_spherical.urdf -o libik.so
expect "sound, nothing found" ikcheck libik.so --arm $arms/bench_spherical.urdf --poses 100

step "the Python package"
expect "points are reached" python3 $doc/examples/python/point_cloud.py $doc/arms/reference.urdf
expect "" python3 $doc/examples/python/feed_controller.py $doc/examples/welding_seam.toml

step "a consumer of the libraries"
cmake -S /srv -B consumer >cmake.log && cmake --build consumer >>cmake.log || { cat cmake.log; exit 1; }
consumer/consumer

step "another arm's solver in place of the reference arm's"
reference=$(ls /usr/lib/*/qal-ik-reference/libik.so)
triplet=$(basename "$(dirname "$(dirname "$reference")")") link=/usr/lib/$triplet/libik.so
expect "/$triplet/libik.so" ldd consumer/consumer
expect "$reference" readlink -f "$link"
update-alternatives --quiet --install "$link" "libik.so-$triplet" /srv/work/libik.so 50
expect /srv/work/libik.so readlink -f "$link"
consumer/consumer
update-alternatives --quiet --remove "libik.so-$triplet" /srv/work/libik.so

step "nothing is left when they are removed"
apt-get -q -y purge "${ours[@]}" >/srv/apt.log 2>&1 || { cat /srv/apt.log; exit 1; }
files >/srv/after
diff /srv/before /srv/after || { echo "left (>) or gone (<) with the packages"; exit 1; }
step "done"
