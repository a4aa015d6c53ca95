# Prints every entry point that C headers declare as in entry_points.txt: unit, name, arguments.
function kind(argument,    type, stars, pointsToConst) {
  stars = gsub(/\*/, "", argument)
  pointsToConst = sub(/^ *const /, "", argument)
  split(argument, word, " ")
  type = word[1]
  if (stars == 2) return "handle"
  if (type == "FED_DataDescriptor") return "descriptor"
  if (type == "FED_DataDescriptorPattern") return "pattern"
  if (type == "FED_DataDescriptorList") return "list"
  if (type ~ /^FED_/) return "object"
  if (type == "char") return pointsToConst ? "text" : "buffer"
  sub(/_t$/, "", type)
  sub(/^void$/, "data", type)
  return stars == 0 ? type : type (pointsToConst ? "-in" : "-out")
}
FNR == 1 { unit = FILENAME; sub(/.*\//, "", unit); sub(/\.h$/, "", unit) }
/^QELTA_(FORTRAN_)?EXPORT/ { declaration = "" ; inside = 1 }
inside { declaration = declaration " " $0 }
inside && /;/ {
  inside = 0
  gsub(/  +/, " ", declaration)
  match(declaration, /[A-Za-z_]+_F\(/)
  line = unit " " substr(declaration, RSTART, RLENGTH - 1)
  arguments = substr(declaration, RSTART + RLENGTH)
  sub(/\).*/, "", arguments)
  count = split(arguments, list, ",")
  for (i = 1; i <= count; ++i) line = line " " kind(list[i])
  print line
}
