# Sourced by the scripts of this folder: where fetched and built things are kept, outside the
# repository, and how one of them is made.

kelto_cache=${KELTO_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/kelto}

# make_once NAME SCRIPT [PACKAGE ...]: runs `SCRIPT FOLDER` unless $kelto_cache/NAME stands from this
# very SCRIPT, this file and these versions of the PACKAGEs that it uses. A folder gets its name
# only when it is complete, so that an interrupted set-up is simply done again.
make_once() {
  name=$1 script=$2
  shift 2
  folder=$kelto_cache/$name
  mark=$({
    cat "$script" "$(dirname "$script")/cache.sh"
    [ $# -eq 0 ] || dpkg-query -W "$@"
  } | cksum)
  mkdir -p "$kelto_cache"
  (
    flock 9
    [ "$(cat "$folder/.made-by" 2>/dev/null || true)" != "$mark" ] || exit 0
    echo "setup: making $folder" >&2
    fresh=$(mktemp -d "$kelto_cache/$name.XXXXXX")
    trap 'rm -rf "$fresh"' EXIT
    chmod 755 "$fresh"
    sh "$script" "$fresh"
    echo "$mark" >"$fresh/.made-by"
    rm -rf "$folder"
    mv "$fresh" "$folder"
    trap - EXIT
  ) 9>"$kelto_cache/$name.lock"
}

# debian_mirror: the archive that this machine installs from. Only its release pocket is used, as
# the indexes of the others may lack this architecture's versions.
# shellcheck source=/dev/null
debian_release=$(. /etc/os-release && echo "$VERSION_CODENAME")
debian_mirror() {
  # shellcheck disable=SC2016  # apt's own variable
  apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' \
    "Codename: $debian_release" | sort -u | head -n 1
}

# private_apt STATE ARGUMENT...: apt-get with lists, downloads and sources of its own under STATE,
# which needs no root and leaves the system's alone.
private_apt() {
  state=$1
  shift
  mkdir -p "$state/lists/partial" "$state/cache/archives/partial"
  : >>"$state/status"
  apt-get -qq -o Dir::State="$state" -o Dir::State::status="$state/status" \
    -o Dir::Cache="$state/cache" -o Dir::Etc::sourcelist="$state/sources.list" \
    -o Dir::Etc::sourceparts=/dev/null -o APT::Sandbox::User= -o Debug::NoLocking=1 "$@"
}
