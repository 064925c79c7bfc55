#include "page_style.h"

namespace vestra::design_tool {

const std::string_view PAGE_STYLE = R"(
:root {
  color-scheme: light dark;
  --paper: #fbfbfa;
  --card: #ffffff;
  --ink: #1d2329;
  --soft: #5b6670;
  --line: #dfe3e6;
  --band: #f4f6f7;
  --accent: #0b6a75;
  --warn-ink: #8a3b00;
  --warn: #fff1e3;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #14181b;
    --card: #1b2125;
    --ink: #e6eaec;
    --soft: #9aa6ae;
    --line: #323b41;
    --band: #21292e;
    --accent: #6cc5cf;
    --warn-ink: #ffc58f;
    --warn: #3b2a1a;
  }
}
* { box-sizing: border-box; }
html { -webkit-text-size-adjust: 100%; text-size-adjust: 100%; }
body {
  margin: 0;
  background: var(--paper);
  color: var(--ink);
  font: 1rem/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", "Liberation Sans", Arial, sans-serif;
}
main { max-width: 60rem; margin: 0 auto; padding: clamp(1.25rem, 4vw, 3rem) clamp(1rem, 4vw, 2.5rem) 4rem; }
.intro { margin-bottom: 1.75rem; overflow-wrap: anywhere; unicode-bidi: isolate; }
h1 { margin: 0; font-size: clamp(1.6rem, 1.2rem + 2vw, 2.3rem); line-height: 1.15; letter-spacing: -0.015em; text-wrap: balance; }
h1 + br { display: none; }
h2 { margin: 0; font-size: 1.15rem; line-height: 1.3; overflow-wrap: anywhere; }
section { margin-top: 2.25rem; }
.head { display: flex; flex-wrap: wrap; align-items: baseline; gap: 0.25rem 0.75rem; margin-bottom: 0.75rem; }
.chip {
  padding: 0.05rem 0.55rem;
  border: 1px solid var(--line);
  border-radius: 999px;
  color: var(--accent);
  font-size: 0.8rem;
  font-weight: 600;
  overflow-wrap: anywhere;
}
.count { margin-left: auto; color: var(--soft); font-size: 0.85rem; font-variant-numeric: tabular-nums; }
p.test { margin: -0.5rem 0 -0.75rem; }
.test .chip { color: var(--warn-ink); background: var(--warn); border-color: transparent; }
.value, .key { font-family: ui-monospace, "SF Mono", "Cascadia Mono", "DejaVu Sans Mono", "Liberation Mono", Consolas, monospace; font-size: 0.875em; }
.value, .key { white-space: pre-wrap; overflow-wrap: anywhere; unicode-bidi: isolate; tab-size: 4; }
.facts {
  display: grid;
  grid-template-columns: repeat(auto-fit, minmax(min(100%, 20rem), 1fr));
  gap: 1px;
  margin: 0;
  overflow: hidden;
  border: 1px solid var(--line);
  border-radius: 0.6rem;
  background: var(--line);
}
.facts div { padding: 0.65rem 0.9rem; background: var(--card); }
.facts dt { color: var(--soft); font-size: 0.8rem; }
.facts dd { margin: 0.1rem 0 0; }
.environment { margin: 0; overflow: hidden; border: 1px solid var(--line); border-radius: 0.6rem; background: var(--card); }
.environment div { display: grid; grid-template-columns: minmax(12rem, 36%) 1fr; gap: 0 1rem; padding: 0.45rem 0.9rem; }
.environment div + div { border-top: 1px solid var(--line); }
.environment dt { color: var(--soft); }
.environment dd { margin: 0; min-width: 0; }
table { width: 100%; table-layout: fixed; border-collapse: separate; border-spacing: 0; overflow: hidden; border: 1px solid var(--line); border-radius: 0.6rem; background: var(--card); }
th, td { padding: 0.45rem 0.9rem; text-align: left; vertical-align: top; }
tbody tr > * { border-top: 1px solid var(--line); }
tbody tr:nth-child(even) > * { background: var(--band); }
thead th { background: var(--band); color: var(--soft); font-size: 0.8rem; font-weight: 600; }
thead th:first-child { width: 38%; }
th.key { font-weight: 400; }
.figures thead th:first-child { width: 60%; }
.figures th:last-child, .figures td { text-align: right; font-variant-numeric: tabular-nums; }
.none { margin: 0; padding: 0.75rem 0.9rem; border: 1px dashed var(--line); border-radius: 0.6rem; color: var(--soft); }
.absent { color: var(--soft); font-style: italic; font-family: inherit; }
.byte { padding: 0 0.15em; border-radius: 0.2em; background: var(--warn); color: var(--warn-ink); font-size: 0.9em; }
footer { margin-top: 3rem; padding-top: 1rem; border-top: 1px solid var(--line); color: var(--soft); font-size: 0.85rem; overflow-wrap: anywhere; }
@media (max-width: 34rem) {
  .environment div { grid-template-columns: 1fr; }
  .environment dt { font-size: 0.8rem; }
  th, td { padding: 0.45rem 0.7rem; }
}
@media print {
  :root {
    color-scheme: light;
    --paper: #fff; --card: #fff; --ink: #000; --soft: #444; --line: #bbb; --band: #f2f2f2; --accent: #000; --warn: #eee; --warn-ink: #000;
  }
  @page { margin: 18mm 16mm; }
  body { font-size: 10pt; }
  main { max-width: none; padding: 0; }
  .head { break-after: avoid; }
  thead { display: table-header-group; }
  tr, .facts div, .environment div { break-inside: avoid; }
  table, .facts, .environment { overflow: visible; border-width: 1px 0; border-radius: 0; }
  .facts { gap: 0; background: none; }
}
)";

}  // namespace vestra::design_tool
