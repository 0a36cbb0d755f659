// The lexical side of markup: finds tags, comments and sections in a text that may be malformed anywhere, and
// escapes and unescapes what stands between them. Each scan is linear in the length of the text.
#pragma once

#include <QString>

#include <optional>

namespace markup {

struct Token {
    enum class Kind {
        StartTag, ///< <name ...>
        EmptyTag, ///< <name .../>
        EndTag, ///< </name>
        CData, ///< <![CDATA[ ... ]]>
        Comment,
        Instruction, ///< <? ... ?>, the declaration at the start included
        Declaration, ///< <!DOCTYPE ...>
        Broken, ///< a "<" that begins nothing or whose end is missing
    };
    Kind kind = Kind::Broken;
    qsizetype begin = 0; ///< offset of "<"
    qsizetype end = 0; ///< offset after the last character
    QStringView name; ///< of tags, and of what a broken token began with
};

/// Walks the markup of a text. The text must stay unchanged meanwhile.
class Scanner {
public:
    explicit Scanner(QStringView text, qsizetype from = 0)
        : m_text(text)
        , m_at(from)
    {
    }

    /// The next token at or after the place reached; nothing when no "<" is left.
    std::optional<Token> next();

private:
    Token tokenAt(qsizetype begin);
    Token tagAt(qsizetype begin) const;
    Token endTagAt(qsizetype begin) const;
    Token declarationAt(qsizetype begin);
    Token
    sectionAt(qsizetype begin, Token::Kind kind, QStringView open, QStringView close, bool& closeIsMissing);

    QStringView m_text;
    qsizetype m_at = 0;
    /// Once an end mark was not found, no later search for it can succeed; not searching again keeps scans
    /// linear.
    bool m_noCommentEnd = false;
    bool m_noCDataEnd = false;
    bool m_noInstructionEnd = false;
    bool m_noDeclarationEnd = false;
};

/// One attribute inside a start tag, as offsets into the text. The value's offsets leave out the quotes; an
/// attribute without a value has valueBegin == -1.
struct Attribute {
    qsizetype nameBegin = 0;
    qsizetype nameEnd = 0;
    qsizetype valueBegin = -1;
    qsizetype valueEnd = -1;
    bool quoted = false;
};

/// The attribute of that name in the start tag text[begin, end); the first one where it stands twice.
std::optional<Attribute> findAttribute(
    QStringView text, qsizetype begin, qsizetype end, QStringView name,
    Qt::CaseSensitivity sensitivity = Qt::CaseSensitive);

/// The name that begins at an offset, up to a blank, a quote or a mark; empty when none does.
QStringView tagNameAt(QStringView text, qsizetype begin);

/// Whether a text can be the name of an element or an attribute.
bool isName(QStringView text);

/// Replaces "<", "&", ">" and, for attributes, both quotes by their entities. With keepReferences an "&" that
/// already starts a reference stays.
QString escape(QStringView text, bool forAttribute, bool keepReferences = false);

/// Resolves the predefined entities and the character references; other references stay as they are.
QString unescape(QStringView text);

/// The text as one or more CDATA sections.
QString cdataSection(const QString& text);

/// The character data of text[begin, end), which must hold no elements: unescaped text and CDATA sections.
QString characterData(QStringView text);

} // namespace markup
