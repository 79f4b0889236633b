#!/usr/bin/env bash
# Runs a program of the system below Wine, for a tshark.exe that waits for it:
#
#   run_below.sh MARKER PROGRAM [ARGUMENT...]             removes the marker at the program's end
#   run_below.sh port:PORT:TOKEN PROGRAM [ARGUMENT...]    connects three times: for the program's
#                                                         input, for its output, and for its status
#                                                         with what it wrote to its standard error
#
# A connection begins with the token, by which tshark.exe knows it.
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

meeting=$1
shift
case $meeting in
port:*)
    IFS=: read -r _ port token <<<"$meeting"
    for connection in 3 4 5; do
        eval "exec $connection<>/dev/tcp/127.0.0.1/$port"
        printf %s "$token" >&$connection
    done
    # tshark reads from pipes but from no socket.
    status=0
    errors=$("$@" < <(exec cat <&3 3>&- 4>&- 5>&-) 2>&1 >&4 3>&- 5>&-) || status=$?
    printf '%s\n%s' "$status" "$errors" >&5
    ;;
*)
    trap 'rm "$meeting"' EXIT
    # Wine would let it have its own standard error.
    "$@" 2>/dev/null
    ;;
esac
