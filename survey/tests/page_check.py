"""page_check.py KBSURVEY SAMPLES FOLDER: makes a page of the samples and of 1,000 files with hostile names in FOLDER, and
uses it as a person would. Prints what is wrong; the exit status is 1 then."""

import json
import os
import re
import subprocess
import sys

import browser

KBSURVEY, SAMPLES, FOLDER = sys.argv[1:4]

# Each is the name of a file, or a path: folders are made as they are needed. What they try would set `hacked`, ask for
# something, or look like another file or verdict.
HOSTILE = [
    b"<img src=x onerror=hacked=1>", b"</script><script>hacked=1;</script>", b"</SCRIPT ><script>hacked=1</script >",
    b"<!--<script>", b"--><svg onload=hacked=1>", b"]]><b>", b"\"onmouseover=hacked=1 x=\"", b"'+hacked=1+'",
    b"`${hacked=1}`", b"\\u003cscript>hacked=1", b"&lt;b&gt;&amp;", b"<base href=https://example.invalid>",
    b"<link rel=stylesheet href=https://example.invalid>", b"<iframe srcdoc=x>", b"javascript:hacked=1",
    b"line\nbreak OK", b"\x1b[2J\x1b]0;title\x07", b"\r\tOK", b"\xff\xfe\xc3(", b"\xed\xa0\x80", b"\\xff", b"-h", b"--help",
    "\u202egnp.bk\u2066".encode(), "\u2028\u2029\ufeff".encode(), "\U000e0041\u200b".encode(), "Ð\u0410日本".encode(),
    b"__proto__", b"constructor", b" ", b"%3Cscript%3E", b"{{hacked=1}}", b"@DATA@", b"x" * 200,
]

complaints = []


def same(what, wanted, found):
    if wanted != found:
        complaints.append(f"{what}: {found!r}, not {wanted!r}")


def make_files(number):
    samples = [open(os.path.join(SAMPLES, name), "rb").read() for name in ("small-1.kb", "damaged.kb", "version.kb")]
    for i in range(number):
        name = HOSTILE[i % len(HOSTILE)]
        path = os.fsencode(FOLDER) + b"/made/%d/" % (i // len(HOSTILE)) + name + b".kb"
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(samples[i % 3])


def survey():
    """Makes the page. @return the records of the JSON report of the same run."""
    run = subprocess.run([KBSURVEY, "--repairable", "--html", FOLDER + "/page.html", "--json", "-", SAMPLES,
                          FOLDER + "/made"], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    same("status of kbsurvey", 2, run.returncode)
    lines = run.stdout.split(b"\n")[:-1]
    same("lines printed", len([line for line in lines if b'"verdict":"OK"' not in line]),
         len(re.findall(rb"^(?:ERR |NONE)  [ -~]*$", run.stderr, re.M)))
    return [json.loads(line) for line in lines]


REPAIRS = {"mended": "can be mended", "salvaged": "can be salvaged", "no": "cannot be mended"}


def repair_text(record):
    """What the page shows in the last column."""
    if record["repair"] == "mended":
        return f"can be mended ({record['repair_words']} word{'s' if record['repair_words'] != 1 else ''})"
    return REPAIRS.get(record["repair"], "")


ROWS = "[...document.querySelectorAll('#files > tbody > tr:not(.details)')]"


def rows(tab):
    """What the table shows: the text of all cells."""
    return tab.evaluate(ROWS + ".map(row => [...row.cells].map(cell => cell.textContent))")


def select(tab, name, text):
    tab.evaluate(f"(() => {{ const list = document.getElementById({name!r});"
                 f"list.value = [...list.options].find(option => option.text === {text!r}).value;"
                 "list.dispatchEvent(new Event('input', {bubbles: true})); })()")


def shown(tab):
    return tab.evaluate("document.getElementById('shown').textContent")


def check_totals(tab, records):
    verdicts = [record["verdict"] for record in records]
    text = tab.evaluate("document.getElementById('totals').innerText.replaceAll(/\\s+/g, ' ')")
    for number, name in ((len(records), "files"), (verdicts.count("OK"), "OK"), (verdicts.count("ERR"), "ERR"),
                         (verdicts.count("none"), "without verdict")):
        if f"{number} {name}" not in text:
            complaints.append(f"totals: no {number} {name} in {text!r}")
    for repair, name in REPAIRS.items():
        wanted = sum(record["repair"] == repair for record in records)
        if f" {wanted} {name}" not in text:
            complaints.append(f"totals: no {wanted} {name} in {text!r}")
    counts = {}
    for record in records:
        for name, count in record["counts"].items():
            counts[name] = counts.get(name, 0) + count
    histogram = tab.evaluate("[...document.querySelectorAll('#histogram tbody tr')].map(row =>"
                             "[row.cells[0].textContent, Number(row.cells[1].textContent)])")
    same("histogram", counts, dict(histogram))


def check_filters(tab, records):
    for verdict in ("OK", "ERR", "none"):
        select(tab, "verdict-filter", verdict)
        wanted = sum(record["verdict"] == verdict for record in records)
        same("number of files with verdict " + verdict, f"{wanted} of {len(records)}", shown(tab))
        same("verdicts shown", {verdict}, {row[1] for row in rows(tab)})
    select(tab, "verdict-filter", "all")
    for repair, name in REPAIRS.items():
        select(tab, "repair-filter", name)
        chosen = [record for record in records if record["repair"] == repair]
        same("number of files that " + name, f"{len(chosen)} of {len(records)}", shown(tab))
        same("other repairs shown", set(), {row[5] for row in rows(tab)} - {repair_text(record) for record in chosen})
    select(tab, "repair-filter", "all")
    select(tab, "finding-filter", "element-index")
    wanted = sum("element-index" in record["counts"] for record in records)
    same("number of files with a finding", f"{wanted} of {len(records)}", shown(tab))
    tab.click("document.querySelector('#filters button[type=reset]')")
    tab.wait_for(f"document.getElementById('shown').textContent === '{len(records)} of {len(records)}'")
    tab.type("document.getElementById('path-filter')", "<IMG SRC=x onerror")
    found = rows(tab)
    same("paths with an image", sum("<img" in record["path"] for record in records), len(found))
    same("paths without an image among them", [], [row for row in found if "<img src=x onerror=hacked=1>" not in row[0]])
    tab.type("document.getElementById('path-filter')", "")
    same("number of files without filter", f"{len(records)} of {len(records)}", shown(tab))


def check_sorting(tab, records):
    sizes = sorted(record["bytes"] for record in records)
    head = "document.querySelector('#files th[data-key=bytes] button')"
    for wanted in (sizes[::-1], sizes):
        tab.click(head)
        found = [int(row[3]) for row in rows(tab)]
        same("sizes", wanted[:len(found)], found)
    tab.click("document.querySelector('#files th[data-key=repair] button')")
    found = ["can" in row[5] for row in rows(tab)]
    same("files to repair come first", sorted(found, reverse=True), found)
    tab.click("document.querySelector('#files th[data-key=path] button')")


def check_details(tab, records):
    damaged = next(record for record in records if record["path"].endswith("damaged.kb"))
    tab.type("document.getElementById('path-filter')", "samples/damaged.kb")
    tab.click("document.querySelector('#files tbody button')")
    text = tab.evaluate("document.querySelector('tr.details').innerText")
    if f"kbrepair: {repair_text(damaged)}" not in text:
        complaints.append(f"details of damaged.kb: no {repair_text(damaged)!r}")
    for finding in damaged["findings"]:
        help_text = subprocess.run([KBSURVEY, "--explain", finding["id"]], stdout=subprocess.PIPE, text=True).stdout
        meaning, next_step = re.findall(r"^(?:Meaning|Next step): +(.*)$", help_text, re.M)
        for part in (finding["id"], finding["text"].strip(), meaning, next_step, f"byte {finding['offset']}"):
            if part not in text:
                complaints.append(f"details of damaged.kb: no {part!r}")
    tab.click("document.querySelector('#files tbody button')")
    same("details after a second click", 0, tab.evaluate("document.querySelectorAll('tr.details').length"))
    tab.type("document.getElementById('path-filter')", "")


def check_all_rows(tab, records):
    """All rows can be scrolled to; no path forges a row, a line or an element."""
    for _ in range(100):
        if tab.evaluate("document.getElementById('more').hidden"):
            break
        tab.click("document.getElementById('more')")
    found = rows(tab)
    same("rows", len(records), len(found))
    same("paths", len(records), len({row[0] for row in found}))
    same("paths with characters that cannot be seen", [],
         [row[0] for row in found if re.search("[\0-\x1f\x7f-\x9f\u200b-\u200f\u2028-\u202e\u2066-\u2069\ufeff]", row[0])])
    same("elements of a path's making", 0,
         tab.evaluate("document.querySelectorAll('img, svg, iframe, b:not(#totals b), link, base, td script').length"))
    same("scripts", 2, tab.evaluate("document.scripts.length"))


def check_policy(tab):
    """No script has run that is not the page's; and none could, nor any request, if a name did become markup."""
    same("scripts that ran", "undefined", tab.evaluate("typeof hacked"))
    same("requests", ["page.html"], [os.path.basename(url) for url in tab.requests.values()])
    same("complaints of the browser", [], tab.complaints)
    refused = tab.evaluate("""new Promise(done => {
      const refused = [];
      document.addEventListener('securitypolicyviolation', event => refused.push(event.effectiveDirective));
      const holder = document.createElement('div');
      holder.innerHTML = '<img src="https://example.invalid/x" onerror="hacked=1"><style>p { color: red }</style>';
      const script = document.createElement('script');
      script.textContent = 'hacked = 1';
      document.body.append(holder, script);
      setTimeout(() => done(refused), 500);
    })""")
    same("refused by the policy", {"img-src", "style-src-elem", "script-src-elem", "script-src-attr"}, set(refused))
    same("script that the policy refuses", "undefined", tab.evaluate("typeof hacked"))
    same("requests that the policy refuses", ["page.html"], [os.path.basename(url) for url in tab.requests.values()])


def check_many(tab, records):
    """A page of 10,000 bad files is small and quick to open and to filter."""
    bad = next(record for record in records if record["path"].endswith("list-tag.kb"))
    with open(FOLDER + "/many.json", "w") as report:
        for i in range(10_000):
            path = f"scenes/{i % 100}/scene with a name of usual length {i}.kb"
            print(json.dumps({**bad, "path": path}), file=report)
    subprocess.run([KBSURVEY, "--merge", FOLDER + "/many.json", "--html", FOLDER + "/many.html"],
                   stdout=subprocess.DEVNULL)
    size = os.path.getsize(FOLDER + "/many.html")
    tab.open(FOLDER + "/many.html")
    opened = tab.evaluate("performance.getEntriesByType('navigation')[0].loadEventEnd")
    before = tab.evaluate("performance.now()")
    tab.type("document.getElementById('path-filter')", "9999")
    same("files found among many", "1 of 10000", shown(tab))
    filtered = tab.evaluate("performance.now()") - before
    print(f"page of 10,000 files: {size} bytes, opened in {opened:.0f} ms, filtered in {filtered:.0f} ms")
    if size > 5_000_000 or opened > 2000 or filtered > 1000:
        complaints.append("the page of 10,000 files is too large or too slow")


def check_unasked(tab):
    """Without --repairable the page says nothing about repairs."""
    subprocess.run([KBSURVEY, "--html", FOLDER + "/unasked.html", SAMPLES], stdout=subprocess.DEVNULL)
    tab.open(FOLDER + "/unasked.html")
    same("cells of a row", {5}, {len(row) for row in rows(tab)})
    same("hidden", [True, True], tab.evaluate("['#repair-label', '#files th[data-key=repair]'].map(name =>"
                                              "getComputedStyle(document.querySelector(name)).display === 'none')"))
    same("text about repairs", False, tab.evaluate("/mended|salvaged/.test(document.body.innerText)"))


def main():
    make_files(1000)
    records = survey()
    tab = browser.Browser()
    try:
        tab.open(FOLDER + "/page.html")
        for check in (check_totals, check_filters, check_sorting, check_details, check_all_rows):
            check(tab, records)
        check_policy(tab)
        check_many(tab, records)
        check_unasked(tab)
    finally:
        tab.close()
    print("\n".join(complaints))
    return 1 if complaints else 0


sys.exit(main())
