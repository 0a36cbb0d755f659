"""Reads a drawing file (text or binary, R12 to 2018) into its records. Shares nothing with the program's own reader.

A record is a group 0 with the groups that follow it; a header variable, a section's start and the head of a table are
records too. Values of text files stay the texts of their lines, so that every digit counts; numbers of binary files are
the bytes they are stored in.
"""
import hashlib
import re

# A binary file begins with 22 bytes, of which the first eight name a program.
BINARY_TAIL = b'Binary DXF\r\n\x1a\x00'
BINARY_MARK_SIZE = 22

# Code pages by the names that headers use for them, in lower case.
CODE_PAGES = {
    'ansi_874': 'cp874', 'ansi_932': 'cp932', 'ansi_936': 'gbk', 'ansi_949': 'cp949', 'ansi_950': 'cp950',
    'ansi_1250': 'cp1250', 'ansi_1251': 'cp1251', 'ansi_1252': 'cp1252', 'ansi_1253': 'cp1253',
    'ansi_1254': 'cp1254', 'ansi_1255': 'cp1255', 'ansi_1256': 'cp1256', 'ansi_1257': 'cp1257',
    'ansi_1258': 'cp1258', 'dos932': 'cp932', 'gb2312': 'gbk', 'big5': 'cp950', 'johab': 'johab',
    'dos437': 'cp437', 'dos850': 'cp850', 'dos852': 'cp852', 'dos855': 'cp855', 'dos866': 'cp866',
}


class BadDrawing(Exception):
    """The file is no drawing, or ends in the middle."""


def kind_of(code):
    """Of which kind the value of a group code is: text, handle, real, int or bytes."""
    if code in (5, 105) or 320 <= code <= 369 or 390 <= code <= 399 or 480 <= code <= 481 or code == 1005:
        return 'handle'
    if code == 1004 or 310 <= code <= 319:
        return 'bytes'
    if 10 <= code <= 59 or 110 <= code <= 149 or 210 <= code <= 239 or 460 <= code <= 469 or 1010 <= code <= 1059:
        return 'real'
    if 60 <= code <= 99 or 160 <= code <= 179 or 270 <= code <= 299 or 370 <= code <= 389 or 400 <= code <= 409 \
            or 420 <= code <= 429 or 440 <= code <= 459 or 1060 <= code <= 1071:
        return 'int'
    return 'text'


def binary_size(code):
    """Bytes that the value takes in a binary file; None: text that ends with a zero; -1: a chunk with its length."""
    kind = kind_of(code)
    if kind == 'bytes':
        return -1
    if kind == 'real':
        return 8
    if kind != 'int':
        return None
    if 160 <= code <= 169:
        return 8
    if 290 <= code <= 299:
        return 1
    if 90 <= code <= 99 or 420 <= code <= 429 or 440 <= code <= 459 or code == 1071:
        return 4
    return 2


def text_groups(data):
    lines = data.split(b'\n')
    if lines and not lines[-1].strip(b'\r\x1a\0 '):
        lines.pop()
    if len(lines) % 2:
        raise BadDrawing('line %d: a group code without a value' % len(lines))
    for i in range(0, len(lines), 2):
        try:
            code = int(lines[i])
        except ValueError:
            raise BadDrawing('line %d: %r is no group code' % (i + 1, lines[i][:40])) from None
        yield code, lines[i + 1].rstrip(b'\r')
        if code == 0 and lines[i + 1].strip() == b'EOF':
            return


def binary_groups(data):
    at = BINARY_MARK_SIZE
    # A group code takes one byte in R12 and two later: the value of the first one tells.
    wide = data[at:at + 2] == b'\0\0'
    while at < len(data):
        if wide:
            code = int.from_bytes(data[at:at + 2], 'little')
            at += 2
        else:
            code = data[at]
            at += 1
            if code == 255:
                code = int.from_bytes(data[at:at + 2], 'little')
                at += 2
        size = binary_size(code)
        if not wide and code == 1071:
            size = 4
        if size is None:
            end = data.find(b'\0', at)
            if end < 0:
                raise BadDrawing('byte %d: a text without end' % at)
            value, at = data[at:end], end + 1
        else:
            if size < 0:
                size = data[at]
                at += 1
            value, at = data[at:at + size], at + size
            if at > len(data):
                raise BadDrawing('byte %d: the file ends inside a value' % len(data))
        yield code, value
        if code == 0 and value == b'EOF':
            return


class Record:
    def __init__(self, section, kind):
        self.section, self.kind, self.groups, self.place = section, kind, [], ''
        self.nameless = False

    def first(self, code):
        return next((value for c, value in self.groups if c == code), None)

    @property
    def handle(self):
        """The record's own handle; groups inside {…} lists and behind extended data are not its own."""
        own = 105 if self.kind == 'DIMSTYLE' else 5
        value = self.first(own)
        if value is None and self.kind == 'DIMSTYLE' and self.section == 'TABLES':
            return None
        if value is None or self.section not in ('TABLES', 'BLOCKS', 'ENTITIES', 'OBJECTS'):
            return None
        return value.strip().upper().lstrip('0') or '0'


class Drawing:
    """records: in the order of the file. encoding: of its texts. binary: how it is stored."""

    def __init__(self, path):
        with open(path, 'rb') as file:
            data = file.read()
        self.path, self.binary = path, data[8:BINARY_MARK_SIZE] == BINARY_TAIL
        groups = list(binary_groups(data) if self.binary else text_groups(data[3:] if data[:3] == b'\xef\xbb\xbf' else data))
        if not groups or groups[-1] != (0, groups[-1][1]) or groups[-1][1].strip() != b'EOF':
            raise BadDrawing('the file has no end mark')
        self.version, self.encoding = self._head(groups)
        self.records = []
        self._split(groups)
        self._name()

    @staticmethod
    def _head(groups):
        version, page, name = 'AC1009', '', None
        for code, value in groups:
            if code == 0 and value.strip() == b'ENDSEC':
                break
            if code == 9:
                name = value.strip()
            elif name == b'$ACADVER':
                version, name = value.strip().decode('ascii', 'replace'), None
            elif name == b'$DWGCODEPAGE':
                page, name = value.strip().decode('ascii', 'replace').lower(), None
        if version >= 'AC1021':
            return version, 'utf-8'
        return version, CODE_PAGES.get(page, 'cp1252')

    def text(self, raw):
        """Text of raw bytes; bytes that the encoding lacks stay visible as \\xNN."""
        return raw.decode(self.encoding, 'backslashreplace')

    def _value(self, code, raw):
        kind = kind_of(code)
        if kind == 'text':
            return self.text(raw)
        if kind == 'handle' or not self.binary:
            return raw.decode('latin-1').strip()
        return raw.hex()

    def _split(self, groups):
        section, record = '', None
        expect_name = False
        for code, raw in groups:
            value = self._value(code, raw)
            if code == 0:
                kind = value.strip()
                if kind == 'SECTION':
                    expect_name = True
                    section = ''
                record = Record(section, kind)
                self.records.append(record)
                if kind == 'ENDSEC':
                    section = ''
            elif expect_name and code == 2:
                section, expect_name = value.strip(), False
                record.section = section
            elif section == 'HEADER' and code == 9:
                record = Record(section, value.strip())
                self.records.append(record)
            else:
                if record is None:
                    record = Record('', '(start)')
                    self.records.append(record)
                record.groups.append((code, value))

    def _name(self):
        """Gives every record the name under which it is looked for in another file."""
        seen = {}
        for record in self.records:
            handle = record.handle
            if record.kind == 'TABLE' and record.section == 'TABLES':
                name = 'table:%s' % record.first(2)
            elif record.section == 'HEADER' and record.kind.startswith('$'):
                name = 'header:' + record.kind
            elif record.kind == 'CLASS' and record.section == 'CLASSES':
                name = 'class:%s' % record.first(1)
            elif handle is not None:
                name = handle
            elif record.groups and record.section in ('TABLES', 'BLOCKS', 'ENTITIES', 'OBJECTS'):
                # Without a handle the content is all there is to know it by.
                content = repr(record.groups).encode('utf-8', 'backslashreplace')
                name = '%s#%s' % (record.kind, hashlib.sha1(content).hexdigest()[:12])
                record.nameless = True
            else:
                name = '%s/%s' % (record.section, record.kind)
            count = seen[name] = seen.get(name, 0) + 1
            record.place = name if count == 1 else '%s~%d' % (name, count)


def number(text):
    """The value of a handle; None for what is none."""
    return int(text, 16) if re.fullmatch('[0-9A-Fa-f]{1,16}', text) else None
