# Renders a document as the body of an HTML page: headings, paragraphs, lists, tables, code blocks and, within a line,
# code, bold text and links. Drops comments. A link to another document becomes its text, because the page is shipped alone.

function slug(title) {
  title = tolower(title)
  gsub(/[^a-z0-9_ -]/, "", title)
  gsub(/ /, "-", title)
  return title
}

function escape(text) {
  gsub(/&/, "\\&amp;", text)
  gsub(/</, "\\&lt;", text)
  gsub(/>/, "\\&gt;", text)
  return text
}

function link(text, target) {
  return target ~ /^(#|https?:)/ ? "<a href=\"" target "\">" text "</a>" : text
}

# Code is not rendered further.
function inline(text,    html, part, middle) {
  html = ""
  while (match(text, /`[^`]+`|\*\*[^*]+\*\*|\[[^][]*\]\([^)]*\)/)) {
    part = substr(text, RSTART, RLENGTH)
    html = html escape(substr(text, 1, RSTART - 1))
    text = substr(text, RSTART + RLENGTH)
    if (part ~ /^`/) {
      html = html "<code>" escape(substr(part, 2, length(part) - 2)) "</code>"
    } else if (part ~ /^\*/) {
      html = html "<strong>" inline(substr(part, 3, length(part) - 4)) "</strong>"
    } else {
      middle = index(part, "](")
      html = html link(inline(substr(part, 2, middle - 2)), substr(part, middle + 2, length(part) - middle - 2))
    }
  }
  return html escape(text)
}

# Ends the paragraph, list item or table that is open.
function flush() {
  if (block == "p") print "<p>" inline(text) "</p>"
  if (block == "li") print "<li>" inline(text) "</li>"
  if (block == "table") print "</tbody>\n</table>"
  block = text = ""
}

function flush_list() {
  flush()
  if (listed) print "</ul>"
  listed = 0
}

function row(line, cell,    cells, count, i, html) {
  gsub(/^\| *| *\|$/, "", line)
  count = split(line, cells, / *\| */)
  for (i = 1; i <= count; ++i) html = html "<" cell ">" inline(cells[i]) "</" cell ">"
  return "<tr>" html "</tr>"
}

/^<!--/ && !fenced { comment = 1 }
comment { if (/-->/) comment = 0; next }
/^```/ {
  flush_list()
  fenced = !fenced
  if (fenced) printf "<pre><code>"
  else print "</code></pre>"
  next
}
fenced { print escape($0); next }
/^#+ / {
  flush_list()
  level = index($0, " ") - 1
  title = substr($0, level + 2)
  print "<h" level " id=\"" slug(title) "\">" inline(title) "</h" level ">"
  next
}
/^\|[-| ]+\|$/ { next }
/^\|/ {
  if (block != "table") {
    flush_list()
    block = "table"
    print "<table>\n<thead>" row($0, "th") "</thead>\n<tbody>"
  } else {
    print row($0, "td")
  }
  next
}
/^- / {
  flush()
  if (!listed) print "<ul>"
  listed = 1
  block = "li"
  text = substr($0, 3)
  next
}
/^ *$/ { flush_list(); next }
{
  sub(/^ +/, "")
  if (block == "") block = "p"
  text = text (text == "" ? "" : " ") $0
}
END { flush_list() }
