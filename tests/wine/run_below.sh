#!/usr/bin/env bash
# Runs a program of the system below Wine, for a tshark.exe that waits for it:
#
#   run_below.sh MARKER PROGRAM [ARGUMENT...]             removes the marker at the program's end
#   run_below.sh port:PORT:TOKEN PROGRAM [ARGUMENT...]    connects twice: for the program's input,
#                                                         and for its output
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
    exec 3<>"/dev/tcp/127.0.0.1/$port" 4<>"/dev/tcp/127.0.0.1/$port"
    printf %s "$token" >&3
    printf %s "$token" >&4
    # tshark reads from pipes but from no socket. None but the program may hold what it prints to,
    # whose end is its end.
    exec "$@" < <(exec cat <&3 3>&- 4>&-) >&4 3>&- 4>&-
    ;;
*)
    trap 'rm "$meeting"' EXIT
    "$@"
    ;;
esac
