// Thin fronts over the one way to ask.

#include "ed/input.h"

#include "db/database.h"
#include "ed/documents.h"
#include "ed/editor.h"
#include "ed/selection.h"

namespace {

struct Prepared {
    int flags = 0;
    KcEdKeywordList keywords;
    std::function<KcEdPreview(KcGePoint3d)> preview;
    QString lastInput;
};

Prepared& prepared()
{
    static Prepared instance;
    return instance;
}

// Asks, and shows meanwhile the preview that was set up.
KcEdAnswer askShowing(KcEdPrompt prompt)
{
    const auto preview = std::exchange(prepared().preview, {});
    KcEdShownPreview shown;
    if (preview)
        prompt.drag = [&](KcGePoint3d cursor) { shown.show(preview(cursor)); };
    return KcEdEditor::instance().ask(prompt);
}

// What is the same for every question; nothing when the answer is a value.
std::optional<KcEdStatus> statusWithoutValue(const KcEdAnswer& answer)
{
    if (std::holds_alternative<KcEdEscape>(answer))
        return kcedCancel;
    if (std::holds_alternative<KcEdEnter>(answer))
        return kcedNone;
    if (const auto* keyword = std::get_if<KcEdKeyword>(&answer)) {
        prepared().lastInput = keyword->name;
        return kcedKeyword;
    }
    return {};
}

template <class T> KcEdStatus askFor(const KcEdPrompt& prompt, T& value)
{
    const KcEdAnswer answer = askShowing(prompt);
    if (const auto status = statusWithoutValue(answer))
        return *status;
    if (const auto* typed = std::get_if<T>(&answer)) {
        value = *typed;
        return kcedNormal;
    }
    // Any text was allowed, and one was typed where a value is wanted.
    if (const auto* text = std::get_if<QString>(&answer))
        prepared().lastInput = *text;
    return kcedKeyword;
}

} // namespace

void kcedInitGet(int flags, const QString& keywords)
{
    prepared().flags = flags;
    prepared().keywords = KcEdKeywordList(keywords);
}

void kcedInitPreview(std::function<KcEdPreview(KcGePoint3d)> preview)
{
    prepared().preview = std::move(preview);
}

QString kcedGetInput()
{
    return prepared().lastInput;
}

KcEdPrompt kcedPreparedPrompt(KcEdPrompt::Kind kind, const QString& text)
{
    KcEdPrompt prompt;
    prompt.kind = kind;
    prompt.text = text;
    prompt.flags = std::exchange(prepared().flags, 0);
    prompt.keywords = std::exchange(prepared().keywords, {});
    return prompt;
}

KcEdStatus kcedGetKword(const QString& prompt, QString& keyword)
{
    const KcEdAnswer answer
        = KcEdEditor::instance().ask(kcedPreparedPrompt(KcEdPrompt::Kind::Keyword, prompt));
    const auto status = statusWithoutValue(answer);
    if (status && *status != kcedKeyword)
        return *status;
    if (const auto* text = std::get_if<QString>(&answer))
        prepared().lastInput = *text;
    keyword = prepared().lastInput;
    return kcedNormal;
}

KcEdStatus kcedGetPoint(const KcGePoint3d* base, const QString& prompt, KcGePoint3d& point)
{
    KcEdPrompt question = kcedPreparedPrompt(KcEdPrompt::Kind::Point, prompt);
    if (base)
        question.base = *base;
    return askFor(question, point);
}

KcEdStatus kcedGetCorner(KcGePoint3d base, const QString& prompt, KcGePoint3d& corner)
{
    KcEdPrompt question = kcedPreparedPrompt(KcEdPrompt::Kind::Corner, prompt);
    question.base = base;
    return askFor(question, corner);
}

namespace {

/// A number, or what two points tell of it; the base, where given, is the first of them.
KcEdStatus askMeasure(
    KcEdPrompt::Kind kind, const KcGePoint3d* base, const QString& prompt, double& value,
    double (*ofNumber)(double), double (*ofPoints)(KcGePoint3d, KcGePoint3d))
{
    KcEdPrompt question = kcedPreparedPrompt(kind, prompt);
    if (base)
        question.base = *base;
    const KcEdAnswer answer = askShowing(std::move(question));
    if (const auto status = statusWithoutValue(answer))
        return *status;
    if (const auto* number = std::get_if<double>(&answer)) {
        value = ofNumber(*number);
        return kcedNormal;
    }
    const auto* first = std::get_if<KcGePoint3d>(&answer);
    if (!first) {
        prepared().lastInput = std::get<QString>(answer);
        return kcedKeyword;
    }
    if (base) {
        value = ofPoints(*base, *first);
        return kcedNormal;
    }
    KcGePoint3d second;
    const KcEdStatus status = kcedGetPoint(first, QStringLiteral("\nSecond point: "), second);
    if (status == kcedNormal)
        value = ofPoints(*first, second);
    return status;
}

} // namespace

KcEdStatus kcedGetDist(const KcGePoint3d* base, const QString& prompt, double& distance)
{
    return askMeasure(
        KcEdPrompt::Kind::Distance, base, prompt, distance, [](double number) { return number; },
        [](KcGePoint3d from, KcGePoint3d to) { return to.distanceTo(from); });
}

KcEdStatus kcedGetAngle(const KcGePoint3d* base, const QString& prompt, double& angle)
{
    return askMeasure(
        KcEdPrompt::Kind::Angle, base, prompt, angle, [](double degrees) { return degrees * kPi / 180.0; },
        [](KcGePoint3d from, KcGePoint3d to) { return (to.plan() - from.plan()).angle(); });
}

KcEdStatus kcedGetReal(const QString& prompt, double& value)
{
    return askFor(kcedPreparedPrompt(KcEdPrompt::Kind::Real, prompt), value);
}

KcEdStatus kcedGetInt(const QString& prompt, int& value)
{
    return askFor(kcedPreparedPrompt(KcEdPrompt::Kind::Integer, prompt), value);
}

KcEdStatus kcedGetString(bool blanks, const QString& prompt, QString& text)
{
    const KcEdStatus status = askFor(kcedPreparedPrompt(KcEdPrompt::Kind::Text, prompt), text);
    if (status == kcedNormal && !blanks)
        text = text.section(QLatin1Char(' '), 0, 0, QString::SectionSkipEmpty);
    return status;
}

KcEdTrack kcedGrRead(const QString& prompt)
{
    const KcEdAnswer answer = KcEdEditor::instance().ask(kcedPreparedPrompt(KcEdPrompt::Kind::Track, prompt));
    if (const auto* move = std::get_if<KcEdMove>(&answer))
        return { KcEdTrack::Kind::Move, move->point, {} };
    if (const auto* click = std::get_if<KcGePoint3d>(&answer))
        return { KcEdTrack::Kind::Click, *click, {} };
    if (const auto* keyword = std::get_if<KcEdKeyword>(&answer))
        return { KcEdTrack::Kind::Keyword, {}, keyword->name };
    if (const auto* text = std::get_if<QString>(&answer))
        return { KcEdTrack::Kind::Keyword, {}, *text };
    if (std::holds_alternative<KcEdEnter>(answer))
        return { KcEdTrack::Kind::Enter, {}, {} };
    return {};
}

KcEdStatus kcedEntSel(const QString& prompt, KcDbObjectId& entity, KcGePoint3d& point)
{
    KcEdEntityRequest request;
    request.prompt = kcedPreparedPrompt(KcEdPrompt::Kind::Entity, prompt);
    const KcEdEntityAnswer answer = kcedSelectEntity(request);
    if (answer.status == kcedNormal) {
        entity = answer.id;
        point = answer.point;
    } else if (answer.status == kcedKeyword) {
        prepared().lastInput = answer.keyword;
    }
    return answer.status;
}
