// The page: what was surveyed, filters, totals and files. Rows are made when they are scrolled to: a page of many thousand
// files opens at once.
const data = JSON.parse(document.getElementById("data").textContent);
const ROWS_AT_ONCE = 200;
const KINDS_AT_FIRST = 8; // of findings in the histogram, of folders in a folder
const TEXTS_AT_FIRST = 10; // of one kind of finding in one file

const files = data.files.map(([folder, name, bytes, version, verdict, reason = 0, detail = "", counts = [], findings = [], repair = 0, words = 0, changes = [], undone = 0]) => ({
  folder, name, path: data.folders[folder] + name, bytes, version, verdict, reason, detail, findings, repair, words, changes, undone,
  ids: counts.filter((_, i) => i % 2 === 0), count: counts.reduce((sum, count, i) => i % 2 ? sum + count : sum, 0),
}));
// Bad files come first, then those with remarks.
for (const file of files) file.rank = file.verdict === 1 ? 0 : file.verdict === 2 ? 1 : file.count ? 2 : 3;

// What has become of files since the baseline, if there is one: of a file that is not named it is the same as there.
const since = data.since ?? { names: [], counts: [], files: [], gone: [] };
const SAME = since.names.indexOf("same");
for (const file of files) Object.assign(file, { since: SAME, was: "" });
for (const [i, name, was] of since.files) Object.assign(files[i], { since: name, was });
const sinceText = file => since.names[file.since] + (file.was && ", " + file.was);

// Whether files can be mended is shown only if that was asked, and of those that are not in order.
const repairAsked = data.totals.repairs.some((count, i) => i && count);
const repairCounts = ({ words, undone }) => [undone && counted(undone, "transformation", "transformations"), words > undone && counted(words - undone, "word", "words")].filter(Boolean);
const repairText = file => data.repairs[file.repair] + (file.words ? " (" + repairCounts(file).join(", ") + ")" : "");

const isError = id => data.ids[id][1] === "error";

// --- What was surveyed ----------------------------------------------------------------------------------------------

const showHead = () => {
  const { date, seconds, version, command = [], paths = [] } = data.survey ?? {};
  const title = "KOVA survey" + (paths.length ? ": " + paths.map(visible).join(", ") : "");
  document.title = title;
  document.querySelector("h1").textContent = title;
  const about = [counted(data.totals.files, "file", "files"), bytesText(data.totals.bytes)];
  if (date) about.push(new Date(date * 1000).toISOString().replace("T", " ").slice(0, 16) + " UTC");
  if (seconds !== undefined && seconds !== null) about.push(seconds.toFixed(2) + " s");
  if (version) about.push("kbsurvey " + version);
  if (data.since) about.push("compared with " + visible(since.baseline));
  byId("about").textContent = about.join(" \u00b7 ");
  if (command.length) byId("about").after(copyable(["kbsurvey", ...command].map(quoted).join(" "), "the command"));
};

// --- Filters --------------------------------------------------------------------------------------------------------

// The name of a filter is that of its control, and of its part of the address.
const FILTERS = ["path", "verdict", "since", "repair", "finding", "folder"];
const AT_FIRST = { since: data.since ? "any" : "" };
const atFirst = name => AT_FIRST[name] ?? "";
const control = name => byId(name + "-filter");
const matchers = {
  path: text => file => (file.shown ??= visible(file.path).toLowerCase()).includes(text),
  verdict: verdict => file => verdict === "bad" ? file.verdict !== 0 : data.verdicts[file.verdict] === verdict,
  since: text => file => text === "any" ? file.since !== SAME : since.names[file.since] === text,
  repair: text => file => data.repairs[file.repair] === text,
  finding: name => file => file.ids.some(id => data.ids[id][0] === name),
  folder: folder => file => data.folders[file.folder].startsWith(folder),
};

const setFilter = (name, value) => {
  const list = control(name);
  if (list.tagName === "SELECT" && ![...list.options].some(option => option.value === value)) addOption(list, value, value);
  list.value = value;
};

const addOption = (list, text, value) => {
  const option = element("option", "", text);
  option.value = value;
  list.append(option);
};

// Filters of buttons: a second press takes the filter away.
const filterButtons = [];
const filterButton = (className, text, name, value) => {
  const made = button(className, text, () => {
    const on = control(name).value === value;
    setFilter(name, on ? "" : value);
    update();
    if (!on && !["verdict", "since", "repair"].includes(name)) byId("files").scrollIntoView();
  });
  filterButtons.push([made, name, value]);
  return made;
};

const readAddress = () => {
  const given = new URLSearchParams(location.hash.slice(1));
  for (const name of FILTERS) setFilter(name, given.get(name) ?? atFirst(name));
  const [key, down] = (given.get("order") ?? "").split("-");
  sorting = ORDERS[key] ? { key, down: down === "down" } : { key: "rank", down: false };
  update();
};

const writeAddress = () => {
  const given = new URLSearchParams();
  for (const name of FILTERS) if (control(name).value !== atFirst(name)) given.set(name, control(name).value);
  if (sorting.key !== "rank") given.set("order", sorting.key + (sorting.down ? "-down" : ""));
  history.replaceState(null, "", "#" + given);
};

const showAll = () => {
  for (const name of FILTERS) setFilter(name, "");
  update();
};

// --- Totals ---------------------------------------------------------------------------------------------------------

const showTotals = () => {
  const { files: number, verdicts, reasons, repairs } = data.totals;
  const add = (count, text, className, name, value, detail) => {
    const card = name ? filterButton("", "", name, value) : button("", "", showAll);
    card.append(element("b", className, count.toLocaleString("en")), text);
    if (detail) card.append(element("small", "quiet", detail));
    byId("totals").append(element("li", "", card));
  };
  const why = reasons.map((count, i) => i && count ? count + " " + data.reasons[i] : "").filter(text => text);
  add(number, number === 1 ? "file" : "files");
  add(verdicts[1], "ERR", "v1", "verdict", data.verdicts[1]);
  add(verdicts[2], "without verdict", "v2", "verdict", data.verdicts[2], why.join(", "));
  add(verdicts[0], "OK", "v0", "verdict", data.verdicts[0]);
  since.counts.forEach((count, i) => count && i !== SAME && since.names[i] !== "gone" && add(count, since.names[i] + " since the baseline", "", "since", since.names[i]));
  repairs.forEach((count, i) => count && data.repairs[i] && add(count, data.repairs[i], "", "repair", data.repairs[i]));
};

// --- Histogram ------------------------------------------------------------------------------------------------------

const histogramRow = (most, className) => ([id, count, inFiles]) => {
  const [name, , meaning] = data.ids[id];
  const bar = element("div", "bar " + className);
  bar.style.width = 100 * inFiles / most + "%";
  const row = element("tr", "", element("td", "", filterButton("plain", visible(name), "finding", name), element("div", "quiet", ...prose(meaning))),
                      element("td", "number", inFiles.toLocaleString("en"), bar), element("td", "number", count.toLocaleString("en")));
  return row;
};

const showHistogram = () => {
  const rows = [...data.histogram].sort((a, b) => b[2] - a[2] || b[1] - a[1]);
  const most = Math.max(1, ...rows.map(row => row[2]));
  const add = (caption, className, some) => {
    if (!some.length) return;
    const table = element("table", "histogram", element("caption", className, caption));
    const head = table.createTHead().insertRow();
    for (const [text, name] of [["Finding", ""], ["Files", "number"], ["Findings", "number"]]) {
      const cell = element("th", name, text);
      cell.scope = "col";
      head.append(cell);
    }
    const more = addFirst(table.createTBody(), some, KINDS_AT_FIRST, "kind", histogramRow(most, className));
    byId("findings").append(table);
    if (more) byId("findings").append(more);
  };
  add("Errors", "error", rows.filter(([id]) => isError(id)));
  add("Remarks, which do not change the verdict", "remark", rows.filter(([id]) => !isError(id)));
  byId("findings").hidden = rows.length === 0;
};

// --- Folders --------------------------------------------------------------------------------------------------------

const newFolder = path => ({ path, folders: new Map(), files: 0, bad: [0, 0, 0] });

// Each folder counts the files below it, too.
const folderTree = () => {
  const top = newFolder("");
  const chains = data.folders.map(path => {
    const chain = [top];
    for (const part of path.match(/\/+|[^/]*\/+/g) ?? []) {
      const above = chain.at(-1);
      if (!above.folders.has(part)) above.folders.set(part, newFolder(above.path + part));
      chain.push(above.folders.get(part));
    }
    return chain;
  });
  for (const file of files)
    for (const folder of chains[file.folder]) {
      ++folder.files;
      ++folder.bad[file.verdict];
    }
  return top;
};

const folderItem = ([name, folder]) => {
  // What has only one folder and no file is shown in one line with it.
  while (folder.folders.size === 1 && [...folder.folders.values()][0].files === folder.files) {
    const [[more, below]] = folder.folders;
    [name, folder] = [name + more, below];
  }
  const line = element("div");
  const item = element("li", "", line);
  const toggle = button("toggle", "", () => {
    const open = toggle.getAttribute("aria-expanded") === "false";
    toggle.setAttribute("aria-expanded", open);
    if (open) item.append(folderList(folder));
    else item.lastChild.remove();
  });
  toggle.setAttribute("aria-label", "Folders of " + visible(name));
  toggle.setAttribute("aria-expanded", false);
  if (folder.folders.size === 0) toggle.style.visibility = "hidden";
  const sums = element("span", "sums number", ...[1, 2].filter(verdict => folder.bad[verdict]).flatMap(verdict =>
    [element("span", "v" + verdict, folder.bad[verdict] + " " + (verdict === 1 ? "ERR" : "none")), " \u00b7 "]), counted(folder.files, "file", "files"));
  line.append(toggle, element("span", "name", filterButton("plain path", pathParts(name), "folder", folder.path)), sums);
  return item;
};

const folderList = folder => {
  const badFirst = ([, a], [, b]) => b.bad[1] + b.bad[2] - a.bad[1] - a.bad[2] || compare(a.path, b.path);
  const list = element("ul", "tree");
  const more = addFirst(list, [...folder.folders].sort(badFirst), KINDS_AT_FIRST, "folder", folderItem);
  return more ? element("div", "", list, more) : list;
};

const showFolders = () => {
  const top = folderTree();
  byId("folders").hidden = top.folders.size === 0;
  byId("folders").append(folderList(top));
  for (const toggle of byId("folders").querySelectorAll(".toggle")) if (toggle.style.visibility === "" && top.folders.size === 1) toggle.click();
  for (const path of data.folders.slice(0, 500)) if (path) addOption(control("folder"), visible(path), path);
};

// --- Files that are gone ---------------------------------------------------------------------------------------------

const showGone = () => {
  if (!since.gone.length) return;
  const list = element("ul", "tree");
  const more = addFirst(list, since.gone, KINDS_AT_FIRST, "file", ([path, was]) =>
    element("li", "", ...pathParts(path), " ", element("small", "quiet", was)));
  byId("gone").append(list, ...(more ? [more] : []));
  byId("gone").hidden = false;
};

// --- One file -------------------------------------------------------------------------------------------------------

const place = ([, list, number, offset]) => {
  const parts = [data.lists[list] ? data.lists[list] + (number === null ? "" : "[" + number + "]") : ""];
  if (offset !== null) parts.push("byte " + offset);
  return parts.filter(part => part).join(", ");
};

const kindOfFinding = ([id, findings]) => {
  const [name, , meaning, nextStep] = data.ids[id];
  const kind = isError(id) ? "error" : "remark";
  const texts = element("ul", "texts");
  const more = addFirst(texts, findings, TEXTS_AT_FIRST, "finding", finding =>
    element("li", "", element("code", "", visible(finding[4])), " ", element("span", "quiet", visible(place(finding)))));
  return element("div", "finding", element("h3", "", element("span", kind, kind), " " + visible(name)),
                 element("p", "", ...prose(meaning)), element("p", "", ...prose(nextStep)), texts, ...(more ? [more] : []));
};

// What kbrepair would change, and how to call it.
const mending = file => {
  const parts = [element("h3", "", "kbrepair: " + repairText(file))];
  if (file.changes.length) {
    const more = file.words - file.changes.length;
    parts.push(element("p", "", element("code", "", file.changes.map(visible).join("\n") + (more > 0 ? "\n... " + more + " more" : ""))));
  }
  const name = data.repairs[file.repair];
  if (/^can be/.test(name)) {
    const to = file.path.replace(/(\.kb)?$/i, "-mended$1");
    parts.push(copyable(["kbrepair", ...(/salvaged/.test(name) ? ["--salvage"] : []), quotedPath(file.path), quotedPath(to)].join(" "), "the command"));
  }
  return parts;
};

const details = file => {
  const cell = element("td", "", copyable(quotedPath(file.path), "the path"));
  cell.colSpan = 5 + repairAsked;
  if (file.reason) cell.append(element("p", "", "No verdict: " + data.reasons[file.reason] + (file.detail ? ": " + visible(file.detail) : "")));
  if (file.since !== SAME) cell.append(element("p", "", "Since the baseline: " + sinceText(file)));
  if (repairText(file)) cell.append(...mending(file));
  const kinds = new Map();
  for (const finding of file.findings) kinds.set(finding[0], [...kinds.get(finding[0]) ?? [], finding]);
  cell.append(...[...kinds].map(kindOfFinding));
  const more = file.count - file.findings.length;
  if (more) cell.append(element("p", "", counted(more, "more finding", "more findings") + ": see the JSON report."));
  return element("tr", "details", cell);
};

const fileRow = file => {
  const labelled = (label, className, text) => {
    const cell = element("td", className, text);
    if (text !== "") cell.dataset.label = label;
    return cell;
  };
  const path = element("td", "path");
  const row = element("tr", "", path, element("td", "v" + file.verdict, data.verdicts[file.verdict]), labelled("version", "", file.version),
                      labelled("bytes", "number", file.bytes.toLocaleString("en")), labelled("findings", "number", file.count.toLocaleString("en")));
  if (repairAsked) row.append(labelled("repair", "", repairText(file)));
  const become = file.since === SAME ? [] : [element("div", "quiet", sinceText(file))];
  if (!file.count && !file.reason) {
    path.append(...pathParts(file.path), ...become);
    return row;
  }
  const open = button("plain path", pathParts(file.path), () => {
    const isOpen = row.nextElementSibling?.className === "details";
    if (isOpen) row.nextElementSibling.remove();
    else row.after(details(file));
    open.setAttribute("aria-expanded", !isOpen);
  });
  open.setAttribute("aria-expanded", false);
  path.append(open, ...become);
  return row;
};

// --- The table ------------------------------------------------------------------------------------------------------

const compare = (a, b) => a < b ? -1 : a > b ? 1 : 0;
// What the files can be ordered by, and whether the greatest come first when this is chosen.
const ORDERS = { rank: "bad files first", path: "path", verdict: "verdict", version: "version", bytes: "bytes", count: "findings", repair: "repair" };
const GREATEST_FIRST = ["bytes", "count", "repair"];
let matching = files;
let rowsShown = 0;
let sorting = { key: "rank", down: false };

const showMore = (most = ROWS_AT_ONCE) => {
  const rows = document.createDocumentFragment();
  for (const file of matching.slice(rowsShown, rowsShown + most)) rows.append(fileRow(file));
  byId("table").tBodies[0].append(rows);
  rowsShown = Math.min(matching.length, rowsShown + most);
  byId("more").hidden = rowsShown === matching.length;
};

const update = () => {
  const tests = FILTERS.filter(name => control(name).value).map(name =>
    matchers[name](name === "path" ? control(name).value.toLowerCase() : control(name).value));
  matching = files.filter(file => tests.every(test => test(file)));
  const { key, down } = sorting;
  const by = key === "verdict" ? "rank" : key;
  matching.sort((a, b) => (down ? -1 : 1) * compare(a[by], b[by]) || compare(a.path, b.path));
  byId("shown").textContent = matching.length.toLocaleString("en") + " of " + counted(files.length, "file", "files");
  byId("none").hidden = matching.length !== 0;
  byId("table").hidden = matching.length === 0;
  for (const [made, name, value] of filterButtons) made.setAttribute("aria-pressed", control(name).value === value);
  for (const head of document.querySelectorAll("#table > thead th"))
    if (head.dataset.key === key) head.setAttribute("aria-sort", down ? "descending" : "ascending");
    else head.removeAttribute("aria-sort");
  byId("sort").value = key;
  byId("table").tBodies[0].replaceChildren();
  rowsShown = 0;
  showMore();
  writeAddress();
};

const sortBy = key => {
  sorting = { key, down: sorting.key === key ? !sorting.down : GREATEST_FIRST.includes(key) };
  update();
};

const setUpTable = () => {
  for (const head of document.querySelectorAll("#table > thead th")) {
    head.replaceChildren(button("plain", head.textContent, () => sortBy(head.dataset.key)));
    if (head.dataset.key === "repair") head.hidden = !repairAsked;
  }
  for (const [key, text] of Object.entries(ORDERS)) if (key !== "repair" || repairAsked) addOption(byId("sort"), text, key);
  byId("sort").addEventListener("input", () => sortBy(byId("sort").value));
  byId("more").addEventListener("click", () => showMore());
  new IntersectionObserver(seen => seen[0].isIntersecting && showMore()).observe(byId("more"));
  addEventListener("beforeprint", () => {
    showMore(matching.length);
    for (const rest of waiting.splice(0)) rest();
  });
};

const setUpFilters = () => {
  for (const name of data.verdicts) addOption(control("verdict"), name, name);
  for (const name of since.names) if (name && name !== "gone") addOption(control("since"), name, name);
  byId("since-label").hidden = !data.since;
  for (const name of data.repairs) if (name) addOption(control("repair"), name, name);
  for (const [id] of data.histogram) addOption(control("finding"), visible(data.ids[id][0]), data.ids[id][0]);
  byId("repair-label").hidden = !repairAsked;
  byId("filters").addEventListener("input", event => event.target.id !== "sort" && update());
  byId("filters").addEventListener("reset", event => { event.preventDefault(); showAll(); });
  byId("filters").addEventListener("submit", event => event.preventDefault());
  byId("none").querySelector("button").addEventListener("click", showAll);
  // The skip link must not take the place of the filters in the address.
  byId("skip").addEventListener("click", event => {
    event.preventDefault();
    byId("files").focus();
  });
  addEventListener("hashchange", readAddress);
};

showHead();
setUpFilters();
showTotals();
showHistogram();
showFolders();
showGone();
setUpTable();
readAddress();
