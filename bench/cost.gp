# Plots what a tick costs against the rows of the mapping and against the boats in use, from the curves of report.awk.
#   gnuplot -e "curves='FILE'; plot='FILE'" bench/cost.gp
set terminal svg size 900,400 font "sans-serif,13" background rgb "white"
set output plot
set multiplot layout 1,2
set key top left Left reverse samplen 2
set grid linecolor rgb "#d0d0d0"
set ylabel "cost of a tick, µs"
set yrange [0:*]
set offsets 0, 0, graph 0.25, 0  # room for the key
set style line 1 linecolor rgb "#b03060" linewidth 2 pointtype 7 pointsize 0.5
set style line 2 linecolor rgb "#2060a0" linewidth 2 pointtype 7 pointsize 0.5
of(kind, other, is) = sprintf("<awk '$1 == \"%s\" && $%d == %d' %s", kind, other, is, curves)

set xlabel "rows to read and as many to show, one boat in use"
set xrange [0:420]
set xtics 100
plot of("TickAllChanged", 3, 1) using 2:4 with linespoints linestyle 1 title "every value changed", \
     of("TickAllQuiet", 3, 1) using 2:4 with linespoints linestyle 2 title "no value changed"

set xlabel "boats in use, 414 rows"
set xrange [0:102]
set xtics 20
plot of("TickAllChanged", 2, 414) using 3:4 with linespoints linestyle 1 title "every value changed", \
     of("TickAllQuiet", 2, 414) using 3:4 with linespoints linestyle 2 title "no value changed"
