# shellcheck shell=sh
# Shared by the scripts: they read the tree's file, whose name the host passes on.

# node PATH: prints the text of a node; nothing when there is none.
node() {
    awk -v path="$1=" 'index($0, path) == 1 { print substr($0, length(path) + 1); exit }' "$FLAT_TREE"
}

# settings NAME PATH...: where a device would hand its settings on, this one writes them into a file.
settings() {
    file=$(node /bramble/tempdirecory)/$1
    shift
    for path; do
        printf '%s=%s\n' "${path##*/}" "$(node "$path")"
    done >"$file"
}
