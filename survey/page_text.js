// What the page shows anything with. Everything is shown as text, never as markup. It stands before page.js.
"use strict";
const byId = id => document.getElementById(id);

// Characters that cannot be seen, or that change the order of others, are shown by their numbers.
const hidden = /[\u0000-\u001f\u007f-\u00a0\u00ad\u034f\u061c\u115f\u1160\u17b4\u17b5\u180b-\u180f\u200b-\u200f\u2028-\u202f\u205f-\u206f\u3000\u3164\ufe00-\ufe0f\ufeff\uffa0\ufff0-\ufffb]|[\u{1d173}-\u{1d17a}\u{e0000}-\u{e0fff}]/gu;
const visible = text => text.replace(hidden, c => "\\u{" + c.codePointAt(0).toString(16) + "}");

const element = (tag, className, ...content) => {
  const made = document.createElement(tag);
  if (className) made.className = className;
  made.append(...content.map(part => part instanceof Node ? part : String(part)));
  return made;
};

// A path can be broken behind each folder.
const pathParts = path => visible(path).split(/(?<=\/)/).flatMap(part => [part, element("wbr")]).slice(0, -1);

// What stands in backticks is a name of the format.
const prose = text => text.split("`").map((part, i) => i % 2 ? element("code", "", part) : part);

const button = (className, content, action) => {
  const made = element("button", className, ...[content].flat());
  made.type = "button";
  made.addEventListener("click", action);
  return made;
};

const counted = (number, one, many) => number.toLocaleString("en") + " " + (number === 1 ? one : many);

const bytesText = bytes => {
  let unit = 0;
  for (; bytes >= 1000 && unit < 4; ++unit) bytes /= 1000;
  return (unit ? bytes.toFixed(1) : bytes) + " " + ["bytes", "kB", "MB", "GB", "TB"][unit];
};

// Shows the first elements of a list and a button for the rest, which is made when it is asked for, or printed.
const waiting = [];
const addFirst = (parent, list, most, name, make) => {
  parent.append(...list.slice(0, most).map(make));
  if (list.length <= most) return;
  const rest = () => {
    if (more.isConnected) parent.append(...list.slice(most).map(make));
    more.remove();
  };
  const more = button("rest", "Show " + counted(list.length - most, "more " + name, "more " + name + "s"), rest);
  waiting.push(rest);
  return more;
};

// --- Copying --------------------------------------------------------------------------------------------------------

// Bytes that are no text stand in a path as \xHH, and so does the backslash.
const escape = /\\x[0-9a-f]{2}/;

// A word as a shell takes it.
const quoted = word => {
  if (/^[\w./,:+=@%-]+$/.test(word)) return word;
  const plain = word.replaceAll("\\x5c", "\\");
  if (plain === visible(plain) && !escape.test(word.replaceAll("\\x5c", ""))) return "'" + plain.replaceAll("'", "'\\''") + "'";
  const utf8 = c => [...new TextEncoder().encode(c)].map(byte => "\\x" + byte.toString(16).padStart(2, "0")).join("");
  return "$'" + word.replaceAll("'", "\\'").replace(hidden, utf8) + "'";
};
const quotedPath = path => quoted((path.startsWith("-") ? "./" : "") + path);

const copyable = (text, what) => {
  const code = element("code", "", text);
  const copy = async () => {
    try {
      await navigator.clipboard.writeText(text);
      byId("told").textContent = "Copied: " + text;
      copied.textContent = "Copied";
    } catch {
      getSelection().selectAllChildren(code); // the browser does not allow more
      copied.textContent = "Selected";
    }
    setTimeout(() => copied.textContent = "Copy", 2000);
  };
  const copied = button("", "Copy", copy);
  copied.setAttribute("aria-label", "Copy " + what);
  return element("p", "copied", code, copied);
};
