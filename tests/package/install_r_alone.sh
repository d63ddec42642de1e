#!/bin/sh
# Without the library the installation of the R package ends with what is to be done.
#
# usage: install_r_alone.sh R SOURCES WORK_DIR
set -eu
r=$1
sources=$2
work=$3

rm -rf "$work"
mkdir -p "$work/library"
cp -R "$sources" "$work/ovik"
unset OVIK_CFLAGS OVIK_LIBS
if PKG_CONFIG_LIBDIR=$work "$r" CMD INSTALL --library="$work/library" "$work/ovik" >"$work/log" 2>&1; then
  echo "The package was installed without its library"
  exit 1
fi
grep 'The library ovik was not found: install it, and pkg-config.' "$work/log"
if OVIK_LIBS=-lnone "$r" CMD INSTALL --library="$work/library" "$work/ovik" >"$work/log" 2>&1; then
  echo "The package was installed with another library"
  exit 1
fi
grep 'No program can be made with the library ovik by OVIK_CFLAGS and OVIK_LIBS' "$work/log"
test ! -e "$work/library/ovik"
