// The grammar of answers.

#include "ed/prompt.h"

#include <QStringList>

namespace {

using Parsed = std::variant<KcEdAnswer, KcEdRefusal>;
using Mode = KcEdSelectionLine::Mode;

KcEdRefusal refuse(const QString& sentence)
{
    return { sentence };
}

QString kindWanted(KcEdPrompt::Kind kind)
{
    switch (kind) {
    case KcEdPrompt::Kind::Point:
    case KcEdPrompt::Kind::Corner:
        return QStringLiteral("A point is wanted, such as 100,200 or @10<45.");
    case KcEdPrompt::Kind::Distance:
        return QStringLiteral("A distance or a point is wanted.");
    case KcEdPrompt::Kind::Angle:
        return QStringLiteral("An angle in degrees or a point is wanted.");
    case KcEdPrompt::Kind::Real:
        return QStringLiteral("A number is wanted.");
    case KcEdPrompt::Kind::Integer:
        return QStringLiteral("A whole number is wanted.");
    case KcEdPrompt::Kind::Selection:
        return QStringLiteral("A selection is wanted, such as ALL, W 0,0 100,100 or #2F.");
    case KcEdPrompt::Kind::Entity:
        return QStringLiteral("An object is wanted, as #handle or by a point.");
    case KcEdPrompt::Kind::Track:
        return QStringLiteral("A point x,y or a move ~x,y is wanted.");
    default:
        return QStringLiteral("This is no answer here.");
    }
}

KcEdRefusal refuseKind(const KcEdPrompt& prompt)
{
    const QStringList keywords = prompt.keywords.localNames();
    if (prompt.kind == KcEdPrompt::Kind::Keyword)
        return refuse(
            QStringLiteral("One of the keywords is wanted: %1.").arg(keywords.join(QStringLiteral(", "))));
    if (keywords.isEmpty())
        return refuse(kindWanted(prompt.kind));
    return refuse(QStringLiteral("%1 Or one of the keywords: %2.")
                      .arg(kindWanted(prompt.kind), keywords.join(QStringLiteral(", "))));
}

Parsed checkedNumber(const KcEdPrompt& prompt, double value, KcEdAnswer answer)
{
    if ((prompt.flags & KcEdPrompt::kNoZero) && value == 0.0) // exact on purpose: only a typed 0 is refused
        return refuse(QStringLiteral("Zero is not allowed here."));
    if ((prompt.flags & KcEdPrompt::kNoNegative) && value < 0.0)
        return refuse(QStringLiteral("A negative number is not allowed here."));
    return answer;
}

std::optional<Parsed> parsePick(const QString& text, KcGePoint3d lastPoint)
{
    if (!text.startsWith(QLatin1Char('#'))) {
        const auto point = kcedParsePoint(text, lastPoint);
        return point ? std::optional<Parsed>(KcEdAnswer(KcEdPick{ 0, point })) : std::nullopt;
    }
    const qsizetype at = text.indexOf(QLatin1Char('@'));
    const auto handle = kcedParseHandle(at < 0 ? text : text.left(at));
    if (!handle)
        return Parsed(refuse(QStringLiteral("A handle is # and a hexadecimal number, such as #2F.")));
    if (at < 0)
        return Parsed(KcEdAnswer(KcEdPick{ *handle, {} }));
    const auto point = kcedParsePoint(text.mid(at + 1), lastPoint);
    if (!point)
        return Parsed(refuse(QStringLiteral("A point is wanted after @, such as #2F@100,200.")));
    return Parsed(KcEdAnswer(KcEdPick{ *handle, point }));
}

std::optional<Parsed> parseValue(const KcEdPrompt& prompt, const QString& text, KcGePoint3d lastPoint)
{
    switch (prompt.kind) {
    case KcEdPrompt::Kind::Point:
    case KcEdPrompt::Kind::Corner:
        if (const auto point = kcedParsePoint(text, lastPoint))
            return Parsed(KcEdAnswer(*point));
        return {};
    case KcEdPrompt::Kind::Distance:
    case KcEdPrompt::Kind::Angle:
        if (const auto value = kcedParseReal(text))
            return checkedNumber(prompt, *value, *value);
        if (const auto point = kcedParsePoint(text, lastPoint))
            return Parsed(KcEdAnswer(*point));
        return {};
    case KcEdPrompt::Kind::Real:
        if (const auto value = kcedParseReal(text))
            return checkedNumber(prompt, *value, *value);
        return {};
    case KcEdPrompt::Kind::Integer: {
        bool isInteger = false;
        const int value = text.toInt(&isInteger);
        return isInteger ? std::optional<Parsed>(checkedNumber(prompt, value, value)) : std::nullopt;
    }
    case KcEdPrompt::Kind::Selection: {
        auto line = kcedParseSelectionLine(text, lastPoint);
        if (auto* selection = std::get_if<KcEdSelectionLine>(&line))
            return Parsed(KcEdAnswer(std::move(*selection)));
        if (auto* refusal = std::get_if<KcEdRefusal>(&line))
            return Parsed(*refusal);
        return {};
    }
    case KcEdPrompt::Kind::Entity:
        return parsePick(text, lastPoint);
    case KcEdPrompt::Kind::Track: {
        const bool moves = text.startsWith(QLatin1Char('~'));
        const auto point = kcedParsePoint(moves ? text.mid(1) : text, lastPoint);
        if (!point)
            return {};
        return Parsed(moves ? KcEdAnswer(KcEdMove{ *point }) : KcEdAnswer(*point));
    }
    default:
        return {};
    }
}

} // namespace

bool kcedTakesPoint(KcEdPrompt::Kind kind)
{
    switch (kind) {
    case KcEdPrompt::Kind::Point:
    case KcEdPrompt::Kind::Corner:
    case KcEdPrompt::Kind::Distance:
    case KcEdPrompt::Kind::Angle:
    case KcEdPrompt::Kind::Track:
        return true;
    default:
        return false;
    }
}

std::optional<double> kcedParseReal(const QString& text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<KcGePoint3d> kcedParsePoint(const QString& text, KcGePoint3d lastPoint)
{
    const bool relative = text.startsWith(QLatin1Char('@'));
    const QString numbers = relative ? text.mid(1) : text;
    if (relative && numbers.isEmpty())
        return lastPoint;
    const KcGePoint3d origin = relative ? lastPoint : KcGePoint3d();
    if (numbers.count(QLatin1Char('<')) == 1) {
        const qsizetype at = numbers.indexOf(QLatin1Char('<'));
        const auto distance = kcedParseReal(numbers.left(at));
        const auto degrees = kcedParseReal(numbers.mid(at + 1));
        if (!distance || !degrees)
            return {};
        const double angle = *degrees * kPi / 180.0;
        return origin + KcGeVector3d{ *distance * std::cos(angle), *distance * std::sin(angle), 0.0 };
    }
    const QStringList parts = numbers.split(QLatin1Char(','));
    if (parts.size() < 2 || parts.size() > 3)
        return {};
    double xyz[3] = {};
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const auto value = kcedParseReal(parts[i].trimmed());
        if (!value)
            return {};
        xyz[i] = *value;
    }
    return origin + KcGeVector3d{ xyz[0], xyz[1], xyz[2] };
}

std::optional<KcDbHandle> kcedParseHandle(const QString& text)
{
    bool isHandle = false;
    const KcDbHandle handle = text.mid(1).toULongLong(&isHandle, 16);
    const bool plain = text.size() > 1 && text[0] == QLatin1Char('#') && text[1].isLetterOrNumber();
    return isHandle && plain && handle != 0 ? std::optional(handle) : std::nullopt;
}

std::variant<KcEdSelectionLine, KcEdEnter, KcEdRefusal>
kcedParseSelectionLine(const QString& line, KcGePoint3d lastPoint)
{
    QStringList words = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (words.isEmpty())
        return KcEdEnter();
    KcEdSelectionLine result;
    const auto isWord = [&](const char* brief, const char* full) {
        return words.first().compare(QLatin1String(brief), Qt::CaseInsensitive) == 0
            || words.first().compare(QLatin1String(full), Qt::CaseInsensitive) == 0;
    };
    if (words.size() > 1 && isWord("R", "REMOVE")) {
        result.removes = true;
        words.removeFirst();
    }

    if (words.first().startsWith(QLatin1Char('#'))) {
        result.mode = Mode::Handles;
        for (const QString& word : words) {
            const auto handle = kcedParseHandle(word);
            if (!handle)
                return refuse(
                    QStringLiteral("\"%1\" is no handle; one is # and a hexadecimal number.").arg(word));
            result.handles.push_back(*handle);
        }
        return result;
    }
    if (const auto point = kcedParsePoint(words.first(), lastPoint)) {
        if (words.size() > 1)
            return refuse(
                QStringLiteral("One point picks what lies there; a window is W or C and two corners."));
        result.mode = Mode::Point;
        result.points = { *point };
        return result;
    }

    struct Row {
        const char *word, *full;
        Mode mode;
        int least, most;
    };
    static constexpr Row rows[] = {
        { "ALL", "ALL", Mode::All, 0, 0 },
        { "W", "WINDOW", Mode::Window, 2, 2 },
        { "C", "CROSSING", Mode::Crossing, 2, 2 },
        { "F", "FENCE", Mode::Fence, 2, 1 << 20 },
        { "WP", "WPOLYGON", Mode::WindowPolygon, 3, 1 << 20 },
        { "CP", "CPOLYGON", Mode::CrossingPolygon, 3, 1 << 20 },
        { "L", "LAST", Mode::Last, 0, 0 },
        { "P", "PREVIOUS", Mode::Previous, 0, 0 },
        { "A", "ADD", Mode::Add, 0, 0 },
        { "R", "REMOVE", Mode::Remove, 0, 0 },
    };
    for (const Row& row : rows) {
        if (!isWord(row.word, row.full))
            continue;
        result.mode = row.mode;
        for (qsizetype i = 1; i < words.size(); ++i) {
            const auto point
                = kcedParsePoint(words[i], result.points.empty() ? lastPoint : result.points.back());
            if (!point)
                return refuse(QStringLiteral("\"%1\" is no point.").arg(words[i]));
            result.points.push_back(*point);
        }
        const int count = int(result.points.size());
        if (count > 0 && (count < row.least || count > row.most)) {
            if (row.most == 0)
                return refuse(QStringLiteral("%1 stands alone.").arg(QLatin1String(row.word)));
            return refuse(QStringLiteral("%1 is followed by %2%3 points.")
                              .arg(
                                  QLatin1String(row.word),
                                  row.most > row.least ? QStringLiteral("at least ") : QString(),
                                  QString::number(row.least)));
        }
        return result;
    }
    if (result.removes)
        return refuse(QStringLiteral("R is followed by what it removes, such as R #2F."));
    return KcEdEnter();
}

std::variant<KcEdAnswer, KcEdRefusal>
kcedParseAnswer(const KcEdPrompt& prompt, const QString& line, bool literal, KcGePoint3d lastPoint)
{
    const bool isText = prompt.kind == KcEdPrompt::Kind::Text;
    const QString trimmed = line.trimmed();
    if (isText ? line.isEmpty() : trimmed.isEmpty()) {
        if (prompt.flags & KcEdPrompt::kNoEmpty)
            return refuse(QStringLiteral("An empty answer is not allowed here."));
        return KcEdAnswer(KcEdEnter());
    }
    if (!(isText && literal))
        if (const auto keyword = prompt.keywords.match(trimmed))
            return KcEdAnswer(KcEdKeyword{ *keyword });
    if (isText)
        return KcEdAnswer(line);
    if (prompt.drag && trimmed.startsWith(QLatin1Char('~')))
        if (const auto point = kcedParsePoint(trimmed.mid(1), lastPoint))
            return KcEdAnswer(KcEdMove{ *point });
    if (auto value = parseValue(prompt, trimmed, lastPoint))
        return std::move(*value);
    if (trimmed.startsWith(QLatin1Char('~')))
        return refuse(QStringLiteral("No command tracks the cursor now."));
    if (prompt.flags & KcEdPrompt::kAnyText)
        return KcEdAnswer(trimmed);
    return refuseKind(prompt);
}
