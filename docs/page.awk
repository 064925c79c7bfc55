# Prepares a document as a page of the reference: drops comments, gives headings the anchors that
# links use (Doxygen before 1.9.8 makes none), and points links to pages of the reference. A link to
# a file that is not in the reference becomes its text.

function slug(title) {
  title = tolower(title)
  gsub(/[^a-z0-9_ -]/, "", title)
  gsub(/ /, "-", title)
  return title
}

function link(text, target,    name, parts) {
  name = target
  sub(/^.*\//, "", name)
  if (target ~ /^https?:/ || target ~ /\.md$/) return "[" text "](" target ")"
  if (target ~ /\.h$/) return "[" text "](@ref " name ")"
  if (target ~ /\.png$/) return "[" text "](" name ")"
  if (target !~ /#/) return text
  split(name, parts, "#")
  sub(/\.md$/, "", parts[1])
  return "[" text "](#" (parts[1] == "" ? page : parts[1]) "_" parts[2] ")"
}

function links(line,    before, middle, found) {
  before = ""
  while (match(line, /\[[^][]*\]\([^)]*\)/)) {
    found = substr(line, RSTART + 1, RLENGTH - 2)
    before = before substr(line, 1, RSTART - 1)
    line = substr(line, RSTART + RLENGTH)
    middle = index(found, "](")
    before = before link(substr(found, 1, middle - 1), substr(found, middle + 2))
  }
  return before line
}

FNR == 1 {
  page = FILENAME
  sub(/^.*\//, "", page)
  sub(/\.md$/, "", page)
}
/^<!--/ && !fenced { comment = 1 }
comment { if (/-->/) comment = 0; print ""; next }
/^ *```/ { fenced = !fenced }
fenced { print; next }
/^##+ / { title = $0; sub(/^#+ /, "", title); print links($0) " {#" page "_" slug(title) "}"; next }
{ print links($0) }
