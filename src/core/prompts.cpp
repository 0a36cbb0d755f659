// The commands' prompts over those of the host.

#include "core/prompts.h"

#include "db/block_table_record.h"
#include "ed/documents.h"
#include "ed/editor.h"
#include "ed/pick_geometry.h"

namespace {

KcEdPrompt promptOf(KcEdPrompt::Kind kind, const QString& text, const QString& keywords = {})
{
    KcEdPrompt prompt;
    prompt.kind = kind;
    prompt.text = text;
    prompt.keywords = KcEdKeywordList(keywords);
    return prompt;
}

// The letters that stand for a keyword: its capitals and digits, the whole word where it has none.
QString lettersOf(const QString& keyword)
{
    QString letters;
    for (const QChar c : keyword)
        if (c.isUpper() || c.isDigit())
            letters += c;
    return letters.isEmpty() ? keyword : letters;
}

KcGePoint3d toWorld(KcGePoint3d point)
{
    KcDbDatabase* database = kcedCurrentDatabase();
    return database ? database->ucsToWorld() * point : point;
}

KcGePoint3d toUcs(KcGePoint3d point)
{
    KcDbDatabase* database = kcedCurrentDatabase();
    return database ? database->ucsToWorld().inverse() * point : point;
}

// Asks for a number. False on Escape; Enter and keywords leave the value.
template <class T> bool askNumber(const KcEdPrompt& prompt, T& value, QString& keyword)
{
    keyword.clear();
    const KcEdAnswer answer = KcEdEditor::instance().ask(prompt);
    if (std::holds_alternative<KcEdEscape>(answer))
        return false;
    if (const auto* typed = std::get_if<KcEdKeyword>(&answer))
        keyword = lettersOf(typed->name);
    if (const auto* number = std::get_if<T>(&answer))
        value = *number;
    return true;
}

KcEdSelectionAnswer
askSelection(const KcEdFilter& filter, const QString& prompt, const QString& keywords = {})
{
    KcEdSelectionRequest request;
    request.prompt = promptOf(KcEdPrompt::Kind::Selection, prompt, keywords);
    request.filter = filter;
    return kcedSelect(request);
}

template <class Passes>
std::vector<KcDbObjectId> entitiesOfModelSpace(const KcDbDatabase& database, Passes passes)
{
    std::vector<KcDbObjectId> ids;
    const KcDbRead<KcDbBlockTableRecord> space(database.modelSpace());
    if (!space)
        return ids;
    for (const KcDbObjectId id : *space)
        if (const KcDbRead<KcDbEntity> entity(id); entity && passes(*entity))
            ids.push_back(id);
    return ids;
}

} // namespace

bool GetString(QString& text, const QString& prompt)
{
    const KcEdAnswer answer = KcEdEditor::instance().ask(promptOf(KcEdPrompt::Kind::Text, prompt));
    if (const auto* typed = std::get_if<QString>(&answer))
        text = *typed;
    return !std::holds_alternative<KcEdEscape>(answer);
}

bool GetString(QString& text, bool& isKeyword, const QString& keywords, const QString& prompt)
{
    isKeyword = false;
    const KcEdAnswer answer = KcEdEditor::instance().ask(promptOf(KcEdPrompt::Kind::Text, prompt, keywords));
    if (const auto* typed = std::get_if<QString>(&answer))
        text = *typed;
    if (const auto* keyword = std::get_if<KcEdKeyword>(&answer)) {
        text = keyword->name;
        isKeyword = true;
    }
    return !std::holds_alternative<KcEdEscape>(answer);
}

bool GetInt(int& value, const QString& prompt, int lowerLimit, const QString& keywords, QString& keyword)
{
    KcEdPrompt question = promptOf(KcEdPrompt::Kind::Integer, prompt, keywords);
    question.check = [&](const KcEdAnswer& answer) {
        const int* number = std::get_if<int>(&answer);
        return number && *number < lowerLimit
            ? QStringLiteral("The number must be at least %1.").arg(lowerLimit)
            : QString();
    };
    return askNumber(question, value, keyword);
}

bool GetDouble(
    double& value, const QString& prompt, double lowerLimit, const QString& keywords, QString& keyword)
{
    KcEdPrompt question = promptOf(KcEdPrompt::Kind::Real, prompt, keywords);
    question.check = [&](const KcEdAnswer& answer) {
        const double* number = std::get_if<double>(&answer);
        return number && *number <= lowerLimit
            ? QStringLiteral("The number must be greater than %1.").arg(lowerLimit)
            : QString();
    };
    return askNumber(question, value, keyword);
}

bool GetDouble(double& value, const QString& prompt, double lowerLimit)
{
    QString keyword;
    return GetDouble(value, prompt, lowerLimit, {}, keyword);
}

bool GetDouble(double& value, const QString& prompt)
{
    QString keyword;
    return askNumber(promptOf(KcEdPrompt::Kind::Real, prompt), value, keyword);
}

bool GetPoint(KcGePoint3d& point, const QString& prompt)
{
    bool isEmpty = false;
    return GetPoint(point, prompt, isEmpty) && !isEmpty;
}

bool GetPoint(KcGePoint3d& point, const QString& prompt, bool& isEmpty, const KcGePoint3d* base)
{
    isEmpty = false;
    KcEdPrompt question = promptOf(KcEdPrompt::Kind::Point, prompt);
    if (base)
        question.base = toUcs(*base);
    const KcEdAnswer answer = KcEdEditor::instance().ask(question);
    if (const auto* typed = std::get_if<KcGePoint3d>(&answer)) {
        point = toWorld(*typed);
        return true;
    }
    isEmpty = std::holds_alternative<KcEdEnter>(answer);
    return isEmpty;
}

bool GetPointOrString(
    KcGePoint3d& point, QString& text, bool& isEnter, const QString& prompt, const QString& keywords)
{
    text.clear();
    const KcEdAnswer answer = KcEdEditor::instance().ask(promptOf(KcEdPrompt::Kind::Point, prompt, keywords));
    isEnter = std::holds_alternative<KcEdEnter>(answer);
    if (const auto* typed = std::get_if<KcGePoint3d>(&answer))
        point = toWorld(*typed);
    if (const auto* keyword = std::get_if<KcEdKeyword>(&answer))
        text = lettersOf(keyword->name);
    return !std::holds_alternative<KcEdEscape>(answer);
}

bool GetEntity(KcDbObjectId& id, const QString& prompt, bool acceptEmpty, const KcEdFilter& filter)
{
    const KcEdEntityAnswer answer = kcedSelectEntity({ promptOf(KcEdPrompt::Kind::Entity, prompt), filter });
    if (answer.status != kcedNormal && !(answer.status == kcedNone && acceptEmpty))
        return false;
    id = answer.id;
    return true;
}

bool GetEntityOnPoint(KcDbObjectId& id, KcGePoint3d& point, const KcEdFilter& filter, const QString& prompt)
{
    const KcEdEntityAnswer answer = kcedSelectEntity({ promptOf(KcEdPrompt::Kind::Entity, prompt), filter });
    if (answer.status != kcedNormal)
        return false;
    id = answer.id;
    point = toWorld(answer.point);
    return true;
}

bool GetSelection(
    std::vector<KcDbObjectId>& ids, const KcEdFilter& filter, const QString& prompt, bool* isEmpty)
{
    const KcEdSelectionAnswer answer = askSelection(filter, prompt);
    if (isEmpty)
        *isEmpty = answer.status == kcedNone;
    if (answer.status == kcedNormal)
        ids = answer.set.ids();
    return answer.status == kcedNormal;
}

bool GetSelection(
    const std::vector<KcGePoint3d>& fence, std::vector<KcDbObjectId>& ids, const KcEdFilter& filter)
{
    std::vector<KcGePoint3d> inUcs;
    for (const KcGePoint3d p : fence)
        inUcs.push_back(toUcs(p));
    KcEdSelectionSet set;
    if (kcedSSGet(QStringLiteral("F"), nullptr, nullptr, filter, set, inUcs) != kcedNormal)
        return false;
    ids = set.ids();
    return true;
}

bool GetSelectionAcceptEmpty(
    std::vector<KcDbObjectId>& ids, const KcEdFilter& filter, const QString& prompt, bool& isEmpty)
{
    return GetSelection(ids, filter, prompt, &isEmpty) || isEmpty;
}

bool GetSelectionOrString(
    std::vector<KcDbObjectId>& ids, QString& keyword, const QString& prompt, const QString& keywords,
    const KcEdFilter& filter)
{
    bool isEmpty = false;
    return GetSelectionOrStringAcceptEmpty(ids, keyword, prompt, keywords, filter, isEmpty) && !isEmpty;
}

bool GetSelectionOrStringAcceptEmpty(
    std::vector<KcDbObjectId>& ids, QString& keyword, const QString& prompt, const QString& keywords,
    const KcEdFilter& filter, bool& isEmpty)
{
    const KcEdSelectionAnswer answer = askSelection(filter, prompt, keywords);
    keyword = lettersOf(answer.keyword);
    isEmpty = answer.status == kcedNone;
    if (answer.status == kcedNormal)
        ids = answer.set.ids();
    return answer.status == kcedNormal || isEmpty;
}

bool GetEntities(std::vector<KcDbObjectId>& ids, const KcEdFilter& filter)
{
    ids.clear();
    const KcDbDatabase* database = kcedCurrentDatabase();
    const KcEdCompiledFilter compiled(filter);
    if (!database || !compiled.error().isEmpty())
        return false;
    KcEdPickGeometry layers(1.0);
    ids = entitiesOfModelSpace(*database, [&](const KcDbEntity& entity) {
        return compiled.passes(entity) && layers.isVisible(entity);
    });
    return !ids.empty();
}

bool GetEntitiesOfType(const QString& type, std::vector<KcDbObjectId>& ids, KcDbDatabase* database)
{
    ids.clear();
    if (!database)
        database = kcedCurrentDatabase();
    if (!database)
        return false;
    const QByteArray name = type.toLatin1();
    ids = entitiesOfModelSpace(*database, [&](const KcDbEntity& entity) {
        return name == entity.isA()->name() || kcedEntityTypeName(entity) == type;
    });
    return !ids.empty();
}

bool GetObjectIdArray(const KcEdSelectionSet& set, std::vector<KcDbObjectId>& ids)
{
    ids.clear();
    for (const KcDbObjectId id : set.ids())
        if (id.isResident())
            ids.push_back(id);
    return !ids.empty();
}

double GetPickBoxWcs()
{
    return kcedPickBoxSize() / 2.0;
}

bool GetSystemVariable(const QString& name, int& value)
{
    const auto current = kcedGetVar(name);
    const auto* integer = current ? std::get_if<int64_t>(&*current) : nullptr;
    if (integer)
        value = int(*integer);
    return integer;
}

bool GetSystemVariable(const QString& name, double& value)
{
    const auto current = kcedGetVar(name);
    const auto* real = current ? std::get_if<double>(&*current) : nullptr;
    if (real)
        value = *real;
    return real;
}

bool GetSystemVariable(const QString& name, QString& value)
{
    const auto current = kcedGetVar(name);
    const auto* text = current ? std::get_if<QString>(&*current) : nullptr;
    if (text)
        value = *text;
    return text;
}

bool GetSystemVariable(const QString& name, KcGePoint3d& value)
{
    const auto current = kcedGetVar(name);
    const auto* point = current ? std::get_if<KcGePoint3d>(&*current) : nullptr;
    if (point)
        value = *point;
    return point;
}

bool SetSystemVariable(const QString& name, int value)
{
    return kcedSetVar(name, int64_t(value)).isEmpty();
}

bool SetSystemVariable(const QString& name, double value)
{
    return kcedSetVar(name, value).isEmpty();
}

bool SetSystemVariable(const QString& name, const QString& value)
{
    return kcedSetVar(name, value).isEmpty();
}
