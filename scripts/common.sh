# Shared by the scripts; sourced, not run. Leaves the shell in the root of the project.

cd "$(dirname "$0")/.."

build_packages="g++ make cmake libgoogle-glog-dev libcli11-dev nlohmann-json3-dev libxxhash-dev zlib1g-dev
  libpugixml-dev libminizip-dev libhdf5-dev gnuplot-nox"
test_packages="libgtest-dev libgmock-dev librapidcheck-dev libbenchmark-dev libmpfr-dev python3
  chromium fonts-dejavu-core fonts-liberation2 groff-base locales poppler-utils
  pybind11-dev python3-dev python3-numpy python3-pip python3-pytest python3-setuptools python3-venv
  python3-wheel python3-yaml mypy python3-anndata python3-h5py python3-igraph python3-leidenalg
  python3-matplotlib python3-pandas python3-scipy python3-sklearn
  r-base-core snakemake
  r-cran-cpp11 r-cran-testthat r-cran-knitr r-cran-markdown r-bioc-summarizedexperiment
  pkgconf clang-14 clang-format-14 clang-tidy-14 libomp-14-dev libclang-rt-14-dev"
mpi_packages="libopenmpi-dev openmpi-bin"
# A machine may have them from elsewhere than Debian.
command -v npm >/dev/null || test_packages="$test_packages nodejs npm"

# quietly WHAT COMMAND...: says what is done; the output of the command shows only if it fails.
quietly() {
  what=$1
  shift
  printf '%s ...\n' "$what"
  output=$(mktemp)
  if ! "$@" >"$output" 2>&1; then
    cat "$output" >&2
    rm -f "$output"
    printf '\nFailed: %s (%s)\n' "$what" "$*" >&2
    exit 1
  fi
  rm -f "$output"
}

# install_packages PACKAGE...: installs with apt what is missing.
install_packages() {
  missing=""
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
      missing="$missing $package"
  done
  [ -n "$missing" ] || return 0
  if [ "$(id -u)" != 0 ]; then
    printf 'These packages are missing; install them as root:\n  apt-get install%s\n' "$missing" >&2
    exit 1
  fi
  export DEBIAN_FRONTEND=noninteractive
  quietly "Reading the package lists" apt-get update -q
  # shellcheck disable=SC2086 # a list of words
  quietly "Installing$missing" apt-get install -q -y --no-install-recommends $missing
}
