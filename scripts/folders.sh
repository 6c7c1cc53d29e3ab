# Sourced by the other scripts. Sets `root`, the clone, and `builds`, the folder for what is built: in the clone, or in
# the user's cache where the clone is somebody else's. Starts no process: scripts/lmf comes through here at every call.
root=${BASH_SOURCE[0]}
[[ $root = /* ]] || root=$PWD/$root
root=${root%/scripts/*}
builds=$root/build
if [ ! -w "$builds" ] && { [ -e "$builds" ] || [ ! -w "$root" ]; }; then
    builds=${XDG_CACHE_HOME:-$HOME/.cache}/lumenfold-filters/${root//\//_}
fi
