# Says of the IDL what `orvo-client description` says of the type library.
function help(line) {
    return match(line, /helpstring\("[^"]*"\)/) ? substr(line, RSTART, RLENGTH) : ""
}
/^    \[ object/ { about = help($0) }
/^    interface [A-Za-z]+ :/ {
    name = $2
    print "interface", name, about
}
/^    typedef .*enum/ { print "enum", $NF, help($0) }
/^        \/\* [0-9]+ \*\// {
    slot = $2
    sub(/^ *\/\* [0-9]+ \*\/ /, "")
    # A type library keeps no name for the new value of a property.
    if (/propput/) sub(/ [A-Za-z_]+\);$/, " value);")
    gsub(/defaultvalue\(empty_text\)/, "defaultvalue(\"\")")
    print name, slot, $0
}
/^        emErr/ {
    sub(/,$/, "")
    print $1, $2, $3
}
/uuid\(.*helpstring/ { split($0, parts, /[()]/); id = parts[2] }
/^    coclass / { class = $2 }
/\[default\] interface/ { sub(/;/, ""); print "coclass", class, "{" id "}", $3 }
