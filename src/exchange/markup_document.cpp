// The element index of a markup document, the position in it, and the edits that keep index and text
// together.
#include "exchange/markup_document.h"

#include "exchange/markup_result.h"

using markup::Token;

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

} // namespace

// What the parse noted, the first few of each kind in full.
struct MarkupDocument::Findings {
    static constexpr int listed = 20;

    struct Kind {
        const char* name;
        int count = 0;
        QString items;

        void add(QStringView tagName, qsizetype offset, qsizetype offset2 = -1)
        {
            if (++count <= listed)
                items += markup::resultItem(
                    name,
                    { { "tagname", tagName.toString() },
                      { "offset", QString::number(offset) },
                      { "offset2", offset2 < 0 ? QString() : QString::number(offset2) } });
        }

        QString text() const
        {
            if (count <= listed)
                return items;
            return items + markup::resultItem(name, { { "count", QString::number(count - listed) } });
        }
    };

    Kind loneEndTag{ "lone_end_tag", 0, {} };
    Kind unendedStartTag{ "unended_start_tag", 0, {} };
    Kind rootHasSibling{ "root_has_sibling", 0, {} };
    bool noRootElement = false;

    QString text() const
    {
        return loneEndTag.text() + unendedStartTag.text() + rootHasSibling.text()
            + (noRootElement ? markup::resultItem("no_root_element") : QString());
    }
};

void MarkupDocument::clear()
{
    m_text.clear();
    m_encoding.clear();
    m_byteOrderMark = false;
    m_result.clear();
    m_error.clear();
    parse();
}

bool MarkupDocument::SetDoc(const QString& text)
{
    m_text = text;
    m_result.clear();
    m_error.clear();
    return parse();
}

// Builds the index with a stack of open elements, so that the depth of nesting costs no call depth. An end
// tag closes the nearest open element of its name; whatever is open inside that one ends there without an end
// tag.
bool MarkupDocument::parse()
{
    m_elements.clear();
    m_free.clear();
    m_elements.emplace_back();
    m_elements[top].contentEnd = m_elements[top].end = m_text.size();
    ResetPos();

    Findings findings;
    std::vector<std::pair<int, QStringView>> open;
    QHash<QStringView, int> openByName;
    const auto close = [&](qsizetype contentEnd, qsizetype end) {
        const auto [element, name] = open.back();
        open.pop_back();
        --openByName[name];
        m_elements[size_t(element)].contentEnd = contentEnd;
        m_elements[size_t(element)].end = end;
    };
    const auto closeUnended = [&](qsizetype at) {
        const Element& element = m_elements[size_t(open.back().first)];
        findings.unendedStartTag.add(open.back().second, element.start, at);
        close(at, at);
    };

    markup::Scanner scanner(m_text);
    while (const auto token = scanner.next()) {
        switch (token->kind) {
        case Token::Kind::StartTag:
        case Token::Kind::EmptyTag: {
            const int parent = open.empty() ? top : open.back().first;
            if (parent == top && m_elements[top].first != none)
                findings.rootHasSibling.add(token->name, token->begin);
            const int element = newElement();
            m_elements[size_t(element)].start = token->begin;
            m_elements[size_t(element)].tagEnd = token->end;
            m_elements[size_t(element)].contentEnd = m_elements[size_t(element)].end = token->end;
            m_elements[size_t(element)].emptyTag = token->kind == Token::Kind::EmptyTag;
            link(element, parent, m_elements[size_t(parent)].last);
            if (token->kind == Token::Kind::StartTag) {
                open.emplace_back(element, token->name);
                ++openByName[token->name];
            }
            break;
        }
        case Token::Kind::EndTag:
            if (openByName.value(token->name) == 0) {
                findings.loneEndTag.add(token->name, token->begin);
                break;
            }
            while (open.back().second != token->name)
                closeUnended(token->begin);
            close(token->begin, token->end);
            break;
        case Token::Kind::Broken:
            if (!token->name.isEmpty())
                findings.unendedStartTag.add(token->name, token->begin);
            break;
        default:
            break;
        }
    }
    while (!open.empty())
        closeUnended(m_text.size());
    findings.noRootElement = m_elements[top].first == none;
    const QString found = findings.text();
    m_result += found;
    return found.isEmpty();
}

// The "encoding" of the declaration at the start of the text; empty without one.
QString MarkupDocument::declaredEncoding() const
{
    const QStringView text = QStringView(m_text).trimmed();
    if (!text.startsWith(u"<?xml"))
        return {};
    const qsizetype end = text.indexOf(u"?>");
    if (end < 0)
        return {};
    const auto attribute = markup::findAttribute(text, 1, end + 1, u"encoding");
    if (!attribute || attribute->valueBegin < 0)
        return {};
    return text.sliced(attribute->valueBegin, attribute->valueEnd - attribute->valueBegin).toString();
}

// The "charset" that a "meta" element states, in the content type of an HTML document or by itself; empty
// without one.
QString MarkupDocument::htmlCharset() const
{
    for (size_t i = 1; i < m_elements.size(); ++i) {
        const Element& element = m_elements[i];
        if (tagName(int(i)).compare(u"meta", Qt::CaseInsensitive) != 0)
            continue;
        const auto attribute = [&](QStringView name) {
            const auto found
                = markup::findAttribute(m_text, element.start, element.tagEnd, name, Qt::CaseInsensitive);
            if (!found || found->valueBegin < 0)
                return QString();
            return markup::unescape(
                QStringView(m_text).sliced(found->valueBegin, found->valueEnd - found->valueBegin));
        };
        if (const QString charset = attribute(u"charset"); !charset.isEmpty())
            return charset;
        if (attribute(u"http-equiv").compare(u"Content-Type", Qt::CaseInsensitive) != 0)
            continue;
        static const QRegularExpression charset(
            QStringLiteral("charset\\s*=\\s*[\"']?([^\\s\"';]+)"), QRegularExpression::CaseInsensitiveOption);
        return charset.match(attribute(u"content")).captured(1);
    }
    return {};
}

int MarkupDocument::newElement()
{
    if (m_free.empty()) {
        m_elements.emplace_back();
        return int(m_elements.size()) - 1;
    }
    const int element = m_free.back();
    m_free.pop_back();
    m_elements[size_t(element)] = Element();
    return element;
}

// Puts an element into the level of its parent, behind another or, without one, in front.
void MarkupDocument::link(int element, int parent, int previous)
{
    Element& own = m_elements[size_t(element)];
    Element& above = m_elements[size_t(parent)];
    own.parent = parent;
    own.previous = previous;
    own.next = previous == none ? above.first : m_elements[size_t(previous)].next;
    (previous == none ? above.first : m_elements[size_t(previous)].next) = element;
    (own.next == none ? above.last : m_elements[size_t(own.next)].previous) = element;
}

// Takes an element and all below it out of the index.
void MarkupDocument::unlinkAndFree(int element)
{
    const Element own = m_elements[size_t(element)];
    Element& above = m_elements[size_t(own.parent)];
    (own.previous == none ? above.first : m_elements[size_t(own.previous)].next) = own.next;
    (own.next == none ? above.last : m_elements[size_t(own.next)].previous) = own.previous;
    std::vector<int> pending{ element };
    while (!pending.empty()) {
        const int freed = pending.back();
        pending.pop_back();
        for (int child = m_elements[size_t(freed)].first; child != none;
             child = m_elements[size_t(child)].next)
            pending.push_back(child);
        m_elements[size_t(freed)].inUse = false;
        m_free.push_back(freed);
    }
}

// Replaces text[at, at + length), which lies inside the element "within" and in none of its children, and
// moves the offsets of everything behind it.
void MarkupDocument::splice(int within, qsizetype at, qsizetype length, const QString& text)
{
    m_text.replace(at, length, text);
    const qsizetype shift = text.size() - length;
    for (Element& element : m_elements) {
        if (!element.inUse || element.start < at + length)
            continue;
        element.start += shift;
        element.tagEnd += shift;
        element.contentEnd += shift;
        element.end += shift;
    }
    for (int i = within; i != none; i = m_elements[size_t(i)].parent) {
        Element& element = m_elements[size_t(i)];
        if (element.tagEnd > at)
            element.tagEnd += shift;
        element.contentEnd += shift;
        element.end += shift;
    }
}

void MarkupDocument::ResetPos()
{
    m_parent = top;
    ResetMainPos();
}

void MarkupDocument::ResetMainPos()
{
    m_current = m_before = m_child = none;
}

// The next element of a level behind another, or from the start of the level; none when there is none.
int MarkupDocument::findAfter(int previous, int parent, const QString& name) const
{
    int element = previous == none ? m_elements[size_t(parent)].first : m_elements[size_t(previous)].next;
    while (element != none && !name.isEmpty() && tag(element) != name)
        element = m_elements[size_t(element)].next;
    return element;
}

bool MarkupDocument::FindElem(const QString& name)
{
    const int found = findAfter(m_current == none ? m_before : m_current, m_parent, name);
    if (found == none)
        return false;
    m_current = found;
    m_child = none;
    return true;
}

bool MarkupDocument::FindChildElem(const QString& name)
{
    if (m_current == none)
        return false;
    const int found = findAfter(m_child, m_current, name);
    if (found == none)
        return false;
    m_child = found;
    return true;
}

bool MarkupDocument::IntoElem()
{
    if (m_current == none)
        return false;
    m_parent = m_current;
    ResetMainPos();
    return true;
}

bool MarkupDocument::OutOfElem()
{
    if (m_parent == top)
        return false;
    const int left = m_parent;
    m_parent = m_elements[size_t(left)].parent;
    ResetMainPos();
    m_current = left;
    return true;
}

// The name in the start tag.
QStringView MarkupDocument::tag(int element) const
{
    const qsizetype begin = m_elements[size_t(element)].start + 1;
    return markup::tagNameAt(m_text, begin);
}

QString MarkupDocument::tagName(int element) const
{
    return element == none ? QString() : tag(element).toString();
}

QString MarkupDocument::data(int element) const
{
    if (element == none)
        return {};
    const Element& own = m_elements[size_t(element)];
    QString text;
    qsizetype reached = own.tagEnd;
    for (int child = own.first; child != none; child = m_elements[size_t(child)].next) {
        const qsizetype start = m_elements[size_t(child)].start;
        text += markup::characterData(QStringView(m_text).sliced(reached, start - reached));
        reached = m_elements[size_t(child)].end;
    }
    text += markup::characterData(QStringView(m_text).sliced(reached, own.contentEnd - reached));
    if (own.first != none && std::all_of(text.begin(), text.end(), isBlank))
        return {};
    return text;
}

QString MarkupDocument::GetAttrib(const QString& name) const
{
    if (m_current == none)
        return {};
    const Element& own = m_elements[size_t(m_current)];
    const auto found = markup::findAttribute(m_text, own.start, own.tagEnd, name);
    if (!found || found->valueBegin < 0)
        return {};
    return markup::unescape(
        QStringView(m_text).sliced(found->valueBegin, found->valueEnd - found->valueBegin));
}

bool MarkupDocument::SetAttrib(const QString& name, const QString& value, int flags)
{
    if (m_current == none || !markup::isName(name))
        return false;
    const Element own = m_elements[size_t(m_current)];
    const QString escaped = markup::escape(value, true, ((flags | m_flags) & WithReferences) != 0);
    const auto found = markup::findAttribute(m_text, own.start, own.tagEnd, name);
    if (found && found->quoted) {
        splice(m_current, found->valueBegin, found->valueEnd - found->valueBegin, escaped);
        return true;
    }
    const QString written = name + u"=\""_qs + escaped + u'"';
    if (found) {
        const qsizetype end = std::max(found->nameEnd, found->valueEnd);
        splice(m_current, found->nameBegin, end - found->nameBegin, written);
        return true;
    }
    qsizetype at = own.tagEnd - (own.emptyTag ? 2 : 1);
    while (isBlank(m_text[at - 1]))
        --at;
    splice(m_current, at, 0, u' ' + written);
    return true;
}

// Gives an element that is one empty tag a start and an end tag.
void MarkupDocument::openEmptyTag(int element)
{
    Element own = m_elements[size_t(element)];
    if (!own.emptyTag)
        return;
    qsizetype at = own.tagEnd - 2;
    while (isBlank(m_text[at - 1]))
        --at;
    const QString endTag = u"</"_qs + tagName(element) + u'>';
    splice(element, at, own.tagEnd - at, u'>' + endTag);
    Element& opened = m_elements[size_t(element)];
    opened.tagEnd = opened.contentEnd = at + 1;
    opened.end = at + 1 + endTag.size();
    opened.emptyTag = false;
}

bool MarkupDocument::setData(int element, const QString& value, int flags)
{
    if (element == none || m_elements[size_t(element)].first != none)
        return false;
    openEmptyTag(element);
    const Element own = m_elements[size_t(element)];
    const int all = flags | m_flags;
    splice(
        element, own.tagEnd, own.contentEnd - own.tagEnd,
        (all & CData) != 0 ? markup::cdataSection(value)
                           : markup::escape(value, false, (all & WithReferences) != 0));
    return true;
}

// The offset of the blanks that stand between a line break and an offset; the offset itself when other text
// does.
qsizetype MarkupDocument::lineStart(qsizetype at) const
{
    qsizetype begin = at;
    while (begin > 0 && (m_text[begin - 1] == u' ' || m_text[begin - 1] == u'\t'))
        --begin;
    return begin == 0 || m_text[begin - 1] == u'\n' || m_text[begin - 1] == u'\r' ? begin : at;
}

QString MarkupDocument::indentation(int element) const
{
    const qsizetype start = m_elements[size_t(element)].start;
    const qsizetype begin = lineStart(start);
    return m_text.sliced(begin, start - begin);
}

// The indentation of a first child: its parent's, with what the parent has more than its own parent or a tab.
QString MarkupDocument::childIndentation(int parent) const
{
    if (parent == top)
        return {};
    const QString own = indentation(parent);
    const int above = m_elements[size_t(parent)].parent;
    const QString outer = above == top ? QString() : indentation(above);
    if (above != top && own.size() > outer.size() && own.startsWith(outer))
        return own + own.sliced(outer.size());
    return own + u'\t';
}

QString MarkupDocument::lineBreak() const
{
    const qsizetype at = m_text.indexOf(u'\n');
    return at > 0 && m_text[at - 1] == u'\r' ? QStringLiteral("\r\n") : QStringLiteral("\n");
}

// Writes an element behind another of its level or, without one, at the end of the level.
int MarkupDocument::insertElement(
    int parent, int previous, const QString& name, const QString& value, int flags)
{
    const int all = flags | m_flags;
    QString written = u'<' + name;
    qsizetype tagLength = 0;
    qsizetype contentLength = 0;
    const bool emptyTag = value.isNull() && (all & NoEndTag) == 0;
    if (emptyTag) {
        written += (all & SpaceBeforeSlash) != 0 ? u" />"_qs : u"/>"_qs;
        tagLength = written.size();
    } else {
        written += u'>';
        tagLength = written.size();
        if (!value.isNull()) {
            written += (all & CData) != 0 ? markup::cdataSection(value)
                                          : markup::escape(value, false, (all & WithReferences) != 0);
            contentLength = written.size() - tagLength;
            written += u"</"_qs + name + u'>';
        }
    }

    if (parent != top)
        openEmptyTag(parent);
    if (previous == none)
        previous = m_elements[size_t(parent)].last;
    const Element above = m_elements[size_t(parent)];
    const bool atEnd = previous == none || previous == above.last;
    qsizetype at = previous == none ? above.contentEnd : m_elements[size_t(previous)].end;
    if (previous == none)
        while (at > above.tagEnd && isBlank(m_text[at - 1]))
            --at;
    const QString indent = previous == none ? childIndentation(parent) : indentation(previous);
    QString before = lineBreak() + indent;
    QString after;
    if (at == 0) {
        before.clear();
        after = m_text.isEmpty() || !m_text.startsWith(u'<') ? QString() : lineBreak();
    } else {
        // What follows goes to a line of its own as well, unless it is there already.
        qsizetype next = at;
        while (next < m_text.size() && (m_text[next] == u' ' || m_text[next] == u'\t'))
            ++next;
        if (next < m_text.size() && m_text[next] != u'\n' && m_text[next] != u'\r' && next == at)
            after = lineBreak() + (atEnd && parent != top ? indentation(parent) : indent);
    }
    splice(parent, at, 0, before + written + after);

    const int element = newElement();
    Element& own = m_elements[size_t(element)];
    own.start = at + before.size();
    own.tagEnd = own.start + tagLength;
    own.contentEnd = own.tagEnd + contentLength;
    own.end = own.start + written.size();
    own.emptyTag = emptyTag;
    link(element, parent, previous);
    return element;
}

bool MarkupDocument::AddElem(const QString& name, const QString& value, int flags)
{
    if (!markup::isName(name))
        return false;
    m_current = insertElement(m_parent, m_current, name, value, flags);
    m_child = none;
    return true;
}

bool MarkupDocument::AddChildElem(const QString& name, const QString& value, int flags)
{
    if (m_current == none || !markup::isName(name))
        return false;
    m_child = insertElement(m_current, m_child, name, value, flags);
    return true;
}

// The element goes with its line when nothing else stands on it.
bool MarkupDocument::RemoveElem()
{
    if (m_current == none)
        return false;
    const Element own = m_elements[size_t(m_current)];
    const auto isLineBreak = [&](qsizetype at) { return m_text[at] == u'\n' || m_text[at] == u'\r'; };
    qsizetype begin = own.start;
    const bool endsLine = own.end == m_text.size() || isLineBreak(own.end) || m_text[own.end] == u'<';
    if (const qsizetype line = lineStart(begin); endsLine && line > 0 && isLineBreak(line - 1)) {
        begin = line - 1;
        if (m_text[begin] == u'\n' && begin > 0 && m_text[begin - 1] == u'\r')
            --begin;
    }
    unlinkAndFree(m_current);
    splice(own.parent, begin, own.end - begin, {});
    ResetMainPos();
    m_before = own.previous;
    return true;
}
