#!/usr/bin/env python3
"""Compares two drawing files record by record and prints what differs; status 1 when something does that may not.

    compare_drawings.py BEFORE AFTER [--changed NAME[:CODE+CODE…]]… [--may NAME[:CODE+…]]… [--erased NAME]…
                        [--added NAME]… [--added-from HANDLE] [--nameless KIND=COUNT]…

A name is a handle, `header:$VARIABLE`, `class:NAME` or `table:NAME` (the head of a table). What --changed, --erased and --added name must differ so; what --may names may. --changed and
--may can say which group codes. --added-from allows new records whose handles are at least the given one.
Records without a handle are known by their content alone: a changed one is one gone and one new; --nameless says how
many of a kind may be gone, and how many new. Several names are separated by commas. Only the standard library is used.
"""
import argparse
import collections
import difflib
import sys

from drawing_records import BadDrawing, Drawing, number


def names(values):
    return [name for value in values for name in value.split(',') if name]


def with_codes(values):
    """NAME:CODE+CODE → {NAME: {codes} or None for any}; a header's, class's or table's own colon belongs to the name."""
    result = {}
    for value in names(values):
        name, colon, codes = value.rpartition(':')
        if colon and codes.replace('+', '').lstrip('-').isdigit():
            result[name] = {int(code) for code in codes.split('+')}
        else:
            result[value] = None
    return result


def differing_codes(before, after):
    codes, lines = set(), []
    matcher = difflib.SequenceMatcher(None, before, after, autojunk=False)
    for kind, a, b, c, d in matcher.get_opcodes():
        if kind == 'equal':
            continue
        for sign, part in (('-', before[a:b]), ('+', after[c:d])):
            for code, value in part:
                codes.add(code)
                lines.append('    %s %d %r' % (sign, code, value[:100]))
    return codes, lines


def compare(before, after, options, say):
    faults = 0

    def fault(text, lines=()):
        nonlocal faults
        faults += 1
        if faults <= 50:
            say(text)
            for line in list(lines)[:12]:
                say(line)

    if before.binary != after.binary:
        fault('one file is binary, the other is text')
    if before.version != after.version and 'header:$ACADVER' not in options.may:
        fault('version %s became %s' % (before.version, after.version))
    gone, come = collections.Counter(), collections.Counter()
    old = {record.place: record for record in before.records}
    new = {record.place: record for record in after.records}

    for place, record in old.items():
        if place not in new:
            if record.nameless and gone[record.kind] < options.nameless.get(record.kind, 0):
                gone[record.kind] += 1
                continue
            if place not in options.erased:
                fault('%s %s (%s) is missing' % (record.kind, place, record.section))
            continue
        other = new[place]
        if (record.kind, record.section) != (other.kind, other.section):
            fault('%s: %s of %s became %s of %s' % (place, record.kind, record.section, other.kind, other.section))
        if record.groups == other.groups:
            if place in options.changed:
                fault('%s %s should have changed' % (record.kind, place))
            continue
        codes, lines = differing_codes(record.groups, other.groups)
        allowed = options.changed if place in options.changed else options.may
        if place not in allowed:
            fault('%s %s (%s) differs' % (record.kind, place, record.section), lines)
        elif allowed[place] is not None and not codes <= allowed[place]:
            fault('%s %s (%s) differs in more than the groups %s' % (
                record.kind, place, record.section, sorted(allowed[place])), lines)

    for place, record in new.items():
        if place in old:
            continue
        if record.nameless and come[record.kind] < options.nameless.get(record.kind, 0):
            come[record.kind] += 1
            continue
        handle = number(place)
        fresh = handle is not None and options.added_from is not None and handle >= options.added_from
        if place not in options.added and place not in options.may and not fresh:
            fault('%s %s (%s) is new' % (record.kind, place, record.section),
                  ['    + %d %r' % group for group in record.groups])
    for place in options.erased:
        if place not in old:
            fault('%s is not in the first file' % place)
        elif place in new:
            fault('%s is still there' % place)
    for place in options.added:
        if place in old or place not in new:
            fault('%s was not added' % place)
    for place in options.changed:
        if place not in old:
            fault('%s is not in the first file' % place)
    # What is in both must stand in the same order.
    order = [place for place in new if place in old]
    expected = [place for place in old if place in new]
    if order != expected:
        at = next(i for i, (a, b) in enumerate(zip(order, expected)) if a != b)
        fault('the order differs: %s stands where %s stood' % (order[at], expected[at]))
    return faults


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument('before')
    parser.add_argument('after')
    for option in ('changed', 'may', 'erased', 'added', 'nameless'):
        parser.add_argument('--' + option, action='append', default=[])
    parser.add_argument('--added-from', type=lambda text: int(text, 16))
    options = parser.parse_args()
    options.changed, options.may = with_codes(options.changed), with_codes(options.may)
    options.erased, options.added = names(options.erased), names(options.added)
    options.nameless = {kind: int(count) for kind, _, count in
                           (value.partition('=') for value in names(options.nameless))}
    try:
        faults = compare(Drawing(options.before), Drawing(options.after), options, print)
    except BadDrawing as error:
        print('cannot be compared: %s' % error)
        return 1
    if faults:
        print('%d differences' % faults)
    return 1 if faults else 0


if __name__ == '__main__':
    sys.exit(main())
