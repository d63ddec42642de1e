# Sourced: new_debian ROOT makes the directory ROOT anew with the smallest Debian in it, and leaves what
# its making said in ROOT.log. Debian comes from where this machine's own apt has it. Needs root and
# debootstrap; without, the script that sources this ends with status 77.

[ "$(id -u)" = 0 ] || { echo "SKIPPED: only root can make a Debian root"; exit 77; }
command -v debootstrap >/dev/null || { echo "SKIPPED: debootstrap is not installed"; exit 77; }
# shellcheck disable=SC2016 # variables of apt
source=$(apt-get indextargets --format '$(SITE) $(CODENAME) $(COMPONENT) $(ORIGIN)' \
  'Created-By: Packages' | grep -m 1 ' [a-z]* main Debian$') ||
  { echo "SKIPPED: apt knows no mirror of Debian"; exit 77; }
mirror=${source%% *}
codename=$(echo "$source" | cut -d ' ' -f 2)

new_debian() {
  echo "A new $codename from $mirror"
  rm -rf --one-file-system "$1"
  mkdir -p "$1"
  debootstrap --variant=minbase "$codename" "$1" "$mirror" >"$1.log" 2>&1 ||
    { tail -n 20 "$1.log"; exit 1; }
  # What this machine needs to reach the mirror.
  certificates=${SSL_CERT_FILE:-/etc/ssl/certs/ca-certificates.crt}
  if [ -f "$certificates" ]; then
    mkdir -p "$1/etc/ssl/certs"
    cp "$certificates" "$1/etc/ssl/certs/ca-certificates.crt"
  fi
  apt-config dump Acquire::http::Proxy Acquire::https::Proxy >"$1/etc/apt/apt.conf.d/90proxy"
}
