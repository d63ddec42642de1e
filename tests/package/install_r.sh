#!/bin/sh
# Installs the R package with what pkg-config says of an installed tree, and makes a map with it.
#
# usage: install_r.sh R SOURCES TREE WORK_DIR
set -eu
r=$1
sources=$2
tree=$3
work=$4

rm -rf "$work"
mkdir -p "$work/library"
# R compiles where the sources lie.
cp -R "$sources" "$work/ovik"
rm -f "$work/ovik/src/Makevars" "$work"/ovik/src/*.o "$work"/ovik/src/*.so
pc_file=$(find "$tree" -name ovik.pc)
export PKG_CONFIG_PATH="${pc_file%/*}" R_LIBS="$work/library"
unset OVIK_CFLAGS OVIK_LIBS
"$r" CMD INSTALL --library="$work/library" "$work/ovik"
"$r" --vanilla --slave -e '
  map <- ovik::tsne(matrix(sin(1:400), 100), 10, max_iter = 20)
  stopifnot(dim(map$Y) == c(100, 2), is.finite(map$Y))
'
