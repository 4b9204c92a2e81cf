
"use strict";
// Everything of the data is shown as text, never as markup. Rows are made when they are scrolled to: a page of many
// thousand files opens at once.
(() => {
const data = JSON.parse(document.getElementById("data").textContent);
const ROWS_AT_ONCE = 200;
const byId = id => document.getElementById(id);

// Characters that cannot be seen, or that change the order of others, are shown by their numbers.
const hidden = /[\u0000-\u001f\u007f-\u00a0\u00ad\u034f\u061c\u115f\u1160\u17b4\u17b5\u180b-\u180f\u200b-\u200f\u2028-\u202f\u205f-\u206f\u3000\u3164\ufe00-\ufe0f\ufeff\uffa0\ufff0-\ufffb]|[\u{1d173}-\u{1d17a}\u{e0000}-\u{e0fff}]/gu;
const visible = text => text.replace(hidden, c => "\\u{" + c.codePointAt(0).toString(16) + "}");

const element = (tag, className, text) => {
  const made = document.createElement(tag);
  if (className) made.className = className;
  if (text !== undefined) made.textContent = text;
  return made;
};

const button = (text, action) => {
  const made = element("button", "", text);
  made.type = "button";
  made.addEventListener("click", action);
  return made;
};

const total = counts => counts.reduce((sum, count, i) => i % 2 ? sum + count : sum, 0);

const files = data.files.map(([folder, name, bytes, version, verdict, reason = 0, detail = "", counts = [], findings = [], repair = 0, words = 0]) => ({
  path: data.folders[folder] + name, bytes, version, verdict, reason, detail, findings, repair, words,
  ids: counts.filter((_, i) => i % 2 === 0), count: total(counts),
}));

// Whether files can be mended is shown only if that was asked, and of those that are not in order.
const repairAsked = data.totals.repairs.some((count, i) => i && count);
const repairText = file => data.repairs[file.repair] + (file.words ? " (" + file.words + (file.words === 1 ? " word)" : " words)") : "");

// --- Totals and histogram ---

const showTotals = () => {
  const add = (number, text, className) => {
    const item = element("li");
    item.append(element("b", className, number), text);
    byId("totals").append(item);
  };
  const { files: number, bytes, verdicts, reasons, repairs } = data.totals;
  add(number, number === 1 ? "file" : "files");
  add(verdicts[0], "OK", "v0");
  add(verdicts[1], "ERR", "v1");
  const why = reasons.map((count, i) => i && count ? count + " " + data.reasons[i] : "").filter(text => text);
  add(verdicts[2], "without verdict" + (why.length ? " (" + why.join(", ") + ")" : ""), "v2");
  repairs.forEach((count, i) => count && data.repairs[i] && add(count, data.repairs[i]));
  add((bytes / 1e6).toFixed(1), "MB");
};

const showHistogram = () => {
  const most = Math.max(1, ...data.histogram.map(row => row[1]));
  const body = byId("histogram").tBodies[0];
  for (const [id, count, inFiles] of data.histogram) {
    const row = body.insertRow();
    const name = button(visible(data.ids[id][0]), () => choose("finding-filter", id));
    name.title = data.ids[id][2];
    row.insertCell().append(name);
    row.append(element("td", "number", count), element("td", "number", inFiles));
    const bar = element("div", "bar");
    bar.style.width = 100 * count / most + "%";
    row.insertCell().append(bar);
  }
  byId("findings").hidden = data.histogram.length === 0;
};

// --- One file ---

const place = ([, list, number, offset]) => {
  const parts = [data.lists[list] ? data.lists[list] + (number === null ? "" : "[" + number + "]") : ""];
  if (offset !== null) parts.push("byte " + offset);
  return parts.filter(part => part).join(", ");
};

const findingRow = finding => {
  const [id, severity, meaning, nextStep] = data.ids[finding[0]];
  const row = element("tr");
  const help = element("td", "help");
  help.append(meaning, element("br"), nextStep);
  row.append(element("td", severity === "error" ? "v1" : "v2", visible(id)), element("td", "text", visible(finding[4])),
             element("td", "", visible(place(finding))), help);
  return row;
};

const details = file => {
  const cell = element("td");
  cell.colSpan = 5 + repairAsked;
  if (file.reason) cell.append(element("p", "", data.reasons[file.reason] + (file.detail ? ": " + visible(file.detail) : "")));
  if (repairText(file)) cell.append(element("p", "", "kbrepair: " + repairText(file)));
  if (file.findings.length) {
    const table = element("table");
    const head = table.createTHead().insertRow();
    for (const text of ["Finding", "Text", "Place", "Meaning and next step"]) head.append(element("th", "", text));
    const body = table.createTBody();
    for (const finding of file.findings) body.append(findingRow(finding));
    cell.append(table);
  }
  const more = file.count - file.findings.length;
  if (more) cell.append(element("p", "", more + " more findings: see the JSON report."));
  const row = element("tr", "details");
  row.append(cell);
  return row;
};

const fileRow = file => {
  const row = element("tr");
  const path = element("td", "path");
  if (file.count || file.reason) {
    const open = button(visible(file.path), () => {
      const isOpen = row.nextElementSibling?.className === "details";
      if (isOpen) row.nextElementSibling.remove();
      else row.after(details(file));
      open.setAttribute("aria-expanded", !isOpen);
    });
    open.setAttribute("aria-expanded", false);
    path.append(open);
  } else path.textContent = visible(file.path);
  row.append(path, element("td", "v" + file.verdict, data.verdicts[file.verdict]), element("td", "", file.version),
             element("td", "number", file.bytes), element("td", "number", file.count));
  if (repairAsked) row.append(element("td", "", repairText(file)));
  return row;
};

// --- The table ---

let matching = files;
let rowsShown = 0;
let sorting = { key: "path", down: false };

const showMore = () => {
  const rows = document.createDocumentFragment();
  for (const file of matching.slice(rowsShown, rowsShown + ROWS_AT_ONCE)) rows.append(fileRow(file));
  byId("files").tBodies[0].append(rows);
  rowsShown = Math.min(matching.length, rowsShown + ROWS_AT_ONCE);
  byId("more").hidden = rowsShown === matching.length;
};

const compare = (a, b) => a < b ? -1 : a > b ? 1 : 0;

const update = () => {
  const text = byId("path-filter").value.toLowerCase();
  const verdict = byId("verdict-filter").value;
  const repair = byId("repair-filter").value;
  const finding = byId("finding-filter").value;
  matching = files.filter(file =>
    (!text || visible(file.path).toLowerCase().includes(text)) &&
    (!verdict || (verdict === "bad" ? file.verdict !== 0 : file.verdict === Number(verdict))) &&
    (!repair || file.repair === Number(repair)) &&
    (!finding || file.ids.includes(Number(finding))));
  const { key, down } = sorting;
  matching.sort((a, b) => (down ? -1 : 1) * compare(a[key], b[key]) || compare(a.path, b.path));
  byId("shown").textContent = matching.length + " of " + files.length;
  byId("files").tBodies[0].replaceChildren();
  rowsShown = 0;
  showMore();
};

const choose = (id, value) => {
  byId(id).value = value;
  update();
  byId("filters").scrollIntoView();
};

const setUpSorting = () => {
  const heads = [...document.querySelectorAll("#files th")];
  for (const head of heads) {
    const key = head.dataset.key;
    head.replaceChildren(button(head.textContent, () => {
      // Of numbers the greatest are looked for, so they come first.
      const down = sorting.key === key ? !sorting.down : key === "bytes" || key === "count" || key === "verdict" || key === "repair";
      sorting = { key, down };
      for (const other of heads) other.removeAttribute("aria-sort");
      head.setAttribute("aria-sort", down ? "descending" : "ascending");
      update();
    }));
  }
  heads[0].setAttribute("aria-sort", "ascending");
  heads.find(head => head.dataset.key === "repair").hidden = !repairAsked;
};

const setUpFilters = () => {
  const option = (list, text, value) => {
    const made = element("option", "", text);
    made.value = value;
    byId(list).append(made);
  };
  data.verdicts.forEach((name, i) => option("verdict-filter", name, i));
  data.repairs.forEach((name, i) => name && option("repair-filter", name, i));
  byId("repair-label").hidden = !repairAsked;
  for (const [id] of data.histogram) option("finding-filter", visible(data.ids[id][0]), id);
  byId("filters").addEventListener("input", update);
  byId("filters").addEventListener("reset", () => setTimeout(update));
  byId("filters").addEventListener("submit", event => event.preventDefault());
  byId("more").addEventListener("click", showMore);
  new IntersectionObserver(seen => seen[0].isIntersecting && showMore()).observe(byId("more"));
};

showTotals();
showHistogram();
setUpSorting();
setUpFilters();
update();
})();
