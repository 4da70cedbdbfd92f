# Compares counts of instructions, the second file, with those that are kept, the first. Status 1 if one has risen by more than 5 %, or is
# not kept. Counts of other versions of the tools, which the first lines name, are not compared.
#   awk -f bench/compare.awk bench/instructions.txt COUNTS
FNR == 1 {
    tools[++file] = substr($0, 3)
    if (file == 1) next
    if (tools[1] != tools[2]) {
        print ARGV[1] " was counted with " tools[1] ", this is " tools[2] ": not compared. Where the code is as it was then, `scripts/bench --keep`"
        print "makes them comparable."
        exit
    }
    print "| workload | instructions | kept | change |\n|---|--:|--:|--:|"
    next
}
file == 1 { kept[$1] = $2 }
file == 2 && !($1 in kept) {
    printf "| %s | %d | | **not kept** |\n", $1, $2
    wrong = wrong " " $1
}
file == 2 && $1 in kept {
    change = 100 * ($2 / kept[$1] - 1)
    printf "| %s | %d | %d | %+.1f %%%s |\n", $1, $2, kept[$1], change, (change > 5 ? " **risen**" : "")
    if (change > 5) wrong = wrong " " $1
}
END {
    if (wrong == "") exit
    print "\nNot kept, or over 5 % above " ARGV[1] ":" wrong ". Find what needs them; if it is worth that, `scripts/bench --keep` renews the file."
    exit 1
}
