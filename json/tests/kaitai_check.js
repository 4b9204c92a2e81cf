// A third reader: what the compiler of Kaitai Struct makes of kova.ksy reads scene files, and every word of them has to
// be the one that kbjson prints. Usage: node kaitai_check.js MODULES KBJSON KSY NUMBER FOLDER...
// Reads all scenes of the folders, then so many that are made of them at random.
"use strict";
const { spawnSync } = require("child_process");
const fs = require("fs");
const path = require("path");

const [modules, kbjson, ksyPath, number, ...folders] = process.argv.slice(2);
const load = (name) => require(path.join(modules, name));
const KaitaiStream = load("kaitai-struct/KaitaiStream");
const ksy = load("js-yaml").load(fs.readFileSync(ksyPath, "utf8"));

function run(args, input) {
  const done = spawnSync(kbjson, args, { input, maxBuffer: 1 << 30 });
  if (done.status !== 0) throw new Error(`kbjson ${args.join(" ")}: ${done.stderr}`);
  return done.stdout;
}

// --- Comparison ---

const plain = (name) => name.toLowerCase().replace(/[^a-z0-9]/g, "");
const bits = new DataView(new ArrayBuffer(8));
let words = 0;

// What Kaitai Struct has for a number that is none is not its bits; those are read at its place in the file.
function sameWord(json, value, place) {
  ++words;
  if (typeof json === "string") {
    const word = parseInt(json.replace(/^0x|^nan:/, ""), 16);
    return word === (json.startsWith("nan:") ? place() : value >>> 0);
  }
  if (Number.isInteger(json) && json >>> 0 === value >>> 0 && Number.isInteger(value)) return !Object.is(json, -0) || Object.is(value, -0);
  bits.setFloat32(0, json);
  bits.setFloat32(4, value);
  return bits.getUint32(0) === bits.getUint32(4);
}

// The text of a name as bytes, without what fills up its last word.
function nameBytes(text) {
  const pieces = text.split(/(\\x[0-9a-f]{2})/).map((piece, i) => (i % 2 ? Buffer.from(piece.slice(2), "hex") : Buffer.from(piece)));
  return Buffer.concat(pieces);
}

const isEmpty = (value) => value === undefined || value.length === 0 || (value.length === undefined && fieldsOf(value).every((name) => isEmpty(value[name])));
const isBytes = (value) => value instanceof Uint8Array;
const fieldsOf = (object) => Object.keys(object).filter((name) => !name.startsWith("_"));

class Comparison {
  constructor(file) {
    this.file = file;
    this.wrong = [];
  }
  fail(at, what) {
    this.wrong.push(`${at}: ${what}`);
  }
  // debug: where Kaitai Struct has read the value
  value(at, json, value, debug) {
    if (json === undefined) {
      if (!isEmpty(value)) this.fail(at, "is not in the document");
    } else if (value === undefined) this.fail(at, "was not read");
    else if (typeof json === "string" && isBytes(value)) this.bytes(at, json, value);
    else if (typeof json === "string" && Array.isArray(value)) {
      const packed = Buffer.alloc(4 * value.length);
      value.forEach((word, i) => packed.writeUInt32BE(word, 4 * i));
      this.bytes(at, json, packed);
    } else if (json !== null && typeof json === "object") this.tree(at, json, value, debug);
    else {
      const [one, place] = Array.isArray(value) && value.length === 1 ? [value[0], debug.arr[0]] : [value, debug];
      if (!sameWord(json, one, () => this.file.readUInt32BE(place.ioOffset + place.start))) this.fail(at, `${json} is not ${one}`);
    }
  }
  tree(at, json, value, debug) {
    if (isBytes(value)) return this.bytes(at, json.raw, value);
    if (json.rows) json = rowsOf(json);
    if (!Array.isArray(json)) return this.object(at, json, value);
    if (!Array.isArray(value)) {
      const names = fieldsOf(value); // the words of an item, or those of a record that kbjson has no names for
      const flat = names.flatMap((name) => (Array.isArray(value[name]) ? value[name].map((word, i) => [word, value._debug[name].arr[i]]) : [[value[name], value._debug[name]]]));
      if (flat.length !== json.length) this.fail(at, `${json.length} words are not ${flat.length}`);
      return flat.forEach(([word, place], i) => this.value(`${at}[${i}]`, json[i], word, place));
    }
    if (json.length !== value.length) return this.fail(at, `${json.length} are not ${value.length}`);
    json.forEach((item, i) => this.value(`${at}[${i}]`, item, value[i], debug.arr[i]));
  }
  bytes(at, json, value) {
    let wanted = Buffer.from(json, "base64");
    if (at.endsWith(".text")) {
      wanted = nameBytes(json);
      value = value.subarray(0, Math.max(wanted.length, value.length - 3));
    }
    words += value.length / 4;
    if (Buffer.compare(wanted, Buffer.from(value)) !== 0) this.fail(at, `${json} are other bytes`);
  }
  object(at, json, value) {
    const read = new Map(); // names without regard to case and underscores
    const note = (object) => {
      for (const name of fieldsOf(object))
        if (name === "maker" && object[name]) note(object[name]);
        else if (!(name === "van" && read.has("van") && object[name] === undefined)) read.set(plain(name), [object[name], object._debug[name]]);
    };
    note(value);
    const left = [];
    for (const [key, item] of Object.entries(json)) {
      const found = read.get(plain(key));
      if (!found) left.push([key, item]);
      else if (item.raw !== undefined && !isBytes(found[0])) this.fail(`${at}.${key}`, "is raw in the document");
      else this.value(`${at}.${key}`, item, ...found);
      read.delete(plain(key));
    }
    for (const [key, item] of left) // pairs, which are runs of their words in the file
      this.runs(`${at}.${key}`, item, [...read.keys()].filter((name) => name.startsWith(plain(key))).map((name) => [read.get(name), read.delete(name)][0]));
    for (const [name, [item, debug]] of read) if (name !== "gap") this.value(`${at}.${name}`, undefined, item, debug);
  }
  runs(at, json, runs) {
    if (!Array.isArray(json) || runs.length === 0) return this.fail(at, "was not read");
    json.forEach((item, i) => item.forEach((word, part) => this.value(`${at}[${i}][${part}]`, word, (runs[part]?.[0] ?? [])[i], runs[part]?.[1]?.arr?.[i])));
    for (const [run] of runs) if (run.length !== json.length) this.fail(at, "is longer in the file");
  }
}
const rowsOf = (table) => table.rows.map((row) => ({ ...table.all, ...Object.fromEntries((table.words ?? []).map((word, i) => [word, row[i]])) }));

// --- Files made of others ---

let seed = 1;
const random = (below) => (seed = (Math.imul(seed, 1103515245) + 12345) >>> 0, Math.floor((seed / 4294967296) * below));
const chosen = (items) => items[random(items.length)];

// Words that nothing counts or chooses: by the types that kova.ksy gives them.
const freeWords = (() => {
  const all = Object.values(ksy.types).flatMap((type) => type.seq);
  const used = JSON.stringify(all.map(({ id, type, ...rest }) => [rest, type?.["switch-on"]]));
  const types = new Map();
  for (const { id, type } of all) if ((type === "s4" || type === "f4") && !used.includes(id)) types.set(plain(id), type);
  return types;
})();

// Arrays of records of one record get as many each: some share a count.
function changed(json, number = 0) {
  if (Array.isArray(json) && json.length > 0 && typeof json[0] === "object" && !Array.isArray(json[0]))
    return Array.from({ length: number }, () => changed(chosen(json)));
  if (json === null || typeof json !== "object" || Array.isArray(json)) return json;
  const records = random(4);
  return Object.fromEntries(Object.entries(json).map(([key, item]) => {
    const type = typeof item === "number" && random(2) === 0 ? freeWords.get(plain(key)) : undefined;
    const word = random(4294967296);
    return [key, type === "f4" ? `0x${(random(8) ? word : 0x7f800000 | word).toString(16).replace("-", "").slice(0, 8)}` : type ? word | 0 : changed(item, records)];
  }));
}

function made(documents) {
  const base = chosen(documents);
  const document = { ...base };
  for (const name of Object.keys(base).slice(2)) {
    const other = chosen(documents);
    if (other.FileHeader.version === base.FileHeader.version && name in other) document[name] = other[name];
    document[name] = changed(document[name]);
  }
  return run(["--to-kb", "-", "-"], JSON.stringify(document));
}

// --- All together ---

const Compiler = load("kaitai-struct-compiler");
(Compiler.compile ? Compiler : new Compiler()).compile("javascript", ksy, null, true).then((sources) => {
  const compiled = { exports: {} };
  new Function("module", "exports", "require", sources["Kova.js"])(compiled, compiled.exports, (name) => load(name));
  const Kova = compiled.exports.Kova ?? compiled.exports;
  let failures = 0;
  const check = (name, file) => {
    const json = JSON.parse(run(["-"], file));
    delete json.kbjson;
    const comparison = new Comparison(file);
    try {
      const scene = new Kova(new KaitaiStream(file));
      scene._read();
      comparison.object("", json, scene);
    } catch (error) {
      comparison.fail("", error.stack);
    }
    if (comparison.wrong.length > 0 && process.env.KEEP) fs.writeFileSync(process.env.KEEP, file);
    failures += comparison.wrong.length > 0;
    if (comparison.wrong.length > 0 && failures < 5) console.log(`${name}: ${comparison.wrong.slice(0, 5).join("\n  ")}`);
  };
  const documents = [];
  let files = 0;
  for (const folder of folders)
    for (const name of fs.readdirSync(folder).filter((name) => name.endsWith(".kb"))) {
      const file = fs.readFileSync(path.join(folder, name));
      const text = run(["--lean", "-"], file).toString();
      if (/"raw"/.test(text)) continue; // damage that is no data
      check(name, file);
      ++files;
      // What stands behind texels that are no whole words is read in another order of bytes.
      const whole = [...text.matchAll(/"texel":"([^"]*)"/g)].every(([, texels]) => Buffer.from(texels, "base64").length % 4 === 0);
      if (file.length < 20000 && whole && !text.includes("num_byte")) documents.push(JSON.parse(text));
    }
  for (let i = 0; i < number; ++i) check(`made file ${i}`, made(documents));
  console.log(`${files} samples and ${number} made files, ${Math.round(words)} words: ${failures} files differ`);
  process.exit(failures > 0 ? 1 : 0);
});
