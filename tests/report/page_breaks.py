"""Breaks the report page in many ways, one at a time, and runs the tests that must fail then.

Without arguments all breaks, else those named. A break is an edit of the finished page; the
policy's hashes are reckoned anew, so that the broken page runs. Status 1: a break found no place,
or no test failed.
"""

import base64
import hashlib
import os
import re
import subprocess
import sys

TABLE, MAP, VIEW, CURVES, TRACE, SAFETY = (
    f"page_{name}_test" for name in ("table", "map", "view", "pixels", "trace", "safety"))
PIXELS = CURVES + ".PixelsTest.test_curves_of_made_traces_stand_where_their_samples_are"
MOVING = TRACE + ".MovingTest"
LINKS = VIEW + ".LinksTest"
HOSTILE = SAFETY + ".HostileNamesTest"

# Name of the break: (text of the page, what stands there instead, the tests).
BREAKS = {
    "curves and letters of other colours": (
        '`--base-${letter.toLowerCase()}`',
        '`--base-${"catg"["acgt".indexOf(letter.toLowerCase())]}`',
        PIXELS),
    "A is blue": (
        re.compile(r"--base-a: #\w+"), "--base-a: #1f3fd0",
        CURVES + ".PixelsTest.test_a_is_green_c_blue_g_black_and_t_red"),
    "curves of the next channel": (
        "picture.levels.forEach(", "[1, 2, 3, 0].map((i) => picture.levels[i]).forEach(", PIXELS),
    "a place of the base after": ("calls.positions[base - 1]", "calls.positions[base]", PIXELS),
    "positions three samples late": (
        re.compile(r"let position = 0;"), "let position = 3;", PIXELS),
    "letters one base on": (
        "shownLetter(scene, calls.bases[i])", "shownLetter(scene, calls.bases[i + 1])",
        PIXELS),
    "heights that are no multiples": (
        "baseline - level * unit", "baseline - Math.sqrt(level * 60) * unit", PIXELS),
    "heights 15 % off in one channel": (
        "picture.levels.forEach(",
        "picture.levels.map((own, i) => (i === 1 ? own.map((level) => level * 0.85) : own))"
        ".forEach(",
        PIXELS),
    "one channel held too low": (
        "const levels = Array.from(channelLetters, takeLevels);",
        "const levels = Array.from(channelLetters, takeLevels);"
        "levels[2] = levels[2].map((level) => level * 0.85);", PIXELS),
    "another level expected": ("4 * a - 3 * b + c", "4 * a - 2 * b", PIXELS),
    "distances that swell and shrink": (
        "(place - scene.from) * scene.scale",
        "(place + 6 * Math.sin(place / 30) - scene.from) * scene.scale", PIXELS),
    "no complement": (
        'const complements = { A: "T", C: "G", G: "C", T: "A" }', "const complements = {}",
        MOVING + ".test_the_reverse_complement_mirrors_the_trace_and_keeps_its_numbers"),
    "the result's letters are the trace's": (
        "hasResult ? takeCalls(resultCount)", "hasResult ? (takeCalls(resultCount), calls)",
        TRACE + ".ReadingsTest"),
    "rows of the JSON with markup": ("\\u003c", "<", HOSTILE),
    "a heading with markup": ("&lt;b&gt;", "<b>", HOSTILE),
    "a policy that lets scripts run": (
        re.compile(r"script-src [^;]*;"), "script-src 'unsafe-inline';",
        SAFETY + ".PolicyTest.test_an_added_script_does_not_run"),
    "a policy that lets addresses be asked for": (
        re.compile(r"default-src 'none'; script-src ([^;]*)"), r"default-src *; script-src \1 *",
        SAFETY + ".PolicyTest.test_added_addresses_are_not_asked_for"),
    "markup from strings": (
        re.compile(r"require-trusted-types-for 'script'; trusted-types 'none'"), "",
        SAFETY + ".PolicyTest.test_markup_can_not_be_made_from_strings"),
    "an address asked for": (
        '"use strict";', '"use strict"; fetch("http://localhost/x").catch(() => {});',
        TABLE + ".TableTest.test_a_click_on_a_row_chooses_it"),
    "a text on the console": (
        '"use strict";', '"use strict"; console.log("here");',
        TABLE + ".TableTest.test_a_click_on_a_row_chooses_it"),
    "the best state first": (
        re.compile(r"(rank\(a\) - rank\(b\)|a\.rank - b\.rank)"), r"-(\1)",
        TABLE + ".TableTest.test_the_worst_stands_first_and_the_first_is_chosen_and_drawn"),
    "long good stretches first": (
        "need(a) - need(b)", "need(b) - need(a)",
        TABLE + ".TableTest.test_the_worst_stands_first_and_the_first_is_chosen_and_drawn"),
    "P10 before P2": (
        "{ numeric: true }", "{ numeric: false }",
        TABLE + ".TableTest.test_a_heading_sorts_turns_round_and_goes_back"),
    "a limit that counts as less": (
        re.compile(r"\((\w+)\) => \1 < limit"), r"(\1) => \1 <= limit",
        TABLE + ".TableTest.test_a_limit_itself_is_neither_less_nor_more"),
    "a row of the table with another's values": (
        re.compile(r'("data-sample"|dataset: \{ sample): row\.sample'), r"\1: rows[0].sample",
        TABLE + ".TableTest.test_rows_are_those_of_the_table"),
    "a link that ends at its first colon": (
        "/^#?(.*?)(?::([^:]*))?$/s", "/^#?([^:]*)(?::(.*))?$/s", LINKS),
    "keys that act while one types": (
        'closest?.("input, textarea, select, dialog")', 'closest?.("textarea")',
        VIEW + ".KeysTest.test_no_key_acts_while_one_types_or_with_a_modifier"),
    "keys that act with Ctrl": (
        "event.ctrlKey || event.altKey || event.metaKey || ", "",
        VIEW + ".KeysTest.test_no_key_acts_while_one_types_or_with_a_modifier"),
    "an address that changes all the time": (
        re.compile(r"const addressPause = \d+"), "const addressPause = 5",
        LINKS + ".test_the_address_follows_four_times_a_second_at_most"),
    "1,100 rows on paper": (
        "const mostPrintedRows = 1000", "const mostPrintedRows = 1100",
        VIEW + ".ViewsTest.test_paper_holds_1000_rows_at_most_and_says_so"),
    "a field without a name": (
        re.compile(r'<input type="search"[^>]*>'), '<input type="search">', SAFETY + ".AxeTest"),
    "grey text that is too pale": (
        re.compile(r"--faint: #\w+"), "--faint: #c8c8c8",
        SAFETY + ".AxeTest.test_axe_finds_nothing_in_the_light"),
    "wells one column to the right": (
        "[parseInt(letter, 36) - 9, Number(number)]",
        "[parseInt(letter, 36) - 9, Number(number) % 12 + 1]",
        MAP + ".MapTest.test_wells_stand_in_the_lines_and_columns_of_their_plate"),
    "lines and columns of wells swapped": (
        "[parseInt(letter, 36) - 9, Number(number)]", "[Number(number), parseInt(letter, 36) - 9]",
        MAP + ".MapTest.test_wells_stand_in_the_lines_and_columns_of_their_plate"),
}


def hash_of(text):
    digest = hashlib.sha256(text.encode("utf-8", "surrogateescape")).digest()
    return f"'sha256-{base64.b64encode(digest).decode()}'"


def edit(path, name):
    """Breaks the page in this file."""
    wanted, instead, _ = BREAKS[name]
    with open(path, encoding="utf-8", errors="surrogateescape", newline="") as file:
        text = file.read()
    if isinstance(wanted, str):
        broken = text.replace(wanted, instead)
    else:
        broken = wanted.sub(instead, text)
    for tag in ("script", "style"):
        before, after = (re.search(f"<{tag}>(.*?)</{tag}>", each, re.DOTALL)[1]
                         for each in (text, broken))
        broken = broken.replace(hash_of(before), hash_of(after))
    with open(path, "w", encoding="utf-8", errors="surrogateescape", newline="") as file:
        file.write(broken)
    # Not every page has a name with markup, but every page has the program's own text.
    if broken == text and instead not in ("<", "<b>"):
        sys.exit(f"page_breaks: nothing to break: {name}")


def main(names):
    unnoticed = []
    for name in names or BREAKS:
        tests = BREAKS[name][2]
        done = subprocess.run([sys.executable, "-m", "unittest", "-f", tests],
                              env={**os.environ, "QUILLET_PAGE_BREAK": name},
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        said = done.stdout.decode()
        failed = re.search(r"^(?:FAIL|ERROR): (\S+).*?\n(\w*Error\w*: [^\n]*)", said, re.M | re.S)
        is_noticed = done.returncode != 0 and "nothing to break" not in said and failed
        print(f"{name}: " + (f"{failed[1]}: {failed[2][:100]}" if is_noticed
                             else "NOT NOTICED\n" + said), flush=True)
        if not is_noticed:
            unnoticed.append(name)
    if unnoticed:
        sys.exit(f"page_breaks: {len(unnoticed)} of the breaks fail no test")


if __name__ == "__main__":
    main(sys.argv[1:])
