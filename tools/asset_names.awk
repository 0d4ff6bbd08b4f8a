# Writes the header of asset constants from the asset tables: column 1 is the index, column 2 the name.
BEGIN {
  FS = "\t"
  print "#pragma once"
  print "// Asset indices. Made from the tables in assets/; change them there."
  print "namespace vesk {"
}
FNR == 1 { print ""; next }
{ printf "inline constexpr int %s = %d;\n", $2, $1 }
END { print "\n} // namespace vesk" }
