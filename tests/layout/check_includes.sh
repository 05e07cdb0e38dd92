#!/usr/bin/env bash
# Dependencies go one way: each folder of src/ includes only itself and the folders before it.
set -euo pipefail
cd "$(dirname "$0")/../.."
order=(base run geometry freesurface rankine green assembly solve boundary input results)
bad=0
check() { # check FILE FOLDER...: the file may include only these folders
    local file=$1 folder
    shift
    while read -r folder; do
        case " $* " in
        *" $folder "*) ;;
        *)
            echo "$file includes $folder/"
            bad=1
            ;;
        esac
    done < <(sed -nE 's|^#include "([a-z]+)/.*|\1|p' "$file")
}
allowed=()
for folder in "${order[@]}"; do
    allowed+=("$folder")
    for file in src/"$folder"/*.?pp src/"$folder"/tables/*.?pp; do
        [ -f "$file" ] || continue
        case "$file" in
        src/run/driver.* | src/run/period_loop.* | src/run/wdd_*) check "$file" "${order[@]}" ;; # the roof of the house
        src/freesurface/*) check "$file" base run geometry freesurface ;;
        src/rankine/*) check "$file" base run geometry rankine ;;
        src/results/*) check "$file" base run geometry assembly green results ;;
        *) check "$file" "${allowed[@]}" ;;
        esac
    done
done
for file in src/post/*.?pp; do
    check "$file" base post
done
exit $bad
