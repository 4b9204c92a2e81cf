"""page_check.py KBSURVEY SAMPLES FOLDER [AXE]: makes a page of the samples and of 1,000 files with hostile names in
FOLDER, and uses it as a person would, with a mouse, on a phone and on paper; AXE is axe-core, which looks at it for those
who do not see or point. Prints what is wrong; the exit status is 1 then."""

import json
import os
import re
import subprocess
import sys

import browser

KBSURVEY, SAMPLES, FOLDER, *AXE = sys.argv[1:]

# Each is the name of a file, or a path: folders are made as they are needed. What they try would set `hacked`, ask for
# something, or look like another file or verdict.
HOSTILE = [
    b"<img src=x onerror=hacked=1>", b"</script><script>hacked=1;</script>", b"</SCRIPT ><script>hacked=1</script >",
    b"<!--<script>", b"--><svg onload=hacked=1>", b"]]><b>", b"\"onmouseover=hacked=1 x=\"", b"'+hacked=1+'",
    b"`${hacked=1}`", b"\\u003cscript>hacked=1", b"&lt;b&gt;&amp;", b"<base href=https://example.invalid>",
    b"<link rel=stylesheet href=https://example.invalid>", b"<iframe srcdoc=x>", b"javascript:hacked=1",
    b"line\nbreak OK", b"\x1b[2J\x1b]0;title\x07", b"\r\tOK", b"\xff\xfe\xc3(", b"\xed\xa0\x80", b"\\xff", b"-h", b"--help",
    "\u202egnp.bk\u2066".encode(), "\u2028\u2029\ufeff".encode(), "\U000e0041\u200b".encode(), "Ð\u0410日本".encode(),
    b"__proto__", b"constructor", b" ", b"%3Cscript%3E", b"{{hacked=1}}", b"@DATA@", b"x" * 200, b"#verdict=OK", b"$(touch hacked)",
]
REPAIRS = {"mended": "can be mended", "salvaged": "can be salvaged", "no": "cannot be mended"}

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
    return [json.loads(line) for line in run.stdout.split(b"\n")[:-1]]


def repair_text(record):
    """What the page shows in the last column."""
    if record["repair"] == "mended":
        undone = record.get("repair_undone", 0)
        counts = [(undone, "transformation"), (record["repair_words"] - undone, "word")]
        return f"can be mended ({', '.join(f'{n} {what}' + 's' * (n != 1) for n, what in counts if n)})"
    return REPAIRS.get(record["repair"], "")


def rows(tab):
    """What the table shows: the text of all cells."""
    return tab.evaluate("[...document.querySelectorAll('#table > tbody > tr:not(.details)')].map(row =>"
                        "[...row.cells].map(cell => cell.textContent))")


def all_rows(tab):
    for _ in range(100):
        if tab.evaluate("document.getElementById('more').hidden"):
            break
        tab.click("document.getElementById('more')")
    return rows(tab)


def shown(tab):
    return int(re.sub(r"\D.*", "", tab.evaluate("document.getElementById('shown').textContent").replace(",", "")))


def labelled(text):
    return f"[...document.querySelectorAll('button')].find(b => b.innerText.replaceAll(/\\s+/g, ' ').trim() === {text!r})"


def check_head(tab, records):
    """What was surveyed, when, how long, by what: the command can be typed again."""
    title, about, command = tab.evaluate("[document.title, ...['#about', '#about + p code'].map(name => document.querySelector(name).textContent)]")
    same("title", f"KOVA survey: {SAMPLES}, {FOLDER}/made", title)
    if not re.fullmatch(r"1,\d\d\d files · [\d.]+ MB · \d{4}-\d\d-\d\d \d\d:\d\d UTC · [\d.]+ s · kbsurvey [\d.]+", about):
        complaints.append(f"head: {about!r}")
    same("command", f"kbsurvey --repairable --html {FOLDER}/page.html --json - {SAMPLES} {FOLDER}/made", command)


def check_cards(tab, records):
    """Each card, bar and folder has its number and shows its files; a second press shows all again."""
    chosen = {f"{len(records)} files": records}
    for number, name in (("ERR", "ERR"), ("OK", "OK")):
        some = [record for record in records if record["verdict"] == number]
        chosen[f"{len(some)} {name}"] = some
    for repair, name in REPAIRS.items():
        some = [record for record in records if record["repair"] == repair]
        chosen[f"{len(some)} {name}"] = some
    for finding in ("element-index", "version-2-list-missing"):
        chosen[finding] = [record for record in records if finding in record["counts"]]
    chosen[os.path.basename(SAMPLES) + "/"] = [record for record in records if record["path"].startswith(SAMPLES)]
    for text, some in chosen.items():
        text = re.sub(r"(\d)(\d\d\d)\b", r"\1,\2", text)
        if not tab.evaluate(f"Boolean({labelled(text)})"):
            complaints.append(f"no button {text!r}")
            continue
        tab.click(labelled(text))
        same("files of " + text, len(some), shown(tab))
        if len(some) < len(records):
            address = tab.evaluate("location.hash")
            tab.evaluate(f"(location.hash = '', new Promise(done => setTimeout(done, 50)))")
            same("files without a filter in the address", len(records), shown(tab))
            tab.evaluate(f"(location.hash = {address!r}, new Promise(done => setTimeout(done, 50)))")
            same("files of the address " + address, len(some), shown(tab))
            tab.click(labelled(text))
            same("files when pressed again: " + text, len(records), shown(tab))


def check_histogram(tab, records):
    files, counts = {}, {}
    for record in records:
        for name, count in record["counts"].items():
            files[name] = files.get(name, 0) + 1
            counts[name] = counts.get(name, 0) + count
    tab.evaluate("document.querySelectorAll('#findings .rest').forEach(more => more.click())")
    histogram = tab.evaluate("[...document.querySelectorAll('.histogram tbody tr')].map(row => [row.querySelector('button')"
                             ".textContent, ...[1, 2].map(i => Number(row.cells[i].textContent.replace(',', '')))])")
    same("histogram", {name: [files[name], counts[name]] for name in files}, {row[0]: row[1:] for row in histogram})


def check_order(tab, records):
    verdicts = [row[1] for row in all_rows(tab)]
    same("order of the verdicts", sorted(verdicts, key=["ERR", "none", "OK"].index), verdicts)
    sizes = sorted(record["bytes"] for record in records)
    for wanted in (sizes[::-1], sizes):
        tab.click("document.querySelector('#table th[data-key=bytes] button')")
        found = [int(row[3].replace(",", "")) for row in rows(tab)]
        same("sizes", wanted[:len(found)], found)
    tab.evaluate("(location.hash = '', new Promise(done => setTimeout(done, 50)))")


def check_filter_by_path(tab, records):
    tab.type("document.getElementById('path-filter')", "<IMG SRC=x onerror")
    found = rows(tab)
    same("paths with an image", sum("<img" in record["path"] for record in records), len(found))
    same("paths without an image among them", [], [row for row in found if "<img src=x onerror=hacked=1>" not in row[0]])
    tab.type("document.getElementById('path-filter')", "no such file")
    same("nothing fits", [0, True], [shown(tab), tab.evaluate("document.getElementById('none').checkVisibility()")])
    tab.click("document.querySelector('#none button')")
    same("files after the way back", len(records), shown(tab))


def check_details(tab, records):
    damaged = next(record for record in records if record["path"].endswith("damaged.kb"))
    tab.type("document.getElementById('path-filter')", "samples/damaged.kb")
    tab.click("document.querySelector('#table tbody button')")
    text = tab.evaluate("document.querySelector('tr.details').innerText")
    for part in (f"kbrepair: {repair_text(damaged)}", *damaged["repair_changes"]):
        if part not in text:
            complaints.append(f"details of damaged.kb: no {part!r}")
    for finding in damaged["findings"]:
        help_text = subprocess.run([KBSURVEY, "--explain", finding["id"]], stdout=subprocess.PIPE, text=True).stdout
        meaning, next_step = re.findall(r"^(?:Meaning|Next step): +(.*)$", help_text.replace("`", ""), re.M)
        for part in (finding["id"], finding["text"].strip(), meaning, next_step, f"byte {finding['offset']}"):
            if part not in text:
                complaints.append(f"details of damaged.kb: no {part!r}")
    tab.click("document.querySelector('#table tbody button')")
    same("details after a second click", 0, tab.evaluate("document.querySelectorAll('tr.details').length"))
    tab.type("document.getElementById('path-filter')", "")


def check_all_rows(tab, records):
    """All rows can be scrolled to; no path forges a row, a line or an element; each can be copied into a shell."""
    found = all_rows(tab)
    same("rows", len(records), len(found))
    same("paths", len(records), len({row[0] for row in found}))
    same("paths with characters that cannot be seen", [],
         [row[0] for row in found if re.search("[\0-\x1f\x7f-\x9f\u200b-\u200f\u2028-\u202e\u2066-\u2069\ufeff]", row[0])])
    same("elements of a path's making", 0, tab.evaluate("document.querySelectorAll('img, svg, iframe, base, td script, body link, body style').length"))
    same("scripts", 2, tab.evaluate("document.scripts.length"))
    words = tab.evaluate("""[...document.querySelectorAll('#table > tbody > tr:not(.details) button')].slice(0, 2 * 40).map(open => {
      open.click();
      const word = open.closest('tr').nextElementSibling.querySelector('code').textContent;
      open.click();
      return word;
    })""")
    listed = subprocess.run(["bash", "-c", "printf '%s\\0' " + " ".join(words)], stdout=subprocess.PIPE).stdout.split(b"\0")[:-1]
    same("paths that were copied", [], [path for path in listed if not os.path.exists(path)])
    same("number of paths that were copied", 80, len(listed))


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


def violations(tab, what):
    if AXE:
        tab.evaluate(open(AXE[0]).read() + "; 0")
        same("violations " + what, [], tab.evaluate("axe.run().then(found => found.violations.map(v => [v.id, v.nodes[0].html, v.nodes[0].failureSummary]))"))


def check_access(tab):
    """At each width and in both colours: no violation that axe-core finds, nothing beside the screen, columns that stay."""
    for width, colours, address in ((1400, "light", ""), (1400, "dark", "#verdict=ERR"), (800, "light", ""), (390, "light", ""),
                                    (390, "dark", "#path=nothing+fits")):
        tab.show(width, colours)
        tab.open(FOLDER + "/page.html" + address)
        what = f"at {width} pixels, {colours}"
        tab.evaluate("[...document.querySelectorAll('#table tbody button')].slice(0, 3).forEach(open => open.click())")
        same("wider than the screen " + what, False, tab.evaluate("document.documentElement.scrollWidth > innerWidth"))
        widths = "[...document.querySelectorAll('#table th')].map(head => head.offsetWidth)"
        before = tab.evaluate(widths)
        all_rows(tab)
        same("widths of the columns " + what, before, tab.evaluate(widths))
        broken = "[...document.querySelectorAll('th, h1, h2, caption')].filter(head => head.scrollWidth > head.clientWidth + 1).map(head => head.textContent)"
        same("headings that do not fit " + what, [], tab.evaluate(broken))
        small = "[...document.querySelectorAll('button')].filter(b => b.offsetHeight && b.offsetHeight < 24).map(b => b.textContent)"
        same("small buttons " + what, [], tab.evaluate(small))
        if AXE:
            tab.open(FOLDER + "/page.html" + address)
            tab.evaluate("document.querySelector('#table tbody button')?.click()")
            violations(tab, what)
    tab.show(1280, "light")


def check_paper(tab, records):
    """What is printed: all files that are shown, and no controls."""
    tab.open(FOLDER + "/page.html")
    tab.evaluate("dispatchEvent(new Event('beforeprint'))")
    same("files printed", len(records), len(rows(tab)))
    tab.call("Emulation.setEmulatedMedia", media="print")
    same("controls on paper", 0, tab.evaluate("[...document.querySelectorAll('form, #more, .rest, .copied button, #skip')].filter(e => e.checkVisibility()).length"))
    same("heads on paper", "table-header-group", tab.evaluate("getComputedStyle(document.querySelector('#table > thead')).display"))
    tab.call("Emulation.setEmulatedMedia", media="")


def check_baseline(tab, records):
    """Against a baseline only what is new or changed is shown at first; cards show the rest; what is gone has a list."""
    new, same_as, worse, gone = [record for record in records if record["verdict"] == "ERR"][:4]
    was_ok = {**next(record for record in records if record["verdict"] == "OK"), "path": worse["path"]}
    for name, some in (("old", [same_as, was_ok, gone]), ("new", [new, same_as, worse])):
        with open(f"{FOLDER}/{name}.json", "w") as report:
            report.writelines(json.dumps(record) + "\n" for record in some)
    subprocess.run([KBSURVEY, "--merge", FOLDER + "/new.json", "--baseline", FOLDER + "/old.json", "--html",
                    FOLDER + "/page.html"], stdout=subprocess.DEVNULL)
    tab.open(FOLDER + "/page.html")
    same("changed since the baseline", ["new", "worse, was OK"], sorted(re.sub(".*[.]kb", "", row[0], flags=re.S) for row in rows(tab)))
    for card, number in (("1 worse since the baseline", 1), ("3 files", 3)):
        tab.click(labelled(card))
        same(f"files of the card '{card}'", number, shown(tab))
    violations(tab, "of a page with a baseline")
    same("files that are gone", 1, tab.evaluate("document.querySelectorAll('#gone li').length"))


def check_many(tab):
    """A page of 10,000 bad files is small and quick to open and to filter."""
    run = subprocess.run([KBSURVEY, "--json", "-", "--html", FOLDER + "/unasked.html", SAMPLES], stdout=subprocess.PIPE,
                         stderr=subprocess.DEVNULL)
    bad = next(line for line in map(json.loads, run.stdout.split(b"\n")[:-1]) if line["path"].endswith("list-tag.kb"))
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
    same("files found among many", 1, shown(tab))
    filtered = tab.evaluate("performance.now()") - before
    print(f"page of 10,000 files: {size} bytes, opened in {opened:.0f} ms, filtered in {filtered:.0f} ms")
    if size > 5_000_000 or opened > 2000 or filtered > 1000:
        complaints.append("the page of 10,000 files is too large or too slow")
    tab.open(FOLDER + "/unasked.html")
    same("text about repairs, if they were not asked for", False, tab.evaluate("/mended|salvaged/.test(document.body.innerText)"))


def main():
    make_files(1000)
    records = survey()
    tab = browser.Browser()
    try:
        tab.open(FOLDER + "/page.html")
        for check in (check_head, check_cards, check_histogram, check_order, check_filter_by_path, check_details, check_all_rows):
            check(tab, records)
        check_policy(tab)
        check_access(tab)
        check_paper(tab, records)
        check_baseline(tab, records)
        check_many(tab)
    finally:
        tab.close()
    print("\n".join(complaints))
    return 1 if complaints else 0


sys.exit(main())
