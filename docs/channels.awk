# Turns the output of `halyrigctl channels --tsv` into the table of channels.md.
BEGIN {
    FS = "\t"
    print "| id | name | long name | type | range | stale after | decimals | short index | flags |"
    print "|---|---|---|---|---|---|---|---|---|"
}
NR > 1 {
    long = $3 == $2 ? "" : $3
    range = $5 == $6 ? "" : $5 " to " $6
    stale = $7 == 0 ? "never" : $7 " s"
    decimals = $8 == 255 ? "-" : $8
    short = $9 == 32767 ? "" : $9
    printf "| %s | %s | %s | %s | %s | %s | %s | %s | %s |\n", $1, $2, long, $4, range, stale, decimals, short, $10
}
