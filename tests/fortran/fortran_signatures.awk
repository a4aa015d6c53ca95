# Prints every entry point that the Fortran bindings declare: name, arguments. An address that
# Fortran passes by value is an object or data, which look alike.
function kind(attributes,    in_only, type) {
  in_only = attributes ~ /intent\(in\)/
  if (attributes ~ /type\(c_ptr\)/) return attributes ~ /value/ ? "address" : "handle"
  if (attributes ~ /qelta_descriptor_layout/) return "descriptor"
  if (attributes ~ /qelta_pattern_layout/) return "pattern"
  if (attributes ~ /qelta_descriptor_list_layout/) return "list"
  if (attributes ~ /character/) return in_only ? "text" : "buffer"
  match(attributes, /c_[a-z0-9_]+/)
  type = substr(attributes, RSTART + 2, RLENGTH - 2)
  sub(/_t$/, "", type)
  return attributes ~ /value/ ? type : type (in_only ? "-in" : "-out")
}
function trim(text) { gsub(/^ +| +$/, "", text); return text }
function without_sizes(text) { gsub(/\([^)]*\)/, "", text); return text }
{ sub(/!.*/, "") }
/&$/ { joined = joined substr($0, 1, length($0) - 1); next }
{
  statement = joined $0
  joined = ""
  gsub(/  +/, " ", statement)
  statement = trim(statement)
  sub(/^pure /, "", statement)
}
statement ~ /^subroutine / {
  match(statement, /\(.*\) bind/)
  count = split(substr(statement, RSTART + 1, RLENGTH - 7), argument, ",")
  name = substr(statement, 12, RSTART - 12)
  bound = match(statement, /name='[^']*'/) ? substr(statement, RSTART + 6, RLENGTH - 7) : "none"
  if (bound != name) print name " is bound to " bound
  delete kinds
}
name != "" && statement ~ /::/ {
  split(statement, half, "::")
  variables = split(without_sizes(half[2]), variable, ",")
  for (i = 1; i <= variables; ++i) kinds[trim(variable[i])] = kind(half[1])
}
statement ~ /^end subroutine/ {
  line = name
  for (i = 1; i <= count; ++i) line = line " " kinds[trim(argument[i])]
  print line
  name = ""
}
