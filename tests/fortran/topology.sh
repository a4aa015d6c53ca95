#!/bin/sh
# usage: topology.sh PROGRAM
# Every iteration of a small run agrees with compliance and change of an independent computation: an
# element in closed form, dense equations solved with pivoting, a filter over all pairs of elements.
set -eu
expected='9.037123850708e+02 0.200000000 6.122858149531e+02 0.189036605
  4.752117559990e+02 0.166367140 4.315308356074e+02 0.126706784
  4.197533791447e+02 0.115220601 4.100906452660e+02 0.115962982
  4.078092834142e+02 0.109094557 4.030388974206e+02 0.104697249
  4.029551584332e+02 0.098688265 3.998554484020e+02 0.092924792
  4.004968810622e+02 0.087468502 3.981577081541e+02 0.081766215'
"$1" 12 4 12 memory small | awk -v expected="$(echo $expected)" '
  function far(a, b, most) { return a - b > most || b - a > most }
  BEGIN { iterations = split(expected, values) / 2 }
  /^ *[0-9]/ {
    compliance = values[2 * ++count - 1]
    if ($1 != count || far($2, compliance, 1e-7 * compliance) || far($3, 0.5, 1e-4) ||
        far($4, values[2 * count], 1e-4)) { print "not as expected: " $0; wrong = 1 }
  }
  END { exit wrong || count != iterations }'
