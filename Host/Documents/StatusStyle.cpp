#include "Documents/StatusPage.h"

namespace Host::Cli {

std::string_view statusStyle()
{
    // On a narrow screen each row of the drives becomes a block, and each cell is headed by its column.
    return R"css(:root {
  color-scheme: light dark;
  --text: #1b1f24; --quiet: #57606a; --ground: #ffffff; --line: #d0d7de;
  --ok: #116329; --warning: #7d4e00; --critical: #a40e26; --unknown: #57606a;
}
@media (prefers-color-scheme: dark) {
  :root {
    --text: #e6edf3; --quiet: #9ea7b3; --ground: #0d1117; --line: #30363d;
    --ok: #56d364; --warning: #e3b341; --critical: #ff7b72; --unknown: #9ea7b3;
  }
}
body {
  margin: 0 auto; padding: 1rem; max-width: 72rem;
  background: var(--ground); color: var(--text); font: 1rem/1.5 system-ui, sans-serif;
}
h1 { font-size: 1.25rem; }
h2 { font-size: 1.1rem; margin-top: 2rem; }
a { color: inherit; }
.verdict { border-left: .4rem solid; padding: .5rem 1rem; font-size: 1.1rem; overflow-wrap: anywhere; }
.ok { color: var(--ok); }
.warning { color: var(--warning); }
.critical { color: var(--critical); }
.unknown { color: var(--unknown); }
.silent td { font-style: italic; }
table { border-collapse: collapse; width: 100%; }
th, td { padding: .3rem .8rem .3rem 0; text-align: left; vertical-align: top; border-bottom: 1px solid var(--line); }
td { overflow-wrap: break-word; }
section { overflow-x: auto; }
th { color: var(--quiet); font-weight: 600; }
time { white-space: nowrap; font-variant-numeric: tabular-nums; }
footer { margin-top: 2rem; color: var(--quiet); }
@media (max-width: 48rem) {
  .drives, .drives tbody, .drives tr, .drives td { display: block; }
  .drives thead { display: none; }
  .drives tr { padding: .5rem 0; border-bottom: 1px solid var(--line); }
  .drives td { border: 0; padding: .1rem 0 .1rem 7rem; text-indent: -7rem; }
  .drives td::before { content: attr(data-column); display: inline-block; width: 7rem; text-indent: 0; color: var(--quiet); }
}
)css";
}

} // namespace Host::Cli
