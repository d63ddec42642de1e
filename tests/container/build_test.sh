#!/bin/sh
# Builds the image on a new Debian, runs the command in it as another user than root, and removes both.
#
# usage: build_test.sh PROJECT WORK_DIRECTORY; needs buildah and what new_debian.sh needs, and status 77
# says that it is missing. The directory is made anew, on a file system with 4 GB to spare.
set -eu
project=$1
work=$2
table_md5=9145c3adf35493d79941eab4412bd589

command -v buildah >/dev/null || { echo "SKIPPED: buildah is not installed"; exit 77; }
. "$project/tests/package/new_debian.sh"

images() {
  buildah --storage-driver vfs --root "$work/images" --runroot "$work/run" "$@"
}
rm -rf --one-file-system "$work"
mkdir -p "$work/results"
new_debian "$work/debian"

echo "Building the image"
base=$(images from scratch)
images add --quiet "$base" "$work/debian" / >>"$work/log"
images commit --quiet "$base" localhost/debian >>"$work/log" 2>&1
images rm "$base" >>"$work/log"
rm -rf --one-file-system "$work/debian"
images build --isolation chroot --build-arg BASE=localhost/debian --tag ovik-tsne "$project" \
  >>"$work/log" 2>&1 || { tail -n 20 "$work/log"; exit 1; }

echo "Running the command"
entry=$(images inspect --type image --format '{{.OCIv1.Config.Entrypoint}} {{.OCIv1.Config.User}}' ovik-tsne)
[ "$entry" = "[ovik-tsne] ovik" ] || { echo "Entry point and user are: $entry"; exit 1; }
container=$(images from localhost/ovik-tsne)
chmod 777 "$work/results"
inside() {
  images run --isolation chroot --volume "$project/data:/matrices:ro" --volume "$work/results:/data" \
    "$container" -- "$@"
}
[ "$(inside id -un)" = ovik ] || { echo "It runs as another user"; exit 1; }
inside ovik-tsne --version
inside ovik-tsne /matrices/brauer2008_chemostat.tsv --perplexity 30 --quiet >"$work/said" 2>&1
[ ! -s "$work/said" ] || { cat "$work/said"; exit 1; }
echo "$table_md5  $work/results/brauer2008_chemostat_tsne_30_0.csv" | md5sum --check
for plot in html png svg; do
  test -s "$work/results/brauer2008_chemostat_tsne_30_0.$plot"
done
images rm "$container" >>"$work/log"
images rmi --all >>"$work/log"
rm -rf --one-file-system "$work"
