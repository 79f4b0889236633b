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
    # What goes on running must not keep the streams of the tests open.
    exec 2>/dev/null
    # tshark reads from pipes but from no socket.
    exec 6< <(exec cat <&3 3>&- 4>&- 5>&-)
    input=$!
    # Of a tshark.exe that was ended, Wine may keep the connection for the input, but not the last.
    (
        read -r -u 5
        kill "$input"
    ) 3>&- 4>&- 6<&- &
    watch=$!
    status=0
    errors=$("$@" <&6 2>&1 >&4 3>&- 4>&- 5>&- 6<&-) || status=$?
    kill "$watch" "$input"
    printf '%s\n%s' "$status" "$errors" >&5
    ;;
*)
    trap 'rm "$meeting"' EXIT
    # Wine would let it have its own standard error.
    "$@" 2>/dev/null
    ;;
esac
