#!/usr/bin/env python3
"""Checks a drawing with ezdxf and prints what it finds: errors first, then what it would repair.

    audit_drawing.py FILE [AFTER]

With two files: status 1 when the second has more errors or fixes of some kind than the first. Status 77 when ezdxf is
not installed or cannot read the (first) file; nothing was checked then.
"""
import collections
import sys

NOT_CHECKED = 77

try:
    import ezdxf
    from ezdxf import recover
except ImportError:
    print('ezdxf is not installed')
    sys.exit(NOT_CHECKED)


def audited(path):
    """(errors, fixes) as lists of (code, message)."""
    try:
        document = ezdxf.readfile(path)
        auditor = document.audit()
    except (ezdxf.DXFError, UnicodeError):
        document, auditor = recover.readfile(path)
    return [[(int(entry.code), entry.message) for entry in entries] for entries in (auditor.errors, auditor.fixes)]


def show(path, found):
    for title, entries in zip(('errors', 'fixes'), found):
        print('%s: %d %s' % (path, len(entries), title))
        for code, message in entries[:20]:
            print('  %d %s' % (code, message))


def main(arguments):
    if len(arguments) not in (1, 2):
        print(__doc__)
        return 2
    try:
        before = audited(arguments[0])
    except Exception as error:  # whatever it stumbles over, this file cannot be judged by it
        print('ezdxf cannot read %s: %s: %s' % (arguments[0], type(error).__name__, error))
        return NOT_CHECKED
    if len(arguments) == 1:
        show(arguments[0], before)
        return 0
    try:
        after = audited(arguments[1])
    except Exception as error:
        print('ezdxf cannot read %s: %s: %s' % (arguments[1], type(error).__name__, error))
        return 1
    worse = False
    for title, old, new in zip(('errors', 'fixes'), before, after):
        more = collections.Counter(code for code, _ in new) - collections.Counter(code for code, _ in old)
        if more:
            worse = True
            print('more %s: %s' % (title, dict(more)))
            known = set(old)
            for code, message in new:
                if code in more and (code, message) not in known:
                    print('  %d %s' % (code, message))
    return 1 if worse else 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
