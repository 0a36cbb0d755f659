// A markup (XML) document in memory: its text, an index of the elements found in it, and a position that
// callers move from element to element. It does not validate: what is malformed is noted, and the rest stays
// usable.
#pragma once

#include "exchange/markup_scanner.h"

#include <QString>

#include <vector>

/// The position is a parent, one of its children as main position (or none: before the first), and a child of
/// the main position as current child (or none). Documents can be copied; a copy keeps the position.
class MarkupDocument {
public:
    /// How AddElem writes an element; also what SetDocFlags takes, for all elements added from then on.
    enum Flag {
        CData = 1, ///< the value as CDATA section instead of escaped text
        SpaceBeforeSlash = 2, ///< "<name />" instead of "<name/>"
        NoEndTag
        = 4, ///< "<name>" alone. Read again from a file, it holds what follows it up to its parent's end
        WithReferences = 8, ///< an "&" that starts a reference in a value is not escaped
    };

    MarkupDocument() { SetDoc({}); }

    /// Reads, decodes and parses a file, found without regard to letter case; afterwards the position is
    /// before the first top-level element. False, with an empty document and "file_error" in the result, when
    /// the file cannot be read.
    bool Load(const QString& path);
    /// Writes the document in the encoding and with the byte order mark it was loaded with; UTF-8 for a new
    /// one, unless its declaration says otherwise. The file is replaced as a whole or not at all. False with
    /// "file_error" in the result when it cannot be written. A character that the encoding lacks is written
    /// as a character reference and counted as "conversion_loss".
    bool Save(const QString& path);

    /// As Load does, from the bytes of a file.
    void SetBytes(std::string_view bytes);
    /// The bytes Save would write.
    QByteArray GetBytes();

    /// Takes a text as the document and parses it. False when it is not well formed; see GetResult().
    bool SetDoc(const QString& text);
    const QString& GetDoc() const { return m_text; }

    void SetDocFlags(int flags) { m_flags = flags; }
    int GetDocFlags() const { return m_flags; }

    /// What the last Load, SetDoc or Save found, as markup without a root: <read encoding="GBK"
    /// length="812"/>… Items: read, write, file_error, bom, utf8_detection, endian_swap, nulls_removed,
    /// converted_to, converted_from, conversion_loss, truncation_error, lone_end_tag, unended_start_tag,
    /// root_has_sibling, no_root_element. Offsets are in UTF-16 units of the text, or in bytes for what
    /// concerns the encoding. Of each parse finding the first twenty are listed and the others counted.
    QString GetResult() const { return m_result; }
    /// Why the last Load or Save failed, as a sentence for the user; empty when it did not.
    QString GetError() const { return m_error; }
    /// The encoding of the loaded file ("UTF-8", "UTF-16LE", "UTF-16BE", "GBK", …).
    QString GetEncoding() const { return m_encoding; }

    /// Position before the first top-level element; before the first element of the level; before the first
    /// child.
    void ResetPos();
    void ResetMainPos();
    void ResetChildPos() { m_child = none; }

    /// To the next element of the level, the next of that name when one is given. False at the end of the
    /// level; the position stays.
    bool FindElem(const QString& name = {});
    /// To the next child of the main position, by name when one is given. False when there is none; the
    /// current child stays.
    bool FindChildElem(const QString& name = {});
    /// Makes the main position the parent; the next FindElem finds its first child. False without main
    /// position.
    bool IntoElem();
    /// Makes the parent the main position. False at the top level.
    bool OutOfElem();

    /// Name, attribute and text of the main position or the current child; empty where there is none. The
    /// text is the element's own, without that of its children, and empty when it holds only children and
    /// blanks.
    QString GetTagName() const { return tagName(m_current); }
    QString GetAttrib(const QString& name) const;
    QString GetData() const { return data(m_current); }
    QString GetChildData() const { return data(m_child); }

    /// Sets or adds an attribute of the main position. False without one, or when the name cannot be a name.
    bool SetAttrib(const QString& name, const QString& value, int flags = 0);
    /// Replaces the text of the main position or the current child. False when it has children of its own.
    bool SetData(const QString& value, int flags = 0) { return setData(m_current, value, flags); }
    bool SetChildData(const QString& value, int flags = 0) { return setData(m_child, value, flags); }

    /// Adds an element after the main position, at the end of the level when there is none, on a line of its
    /// own, and makes it the main position. Without a value (a null text) it is an empty tag. False when the
    /// name cannot be a name.
    bool AddElem(const QString& name, const QString& value = {}, int flags = 0);
    /// The same after the current child of the main position. False without main position, too.
    bool AddChildElem(const QString& name, const QString& value = {}, int flags = 0);
    /// Removes the main position with all it holds; the next FindElem finds the element that followed it.
    bool RemoveElem();

private:
    static constexpr int none = -1;
    static constexpr int top = 0; ///< the element that stands for the document itself

    /// Offsets into the text: of "<", after the start tag, of the end tag, after it.
    struct Element {
        qsizetype start = -1;
        qsizetype tagEnd = 0;
        qsizetype contentEnd = 0;
        qsizetype end = 0;
        int parent = none;
        int first = none;
        int last = none;
        int previous = none;
        int next = none;
        bool emptyTag = false;
        bool inUse = true;
    };

    struct Findings;

    void clear();
    bool parse();
    QString htmlCharset() const;
    QString declaredEncoding() const;

    int newElement();
    void link(int element, int parent, int previous);
    void unlinkAndFree(int element);
    void splice(int within, qsizetype at, qsizetype length, const QString& text);

    QStringView tag(int element) const;
    QString tagName(int element) const;
    QString data(int element) const;
    bool setData(int element, const QString& value, int flags);
    void openEmptyTag(int element);
    int findAfter(int previous, int parent, const QString& name) const;
    int insertElement(int parent, int previous, const QString& name, const QString& value, int flags);
    qsizetype lineStart(qsizetype at) const;
    QString indentation(int element) const;
    QString childIndentation(int parent) const;
    QString lineBreak() const;

    QString m_text;
    std::vector<Element> m_elements;
    std::vector<int> m_free;
    int m_parent = top;
    int m_current = none;
    int m_before
        = none; ///< without main position: the element of the level that the next search starts behind
    int m_child = none;
    int m_flags = 0;
    QString m_encoding;
    bool m_byteOrderMark = false;
    QString m_result;
    QString m_error;
};
