#!/bin/sh
# Builds the R package with its vignette and has R check it: errors, warnings and notes fail.
#
# usage: check.sh R SOURCES WORK_DIR CFLAGS LIBS
set -eu
r=$1
sources=$2
work=$3
export OVIK_CFLAGS="$4" OVIK_LIBS="$5"
# What R would look up in a network, or by programs that are not there.
export _R_CHECK_FORCE_SUGGESTS_=false _R_CHECK_CRAN_INCOMING_=false _R_CHECK_RD_VALIDATE_RD2HTML_=false
export LC_ALL=C.UTF-8

rm -rf "$work"
mkdir -p "$work"
cd "$work"
# No repository in a network is asked for packages.
mkdir -p src/contrib
: >src/contrib/PACKAGES
echo "options(repos = 'file://$work')" >profile
export R_PROFILE_USER="$work/profile"
"$r" CMD build "$sources"
"$r" CMD check --no-manual ovik_*.tar.gz
grep -x 'Status: OK' ovik.Rcheck/00check.log
# The vignette has its pictures, and fetches nothing.
page=ovik.Rcheck/ovik/doc/brauer.html
[ "$(grep -c 'src="data:image/png' "$page")" = 2 ]
if grep -E '(src|href)="?http|<script|@import' "$page"; then
  exit 1
fi
