#!/usr/bin/env bash
# The packages are free of errors, install on a fresh Debian with nothing but what they depend on,
# and serve programs in C++, C and Fortran there. Takes the folder of the packages; needs root, for
# a Debian made in a folder of its own.
set -euo pipefail
packages=$(realpath "$1")
tree=$(realpath "$(dirname "$0")/../..")
suite=$(. /etc/os-release && echo "$VERSION_CODENAME")
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT

lintian --allow-root --fail-on error "$packages"/*.deb

echo "making a fresh Debian"
# From where this machine has its packages.
mirror=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME)' |
  awk -v suite="$suite" '$2 == suite { print $1; exit }')
debootstrap --variant=minbase "$suite" "$root" "$mirror" \
  >"$packages/debootstrap.log" 2>&1 || { tail -n 20 "$packages/debootstrap.log" >&2; exit 1; }
inside() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
  DEBIAN_FRONTEND=noninteractive "$@"; }
cp /etc/apt/apt.conf.d/* "$root/etc/apt/apt.conf.d/" 2>/dev/null || true
mkdir "$root/packages" "$root/work"
cp "$packages"/*.deb "$root/packages"
cp "$tree"/tests/install/consumer/*.cpp "$tree/tests/entry_points/phases.c" \
  "$tree/examples/fortran/first_steps.f90" "$tree/examples/data/cantilever.frd" "$root/work"

echo "the tool alone"
inside apt-get update -qq
inside sh -c 'apt-get install -y -qq --no-install-recommends /packages/libqeltadbconnector[0-9]*.deb \
  /packages/qelta_*.deb' >"$packages/install.log" 2>&1 ||
  { tail -n 20 "$packages/install.log" >&2; exit 1; }
inside sh -c 'cd /work && qelta import cantilever.frd run.db && qelta verify run.db &&
  qelta show run.db -w LABEL=DISP -w INCREMENT=max --id 9 && qelta --version'

echo "programs"
inside sh -c 'apt-get install -y -qq --no-install-recommends /packages/*.deb g++ gfortran \
  pkg-config' >>"$packages/install.log" 2>&1 || { tail -n 20 "$packages/install.log" >&2; exit 1; }
inside sh -eu -c 'cd /work
g++ -std=c++17 main.cpp -o core $(pkg-config --cflags --libs qelta-db-connector) && ./core
g++ -std=c++17 file.cpp -o file $(pkg-config --cflags --libs qelta-file) && ./file
gcc phases.c -o phases $(pkg-config --cflags --libs qelta-fortran) && ./phases
gfortran -I"$(pkg-config --variable=fmoddir qelta-fortran)" first_steps.f90 -o first_steps \
  $(pkg-config --libs qelta-fortran) && ./first_steps'

echo "and away"
inside sh -c 'apt-get purge -y -qq "libqelta*" qelta' >>"$packages/install.log" 2>&1
left=$(find "$root/usr" -iname '*qelta*' | head)
[ -z "$left" ] || { echo "left behind: $left" >&2; exit 1; }
echo "the packages are good"
