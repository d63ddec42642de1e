#!/bin/sh
# Installs the Debian packages in a new Debian, uses them, and removes them again.
#
# usage: debian_root.sh PROJECT ROOT; needs what new_debian.sh needs, and status 77 says that it is
# missing. ROOT is a directory that is made anew, on a file system with 2 GB to spare.
set -eu
project=$1
root=$2
table_md5=9145c3adf35493d79941eab4412bd589

. "$(dirname "$0")/new_debian.sh"

inside() {
  chroot "$root" env -i --chdir=/trial PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive "$@"
}

# Everything but what apt and dpkg keep for themselves, and what this script put there.
list_files() {
  inside find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /trial -o -path /tmp \
    -o -path /var/lib/dpkg -o -path /var/lib/apt -o -path /var/cache -o -path /var/log \) -prune \
    -o -print | sort
}

new_debian "$root"
mkdir "$root/trial"
cp "$project"/build/packages/*.deb "$project/data/brauer2008_chemostat.tsv" "$root/trial"
cp -r "$project/tests/package" "$root/trial/consumers"
rm -f "$root"/trial/*-dbgsym_*.deb
packages=$(cd "$root" && ls trial/*.deb | sed 's,^,/,')
names=$(for package in $packages; do dpkg-deb --field "$root$package" Package; done)

echo "What the packages depend on, and a compiler"
inside apt-get update -q >>"$root.log" 2>&1
inside apt-get install -q -y --no-install-recommends g++ make cmake pkgconf >>"$root.log" 2>&1
# shellcheck disable=SC2086 # a list of words
others=$(inside apt-get install --simulate $packages | sed -n 's/^Inst \([^ ]*\).*/\1/p' |
  grep -v -x -F "$names")
echo "$others" | grep -q -x gnuplot-nox || { echo "gnuplot-nox is not recommended"; exit 1; }
# shellcheck disable=SC2086 # a list of words
inside apt-get install -q -y --no-install-recommends $others >>"$root.log" 2>&1
list_files >"$root.before"

echo "Installing" $names
# shellcheck disable=SC2086 # a list of words
inside apt-get install -q -y $packages >>"$root.log" 2>&1

echo "Following the links of the documents"
"$project/tests/package/links.py" "$root/usr/share/doc/ovik"

echo "Running the command"
inside ovik-tsne --version
inside ovik-tsne-mpi --version
inside ovik-tsne /trial/brauer2008_chemostat.tsv --perplexity 30 --quiet --out-dir /trial/results
echo "$table_md5  $root/trial/results/brauer2008_chemostat_tsne_30_0.csv" | md5sum --check
for plot in html png svg; do
  test -s "$root/trial/results/brauer2008_chemostat_tsne_30_0.$plot"
done

echo "Linking programs"
inside cmake -S /trial/consumers/find_package -B /trial/shared >>"$root.log"
inside cmake --build /trial/shared >>"$root.log"
inside /trial/shared/consumer
inside ldd /trial/shared/consumer | grep 'libovik\.so\.1 => /'
inside cmake -S /trial/consumers/find_package -B /trial/static -DLINKED=ovik::static >>"$root.log"
inside cmake --build /trial/static >>"$root.log"
inside /trial/static/consumer
inside sh -c 'c++ -std=c++20 /trial/consumers/consumer.cpp -o /trial/consumer \
  $(pkg-config --cflags --libs ovik)'
inside /trial/consumer

echo "Importing the Python package"
inside python3 -c '
import ovik
assert ovik.TSNE(perplexity=2.0).fit_transform([[float(row), row * 0.5] for row in range(9)]).shape == (9, 2)
assert ovik.gene_function("CDC28").name == "CDC28"
import importlib.metadata
assert importlib.metadata.version("ovik") == ovik.__version__
'

echo "Loading the R package"
inside R --vanilla --slave -e '
  map <- ovik::tsne(iris[, 1:4], 30, max_iter = 300)
  stopifnot(dim(map$Y) == c(150, 2), is.finite(map$Y), map$cost < 1)
'

echo "Removing"
# shellcheck disable=SC2086 # a list of words
inside apt-get purge -q -y $names >>"$root.log" 2>&1
list_files >"$root.after"
diff "$root.before" "$root.after" || { echo "The packages left files, or took some along"; exit 1; }
rm -rf --one-file-system "$root"
echo "Nothing is left behind"
