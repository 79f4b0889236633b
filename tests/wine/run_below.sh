#!/bin/sh
# Runs a program of the system below Wine, then removes the marker:
#
#   run_below.sh MARKER PROGRAM [ARGUMENT...]
#
# Arguments that are paths of Wine's (Z:\a\b) are given in the terms of the system below (/.../a/b).
for argument; do
    shift
    case $argument in
    [A-Za-z]:[\\/]*)
        drive=$(printf %s "${argument%%:*}" | tr '[:upper:]' '[:lower:]')
        argument=$WINEPREFIX/dosdevices/$drive:$(printf %s "${argument#*:}" | tr '\134' /)
        ;;
    esac
    set -- "$@" "$argument"
done

marker=$1
shift
trap 'rm "$marker"' EXIT
"$@"
