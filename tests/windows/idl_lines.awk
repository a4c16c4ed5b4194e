# Says of the IDL what `orvo-client description` says of the type library.
# Of two members whose names differ in case only, the library keeps the spelling that stands here.
/^        long [A-Za-z]+;$/ { name = substr($2, 1, length($2) - 1); spelling[tolower(name)] = name }
/^    interface [A-Za-z]+ :/ { name = $2 }
/^        \/\* [0-9]+ \*\// {
    slot = $2
    sub(/^ *\/\* [0-9]+ \*\/ /, "")
    # A type library keeps no name for the new value of a property.
    if (/propput/) sub(/ [A-Za-z_]+\);$/, " value);")
    match($0, /HRESULT [A-Za-z0-9_]+/)
    member = substr($0, RSTART + 8, RLENGTH - 8)
    if (tolower(member) in spelling)
        $0 = substr($0, 1, RSTART + 7) spelling[tolower(member)] substr($0, RSTART + RLENGTH)
    print name, slot, $0
}
/^        emErr/ {
    sub(/,$/, "")
    print $1, $2, $3
}
/uuid\(.*helpstring/ { split($0, parts, /[()]/); id = parts[2] }
/^    coclass / { class = $2 }
/\[default\] interface/ { sub(/;/, ""); print "coclass", class, "{" id "}", $3 }
