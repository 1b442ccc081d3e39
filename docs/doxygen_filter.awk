# Shows Doxygen a header as people read it, line for line:
# - A comment speaks for all declarations below it up to the next blank line: each after the first
#   gets a copy.
# - A deleted function is not there to be called, and is left out.

function indent(line) {
  match(line, /^ */)
  return RLENGTH
}

/^ *\/\/\/( |$)/ {
  if (!in_comment) comment = ""
  in_comment = 1
  column = indent($0)
  sub(/^ *\/\/\/ ?/, "")
  comment = comment " " $0
  printf "%*s/// %s\n", column, "", $0
  next
}

/^ *$/ && statement == "" { comment = "" }

{
  first = statement == "" && !in_comment && indent($0) == column && comment != "" &&
          $0 !~ /^ *([]})#]|\/\/|public:|private:|protected:|static_assert|friend class)/
  if (first) $0 = "/**" comment " */ " $0
  in_comment = 0
  statement = statement $0 "\n"
  if ($0 !~ /([;{}:]|\/\/.*|^ *|^#.*)$/) next  # it goes on
  if (statement ~ /= delete;\n$/) gsub(/[^\n]/, "", statement)
  printf "%s", statement
  statement = ""
}
