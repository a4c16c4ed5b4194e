# How the Windows checks start and end programs under Wine. Sourced by `run`.

# prepare_wine PREFIX: everything that follows runs in this Wine prefix, which is made where it does
# not exist.
prepare_wine() {
    export WINEPREFIX=$1 WINEDEBUG=-all LC_ALL=C.UTF-8
    # winemenubuilder.exe would put menus and file types into the user's own folders.
    export WINEDLLOVERRIDES='mscoree,mshtml=;winedbg.exe=d;winemenubuilder.exe=d'
    [[ -f $WINEPREFIX/system.reg ]] || timeout 300 wine wineboot -i >/dev/null 2>&1 </dev/null
}

# Ends what still runs in the prefix, and nothing else.
end_wine() { wineserver -k >/dev/null 2>&1 || true; }

# A path of this system as programs under Wine take it.
wine_path() { echo "Z:${1//\//\\}"; }

# in_wine PROGRAM [argument...]: ends with the program's code, 124 when it takes too long. What it
# prints comes once it has ended. Wine fails to start a program once in a thousand times, before
# anything of it has run; then it is started again.
in_wine() {
    local said=$WINEPREFIX/said code attempt
    for attempt in 1 2 3; do
        code=0
        timeout 120 wine "$@" </dev/null >"$said" 2>&1 || code=$?
        grep -q '^ShellExecuteEx failed: Internal error' "$said" || break
        echo "Wine could not start $1 (attempt $attempt)" >&2
    done
    cat "$said"
    return "$code"
}

# What a text program printed, with this system's line ends.
in_wine_text() { in_wine "$@" 2>&1 | tr -d '\r'; }

# registry FILE [ROOT]: the class registry, or another part, one line for each value:
# "key|name|data". Nothing of a part that is not there; fails where it cannot be read.
registry() {
    local file=$1.reg root=${2:-HKEY_CLASSES_ROOT} said
    if ! said=$(in_wine reg export "$root" "$(wine_path "$file")" /y 2>&1); then
        : >"$1"
        [[ $said != *'Unable to find the specified registry key'* ]] || return 0
        echo "the registry's $root cannot be read: $said" >&2
        return 1
    fi
    iconv -f UTF-16 -t UTF-8 "$file" | tr -d '\r' | awk -v skipped=$((${#root} + 3)) '
        /^\[/ { key = substr($0, skipped, length($0) - skipped); print key "||"; next }
        /^@=/ { print key "|@|" substr($0, 3); next }
        /^"/ { at = index($0, "="); print key "|" substr($0, 1, at - 1) "|" substr($0, at + 1) }' \
        >"$1"
}
