# Turns what the benchmarks print in CSV into a table in Markdown: the median, the spread (the middle half of the repetitions), and how
# many times its limit a value costs. Writes the curves of the plot to the file CURVES, and the figures that have a limit of their
# own to the file FIGURES.
#   awk -f bench/report.awk -v curves=CURVES -v figures=FIGURES CSV...
function quantile(list, count, part,    at) {
    at = 1 + (count - 1) * part
    return list[int(at)] + (at - int(at)) * (list[int(at) + (at > int(at))] - list[int(at)])
}
function shown(ns) { return ns < 1e3 ? sprintf("%.1f ns", ns) : ns < 1e6 ? sprintf("%.1f µs", ns / 1e3) : sprintf("%.2f ms", ns / 1e6) }
function ratio(name) { return median[name] / values[name] / (median[limit[name]] / values[limit[name]]) }

BEGIN {
    FS = ","
    nanoseconds["ns"] = 1
    nanoseconds["us"] = 1e3
    nanoseconds["ms"] = 1e6
}
/^"/ && !/_(mean|median|stddev|cv)"/ {
    gsub(/"|\/iterations:[0-9]*/, "")
    if (!($1 in times)) order[++names] = $1
    times[$1, ++times[$1]] = $4 * nanoseconds[$5]
    values[$1] = $7 == "" ? 1 : int($7 * $4 * nanoseconds[$5] / 1e9 + 0.5)
    limit[$1] = $8 == "" ? "PhysicalLimit" : $8
}
END {
    for (i = 1; i <= names; ++i) {
        name = order[i]
        delete sorted
        for (n = times[name]; n > 0; --n) {  # by insertion
            for (k = times[name] - n; k > 0 && sorted[k] > times[name, n]; --k) sorted[k + 1] = sorted[k]
            sorted[k + 1] = times[name, n]
        }
        median[name] = quantile(sorted, times[name], 0.5)
        low[name] = quantile(sorted, times[name], 0.25)
        spread[name] = quantile(sorted, times[name], 0.75) - low[name]
    }
    print "| benchmark | median | spread | values | a value costs |\n|---|--:|--:|--:|--:|"
    fflush()  # before what is sorted
    for (i = 1; i <= names; ++i) {
        name = order[i]
        if (split(name, part, /[\/:]/) == 5) {
            printf "%s %d %d %g\n", part[1], part[3], part[5], median[name] / 1e3 | ("sort -k 1,1 -k 2n -k 3n >" curves)
            continue
        }
        cost = name in limit && limit[name] != name && !(name ~ /^Bare/) ? sprintf("%.2f × %s", ratio(name), limit[name]) : ""
        printf "| %s | %s | %.1f %% | %d | %s |\n", name, shown(median[name]), 100 * spread[name] / median[name], values[name], cost | "sort"
    }
    # By the lower quartiles: other programs take more from a publication, which has more in the caches, than from its limit.
    printf "publication %.3f\nstart %.3f\n", low["PublishOverAllChannels"] / low["PhysicalLimit"],
        (median["StartToFirstTick"] - median["BareProcess"]) / 1e6 >figures
}
