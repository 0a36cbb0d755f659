// The grammar of script lines: what each line means at each kind of prompt, and which lines are refused.
#include "ed/prompt.h"

#include <gtest/gtest.h>

using Kind = KcEdPrompt::Kind;

namespace {

QString describe(const KcEdAnswer& answer)
{
    const auto point = [](KcGePoint3d p) {
        return QStringLiteral("%1,%2,%3").arg(p.x, 0, 'g', 6).arg(p.y, 0, 'g', 6).arg(p.z, 0, 'g', 6);
    };
    if (std::holds_alternative<KcEdEscape>(answer))
        return QStringLiteral("escape");
    if (std::holds_alternative<KcEdEnter>(answer))
        return QStringLiteral("enter");
    if (const auto* k = std::get_if<KcEdKeyword>(&answer))
        return QStringLiteral("keyword ") + k->name;
    if (const auto* p = std::get_if<KcGePoint3d>(&answer))
        return point(*p);
    if (const auto* d = std::get_if<double>(&answer))
        return QString::number(*d, 'g', 6);
    if (const auto* i = std::get_if<int>(&answer))
        return QString::number(*i);
    if (const auto* t = std::get_if<QString>(&answer))
        return QStringLiteral("text ") + *t;
    if (const auto* m = std::get_if<KcEdMove>(&answer))
        return QStringLiteral("move ") + point(m->point);
    if (const auto* e = std::get_if<KcEdPick>(&answer))
        return QStringLiteral("pick %1%2")
            .arg(
                QString::number(e->handle, 16),
                e->point ? QStringLiteral(" at ") + point(*e->point) : QString());
    const auto& line = std::get<KcEdSelectionLine>(answer);
    QString text = QStringLiteral("select %1%2").arg(line.removes ? "remove " : "").arg(int(line.mode));
    for (const KcGePoint3d p : line.points)
        text += QLatin1Char(' ') + point(p);
    for (const KcDbHandle h : line.handles)
        text += QStringLiteral(" #") + QString::number(h, 16);
    return text;
}

QString parse(const KcEdPrompt& prompt, const QString& line, bool literal = false)
{
    const auto parsed = kcedParseAnswer(prompt, line, literal, { 100, 200, 0 });
    const auto* answer = std::get_if<KcEdAnswer>(&parsed);
    return answer ? describe(*answer) : QStringLiteral("refused");
}

} // namespace

TEST(Grammar, LinesAtEachKindOfPrompt)
{
    const struct {
        const char* name;
        Kind kind;
        const char* keywords;
        int flags;
        const char* line;
        const char* meaning;
    } rows[] = {
        { "absolute point", Kind::Point, "", 0, "10,20", "10,20,0" },
        { "point in space", Kind::Point, "", 0, " -1.5,2e3,4 ", "-1.5,2000,4" },
        { "relative point", Kind::Point, "", 0, "@10,-5", "110,195,0" },
        { "relative polar point", Kind::Point, "", 0, "@10<90", "100,210,0" },
        { "absolute polar point", Kind::Point, "", 0, "5<180", "-5,6.12323e-16,0" },
        { "the last point", Kind::Point, "", 0, "@", "100,200,0" },
        { "a number is no point", Kind::Point, "", 0, "10", "refused" },
        { "four coordinates", Kind::Point, "", 0, "1,2,3,4", "refused" },
        { "a coordinate is missing", Kind::Point, "", 0, "1,", "refused" },
        { "no number", Kind::Point, "", 0, "inf,nan", "refused" },
        { "Enter at a point", Kind::Point, "", 0, "", "enter" },
        { "Enter not allowed", Kind::Point, "", 1, "", "refused" },
        { "distance", Kind::Distance, "", 0, "25.5", "25.5" },
        { "distance by a point", Kind::Distance, "", 0, "3,4", "3,4,0" },
        { "zero not allowed", Kind::Distance, "", 2, "0", "refused" },
        { "negative not allowed", Kind::Real, "", 4, "-0.5", "refused" },
        { "zero is not negative", Kind::Real, "", 4, "0", "0" },
        { "whole number", Kind::Integer, "", 0, "12", "12" },
        { "fraction at a whole number", Kind::Integer, "", 0, "12.5", "refused" },
        { "beyond 32 bits", Kind::Integer, "", 0, "99999999999", "refused" },
        { "text with blanks", Kind::Text, "", 0, " a  b ", "text  a  b " },
        { "point at a text prompt", Kind::Text, "", 0, "1,2", "text 1,2" },
        { "handle at a text prompt", Kind::Text, "", 0, "#2F", "text #2F" },
        { "keyword by its capital", Kind::Point, "Dimension Area", 0, "d", "keyword Dimension" },
        { "keyword by a prefix", Kind::Point, "Dimension Area", 0, "DIMEN", "keyword Dimension" },
        { "longer than the keyword", Kind::Point, "Dimension Area", 0, "Dimensions", "refused" },
        { "two capitals are needed", Kind::Keyword, "LType LAyer", 0, "l", "refused" },
        { "two capitals tell apart", Kind::Keyword, "LType LAyer", 0, "la", "keyword LAyer" },
        { "capital inside the word", Kind::Keyword, "eXit", 0, "x", "keyword eXit" },
        { "local name gives the global one", Kind::Keyword, "Flaeche Linie _ Area Line", 0, "f",
          "keyword Area" },
        { "global name by underscore", Kind::Keyword, "Flaeche Linie _ Area Line", 0, "_l", "keyword Line" },
        { "global name without underscore", Kind::Keyword, "Flaeche Linie _ Area Line", 0, "A", "refused" },
        { "digits are whole", Kind::Text, "1 10", 0, "10", "keyword 10" },
        { "one digit of two", Kind::Text, "10 11", 0, "1", "text 1" },
        { "Chinese keyword", Kind::Keyword, "块 标注", 0, "标注", "keyword 标注" },
        { "any text", Kind::Point, "", 128, "here", "text here" },
        { "all", Kind::Selection, "", 0, "all", "select 0" },
        { "keyword before a selection word", Kind::Selection, "ALL", 0, "all", "keyword ALL" },
        { "keyword before a window", Kind::Selection, "Window", 0, "w", "keyword Window" },
        { "window", Kind::Selection, "", 0, "W 0,0 @5,5", "select 1 0,0,0 5,5,0" },
        { "window from the last point", Kind::Selection, "", 0, "C @1,1 @1,1",
          "select 2 101,201,0 102,202,0" },
        { "window with one corner", Kind::Selection, "", 0, "W 0,0", "refused" },
        { "fence", Kind::Selection, "", 0, "F 0,0 1,0 1,1", "select 3 0,0,0 1,0,0 1,1,0" },
        { "polygon of two points", Kind::Selection, "", 0, "WP 0,0 1,1", "refused" },
        { "crossing polygon", Kind::Selection, "", 0, "cp 0,0 1,0 1,1", "select 5 0,0,0 1,0,0 1,1,0" },
        { "last", Kind::Selection, "", 0, "L", "select 6" },
        { "last with more", Kind::Selection, "", 0, "L 1,1", "refused" },
        { "previous", Kind::Selection, "", 0, "p", "select 7" },
        { "handles", Kind::Selection, "", 0, "#2f #30", "select 8 #2f #30" },
        { "a bad handle", Kind::Selection, "", 0, "#2f #xyz", "refused" },
        { "handle zero", Kind::Selection, "", 0, "#0", "refused" },
        { "a point", Kind::Selection, "", 0, "3,4", "select 9 3,4,0" },
        { "removing", Kind::Selection, "", 0, "R W 0,0 1,1", "select remove 1 0,0,0 1,1,0" },
        { "removing from now on", Kind::Selection, "", 0, "remove", "select 11" },
        { "removing what is no selection", Kind::Selection, "", 0, "R trees", "refused" },
        { "a window that is asked for", Kind::Selection, "", 0, "Window", "select 1" },
        { "a word at a selection", Kind::Selection, "", 0, "trees", "refused" },
        { "entity by handle", Kind::Entity, "", 0, "#2F", "pick 2f" },
        { "entity by handle at a point", Kind::Entity, "", 0, "#2F@1,2", "pick 2f at 1,2,0" },
        { "entity by handle at nothing", Kind::Entity, "", 0, "#2F@", "refused" },
        { "entity by point", Kind::Entity, "", 0, "1,2", "pick 0 at 1,2,0" },
        { "move", Kind::Track, "", 0, "~1,2", "move 1,2,0" },
        { "click", Kind::Track, "", 0, "1,2", "1,2,0" },
        { "move where nothing tracks", Kind::Point, "", 0, "~1,2", "refused" },
    };
    for (const auto& row : rows) {
        KcEdPrompt prompt;
        prompt.kind = row.kind;
        prompt.keywords = KcEdKeywordList(QString::fromUtf8(row.keywords));
        prompt.flags = row.flags;
        EXPECT_EQ(parse(prompt, QString::fromUtf8(row.line)), QString::fromUtf8(row.meaning)) << row.name;
    }
}

// A name that happens to be a keyword can still be given.
TEST(Grammar, BackslashMakesATextOfAKeyword)
{
    KcEdPrompt prompt;
    prompt.keywords = KcEdKeywordList(QStringLiteral("Q"));
    EXPECT_EQ(parse(prompt, QStringLiteral("Q")), QStringLiteral("keyword Q"));
    EXPECT_EQ(parse(prompt, QStringLiteral("Q"), true), QStringLiteral("text Q"));
}
