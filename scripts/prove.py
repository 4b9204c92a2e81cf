"""Proves with z3 that no arithmetic of the bounded cursor wraps and that no byte outside of a list is taken.

The expressions are those of the sources, found by what stands around them: whoever changes one of them, changes what is
proved. They are taken for arithmetic of whole numbers; that each of their steps stays within 64 bits is proved as well. Then
some expressions are changed to wrong ones, and each time a proof has to fail.

    prove.py SOURCE_DIR
"""
import ast
import pathlib
import re
import subprocess
import sys

root = pathlib.Path(sys.argv[1])
LIMIT = 2**64  # of a 64-bit word
WORD_LIMIT = 2**32  # of a word of the format, and of a list

# name: file, the text before the expression, the text behind it
EXPRESSIONS = {
    "word_bytes": ("include/kova/words.h", "using Word = std::uint", "_t;"),
    "bytes_left": ("reader/cursor.h", "inline std::uint64_t bytesLeft(const Cursor &cursor) {\n  return ", ";"),
    "required": ("reader/cursor.h", "// Divided, not multiplied: nothing here can wrap.\n  return ", " ? 1 :"),
    "moved": ("reader/cursor.h", "  cursor.offset += ", ";"),
    "fixed_there": ("reader/cursor.h", "const std::uint64_t there = ", ";\n  record"),
    "fixed_bytes": ("reader/cursor.h", "copyBytes(cursor, &record, static_cast<std::size_t>(", "));"),
    "run_there": ("reader/cursor.h", "Word count) {\n  const std::uint64_t there = ", ";"),
    "run_count": ("reader/cursor.h", "readRun(cursor, destination, ", ");"),
    "whole_words": ("reader/cursor.cpp", "std::uint64_t wholeWords(const Cursor &cursor) { return ", "; }"),
    "file_byte": ("reader/cursor.cpp", "byte = cursor.data[", "];"),
    "odd_at": ("reader/cursor.cpp", "    const std::uint64_t at = ", ";"),
    "odd_byte": ("reader/cursor.cpp", "if (!takeFileByte(cursor, ", ", to[i]))"),
    "taken": ("reader/cursor.cpp", "  cursor.offset += ", ";\n  return 1;"),
    "row_words": ("reader/cursor.cpp", "const std::uint64_t row_words = ", ";"),
    "area_words": ("reader/cursor.cpp", "readRun(cursor, area, ", "))"),
    "pairs_there": ("reader/cursor.cpp", "keeps the first pairs.\n  const std::uint64_t there = ", ";"),
    "pairs_held": ("reader/cursor.cpp", "const std::uint64_t held = ", ";"),
    "second": ("reader/cursor.cpp", "  second.offset += ", ";"),
    "window_begin": ("reader/window.cpp", "  window.begin = ", ";"),
    "window_wanted": ("reader/window.cpp", "const std::uint64_t wanted = ", ";"),
    "window_held": ("reader/window.cpp", "std::uint64_t offset) {\n  return ", ";"),
    "window_bytes": ("reader/window.h", "WINDOW_BYTES = ", ";"),
}

# Wrong expressions, each of which has to make a proof fail.
PLANTED = {
    "word_bytes": "8",
    "bytes_left": "cursor.size - cursor.offset",
    "required": "count == 0 || count <= bytesLeft(cursor)",
    "fixed_bytes": "sizeof record",
    "run_count": "count",
    "whole_words": "cursor.size",
    "file_byte": "at + 1",
    "odd_at": "cursor.offset + i + 1",
    "odd_byte": "at ^ 3",
    "area_words": "row_words * rows * rows",
    "pairs_held": "std::min<std::uint64_t>(count, there)",
    "second": "cursor.offset + (std::uint64_t{count} * sizeof(Word) * 2)",
    "taken": "cursor.offset + (bytes + 1)",
    "moved": "cursor.offset + (bytes) - 1",
    "window_wanted": "WINDOW_BYTES",
    "window_held": "offset >= window.begin ? window.end - offset : 0",
}


def extracted():
    found = {}
    for name, (file, before, behind) in EXPRESSIONS.items():
        text = (root / file).read_text()
        match = re.findall(re.escape(before) + r"(.*?)" + re.escape(behind), text, re.S)
        if not match:
            sys.exit(f"{file} has no longer what the proof calls {name}, between {before!r} and {behind!r}")
        found[name] = re.sub(r"\s+", " ", match[0])
    for moved in ("moved", "taken", "second"):  # what is added to an offset
        found[moved] = f"cursor.offset + ({found[moved]})"
    found["word_bytes"] = str(int(found["word_bytes"]) // 8)
    return found


def python_of(text, word_bytes):
    """The same expression in the notation of Python."""
    text = re.sub(r"sizeof\((Word|Member)\)", word_bytes, text)
    text = re.sub(r"sizeof\(Item\)|sizeof record\b", lambda m: {"sizeof(Item)": "item"}.get(m[0], "record"), text)
    text = re.sub(r"static_cast<[\w:]+>\(|std::min<[\w:]+>\(", lambda m: "min(" if "min" in m[0] else "(", text)
    text = re.sub(r"std::uint64_t\{(\w+)\}", r"\1", text).replace("cursor.", "").replace("window.", "w_")
    text = re.sub(r"\w+\(cursor\)", lambda m: m[0][:-8], text)
    text = text.replace("&&", " and ").replace("||", " or ").replace("!HOST", "not HOST")
    # One ?: at most, at the outside or in parentheses.
    inner = re.search(r"\(([^()?]+)\?([^():]+):([^()]+)\)", text)
    if inner:
        return text.replace(inner[0], f"({inner[2]} if {inner[1]} else {inner[3]})")
    outer = re.fullmatch(r"(.+?)\?(.+?):(.+)", text)
    return f"({outer[2]}) if ({outer[1]}) else ({outer[3]})" if outer else text


COMPARED = {ast.Lt: "<", ast.LtE: "<=", ast.Gt: ">", ast.GtE: ">=", ast.Eq: "="}
STEPS = {ast.Add: "+", ast.Sub: "-", ast.Mult: "*", ast.Div: "div"}


class Term:
    """An expression for z3, and what has to hold for each of its steps to stay within 64 bits."""

    def __init__(self, text, known, word_bytes):
        self.known, self.word_bytes, self.steps = known, word_bytes, []
        self.smt = self.of(ast.parse(python_of(text, word_bytes).strip(), mode="eval").body, "true")

    def step(self, smt, under):
        self.steps.append(f"(=> {under} (and (<= 0 {smt}) (< {smt} {LIMIT})))")
        return smt

    def of(self, node, under):
        match node:
            case ast.Constant():
                return str(node.value)
            case ast.Name() if node.id in self.known:
                return self.known[node.id]
            case ast.Name():
                return node.id
            case ast.IfExp():
                test = self.of(node.test, under)
                return f"(ite {test} {self.of(node.body, f'(and {under} {test})')} {self.of(node.orelse, f'(and {under} (not {test}))')})"
            case ast.BoolOp():
                name = "and" if isinstance(node.op, ast.And) else "or"
                terms = []
                for value in node.values:  # what is not reached is not computed
                    terms.append(self.of(value, under))
                    under = f"(and {under} {terms[-1] if name == 'and' else f'(not {terms[-1]})'})"
                return f"({name} {' '.join(terms)})"
            case ast.UnaryOp():
                return f"(not {self.of(node.operand, under)})"
            case ast.Compare():
                return f"({COMPARED[type(node.ops[0])]} {self.of(node.left, under)} {self.of(node.comparators[0], under)})"
            case ast.BinOp(op=ast.BitXor()):
                value, mask = self.of(node.left, under), node.right.value
                assert mask == 3
                return f"(+ (- {value} (mod {value} 4)) (- 3 (mod {value} 4)))"
            case ast.BinOp():
                return self.step(f"({STEPS[type(node.op)]} {self.of(node.left, under)} {self.of(node.right, under)})", under)
            case ast.Call():  # min
                a, b = (self.of(argument, under) for argument in node.args)
                return f"(ite (< {a} {b}) {a} {b})"
        raise NotImplementedError(ast.dump(node))


VARIABLES = "offset size count item record bytes i at row_words rows bytes_per_row w_begin w_end list_size".split()


def failures(text):
    """The names of the statements that z3 does not prove."""
    known, terms = {}, {}

    def term(name):
        terms[name] = Term(text[name], known, text["word_bytes"])
        return terms[name].smt

    word = text["word_bytes"]
    known["bytesLeft"] = term("bytes_left")
    known["wholeWords"] = term("whole_words")
    known["WINDOW_BYTES"] = str(eval(text["window_bytes"]))
    known_there = dict(known)
    required = term("required")

    def requires(n, bytes_of_one):  # what `require` says of other numbers
        return Term(text["required"], {**known_there, "count": n, "item_bytes": bytes_of_one}, word).smt

    known["item_bytes"] = "item"
    required = term("required")
    words = f"(< -1 count {WORD_LIMIT})"
    in_list = f"(< -1 size {WORD_LIMIT})"
    base = ["(< 0 item 4096)", "(< 0 record 4096)", f"(< -1 offset {LIMIT})", f"(< -1 size {LIMIT})"]
    statements = []  # name, what is assumed, the terms whose steps are in it, what follows

    def state(name, assumed, used, follows):
        statements.append((name, assumed, used, follows))

    n64 = f"(< -1 count {LIMIT})"
    state("what is required is there", [n64, required], ["bytes_left", "required"],
          "(or (= count 0) (<= (+ offset (* count item)) size))")
    took = ["(< 0 bytes)", f"(< bytes {LIMIT})", requires("bytes", "1")]
    state("what is taken lies inside", took, ["taken"], f"(<= {term('taken')} size)")
    term("moved")
    state("a move stays within 64 bits", [f"(<= offset (* 4 {WORD_LIMIT}))", f"(< -1 bytes (* 4 {WORD_LIMIT}))"], ["moved"], "true")
    at = term("file_byte")
    state("a byte in file order lies inside", ["(<= 0 at)", "(< at size)"], ["whole_words", "file_byte"], f"(and (<= 0 {at}) (< {at} size))")
    odd_at = term("odd_at")
    known["at"] = odd_at
    odd = term("odd_byte")
    known.pop("at")
    state("a byte of an odd word lies inside", took + ["(<= 0 i)", "(< i bytes)", "(= (mod bytes 4) 0)"],
          ["odd_at", "odd_byte"], f"(and (<= 0 {odd}) (< {odd} size))")
    known["there"] = term("fixed_there")
    fixed = term("fixed_bytes")
    state("the words of a cut record lie inside", [in_list], ["fixed_there", "fixed_bytes"],
          f"(and (<= {fixed} record) {requires(fixed, '1')})")
    known["there"] = term("run_there")
    run = term("run_count")
    state("a cut run lies inside", [words], ["run_there", "run_count"], requires(run, "item"))
    known["row_words"] = term("row_words")
    known["bytes_per_row"] = "bytes_per_row"
    term("area_words")
    state("the words of an area are counted right", [f"(< -1 rows {WORD_LIMIT})", f"(< -1 bytes_per_row {WORD_LIMIT})"],
          ["row_words", "area_words"], "true")
    known["there"] = term("pairs_there")
    held = term("pairs_held")
    second = term("second")
    # Words have 4 bytes in the file, whatever the source says.
    state("both words of each pair lie inside", [words, in_list, f"(<= offset (* 4 {WORD_LIMIT}))"], ["pairs_there", "pairs_held", "second"],
          f"(and (<= {held} count) (=> (> {held} 0) (and (<= (+ offset (* 4 count)) {second})"
          f" (<= (+ {second} (* 4 {held})) size))))")
    begin = term("window_begin")
    known["w_begin"] = begin
    known["w_list_size"] = "list_size"
    wanted = term("window_wanted")
    state("a window lies inside its list", ["(<= 0 offset)", "(< offset list_size)", f"(< list_size {WORD_LIMIT})"],
          ["window_begin", "window_wanted"], f"(and (<= {begin} offset) (<= {wanted} {known['WINDOW_BYTES']}) (<= (+ {begin} {wanted}) list_size))")
    known.pop("w_begin")
    window_held = term("window_held")
    state("what a window holds lies inside", ["(<= 0 w_begin w_end)", f"(< w_end {WORD_LIMIT})"], ["window_held"],
          f"(=> (> {window_held} 0) (and (<= w_begin offset) (<= (+ (- offset w_begin) {window_held}) (- w_end w_begin))))")
    state("a word is one of the format", [], [], f"(= {word} 4)")

    failed = []
    for name, assumed, used, follows in statements:
        goals = [follows] + [step for one in used for step in terms[one].steps]
        script = "".join(f"(declare-const {name} Int)" for name in VARIABLES) + "(declare-const HOST_IS_FILE_ORDER Bool)"
        script += "".join(f"(assert {one})" for one in base + assumed)
        # That the assumptions do not contradict one another, and then that nothing goes against the goals.
        script += f"(check-sat)(assert (not (and {' '.join(goals)})))(check-sat)"
        result = subprocess.run(["z3", "-in", "-T:60"], input=script, capture_output=True, text=True).stdout.split()
        if result != ["sat", "unsat"]:
            failed.append(f"{name}: {' '.join(result)[:300]}")
    return failed, len(statements)


source = extracted()
failed, number = failures(source)
if failed:
    sys.exit("not proved:\n" + "\n".join(failed))
for name, wrong in PLANTED.items():
    if not failures({**source, name: wrong})[0]:
        sys.exit(f"the wrong expression {wrong!r} for {name} makes no proof fail")
print(f"{number} statements about {len(EXPRESSIONS)} expressions are proved; each of {len(PLANTED)} wrong ones makes a proof fail")
