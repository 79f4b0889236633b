# Sourced: gives the arguments that are paths as Wine's cmd writes them, such as C:\a\b, in the
# terms of the system below. Elsewhere there are none.
for argument; do
    shift
    case $argument in
    [A-Za-z]:[\\/]*)
        drive=$(printf %s "${argument%%:*}" | tr '[:upper:]' '[:lower:]')
        argument=$WINEPREFIX/dosdevices/$drive:$(printf %s "${argument#*:}" | tr '\\' /)
        ;;
    esac
    set -- "$@" "$argument"
done
