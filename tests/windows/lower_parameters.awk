# Writes the names of a member's parameters in lower case.
{
    while (match($0, /[ *)][A-Za-z_]+[,)]/)) {
        done = done substr($0, 1, RSTART) tolower(substr($0, RSTART + 1, RLENGTH - 1))
        $0 = substr($0, RSTART + RLENGTH)
    }
    print done $0
    done = ""
}
