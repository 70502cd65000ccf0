# Reads the debugging information of LayoutProbe.cpp (readelf --debug-dump=info, demangled) and
# prints each public class: its base and size in bytes, its virtual operations with their slots, and
# its fields with their offsets, both as declared. A destructor carries no slot there: it takes the
# two places that the slots around it leave open.

function value(line) {
  sub(/^[^:]*: */, "", line)          # the attribute's name
  sub(/^\([a-z0-9_]+\) */, "", line)  # its form, where readelf prints it
  sub(/[ \t]+$/, "", line)
  return line
}

function text(line) {
  line = value(line)
  sub(/^\([^)]*\): /, "", line)       # where the string lies
  return line
}

function is_public(class) {
  if (class !~ /^(KVL|MRB|LibraryHandler)/) return 0
  return class !~ /</ || class ~ /LayoutProbe/ || class ~ /^KVLTypeConversion</
}

# What is known of the entry read last goes to the class around it.
function finish(   class, line) {
  class = owner
  if (tag == "inheritance") bases[class] = bases[class] (bases[class] == "" ? "" : ", ") target
  if (tag == "member") {
    if (name ~ /^_vptr/) name = "(virtual table)"
    if (name == "") name = "(unnamed)"
    line = is_static ? "  static      " name : sprintf("  field   %3d %s", offset, name)
    bodies[class] = bodies[class] line "\n"
  }
  if (tag == "subprogram" && is_virtual) {
    line = sprintf("  virtual %3s %s", slot, linkage)
    bodies[class] = bodies[class] line "\n"
  }
  tag = ""
}

/^ *<[0-9a-f]+><[0-9a-f]+>: Abbrev Number/ {
  finish()
  match($0, /<[0-9a-f]+></)
  depth = substr($0, RSTART + 1, RLENGTH - 3) + 0
  rest = substr($0, RSTART + RLENGTH)
  id = "0x" substr(rest, 1, index(rest, ">") - 1)
  for (d in path) if (d + 0 >= depth) delete path[d]
  owner = (depth - 1) in path ? path[depth - 1] : ""
  tag = $0
  if (!sub(/^.*\(DW_TAG_/, "", tag)) { tag = ""; next }
  sub(/\).*$/, "", tag)
  name = offset = slot = linkage = target = ""
  is_virtual = is_static = 0
  if (tag ~ /^(class|structure|union)_type$/) {
    path[depth] = (owner == "" ? "" : owner "::") "(unnamed)"
  }
}

/DW_AT_name / {
  name = text($0)
  if (tag ~ /^(class|structure|union)_type$/) {
    path[depth] = (owner == "" ? "" : owner "::") name
    classOf[id] = path[depth]
  }
}
/DW_AT_byte_size / {
  if (tag ~ /^(class|structure|union)_type$/ && is_public(path[depth])) {
    sizes[path[depth]] = value($0)
    if (tag == "union_type") kinds[path[depth]] = "union"
  }
}
/DW_AT_data_member_location/ { offset = value($0) }
/DW_AT_external/ { is_static = 1 }
/DW_AT_linkage_name/ { linkage = text($0) }
/DW_AT_virtuality/ { is_virtual = value($0) ~ /^[12]/ }
/DW_AT_vtable_elem_location/ {
  slot = $0
  sub(/^.*DW_OP_constu: /, "", slot)
  sub(/\).*$/, "", slot)
}
/DW_AT_type / {
  target = value($0)
  sub(/^</, "", target)
  sub(/>.*$/, "", target)
}

END {
  finish()
  n = 0
  for (class in sizes) {
    if (bodies[class] == "" && bases[class] == "") continue
    for (k = ++n; k > 1 && names[k - 1] > class; --k) names[k] = names[k - 1]
    names[k] = class
  }
  for (k = 1; k <= n; ++k) {
    class = names[k]
    base = bases[class] == "" ? "" : " : " classOf[bases[class]]
    kind = kinds[class] == "" ? "class" : kinds[class]
    if (k > 1) print ""
    print kind " " class base ", " sizes[class] " bytes"
    printf "%s", bodies[class]
  }
}
