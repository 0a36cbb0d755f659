// Both name prompts are one procedure over what differs between them.

#include "frame/name_prompts.h"

#include "core/drawing_config.h"
#include "core/prompts.h"
#include "core/selection.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "frame/module.h"
#include "frame/settings.h"
#include "frame/split.h"

namespace {

const QString section = QStringLiteral("PREVIOUS DATA");
const QString othersKeyword = QStringLiteral("Q");
constexpr int usualLimit = 5;
constexpr int namesInARow = 13;

NameListEditor& listEditor()
{
    static NameListEditor editor;
    return editor;
}

// What differs between the two prompts.
struct NamePrompt {
    QString recentKey; ///< of the settings
    QString limitKey; ///< empty: the limit is always the usual one
    QString usualName; ///< offered when nothing else is known
    QStringList candidates; ///< names of the drawing, in the order in which they are offered
    QString suggested;
};

QStringList areaNamesOfDrawing()
{
    QStringList names;
    if (const auto config = GetDwgGlobal(VdlOpenMode::kForRead))
        for (const auto& [name, text] : config->GetDimInfo())
            names += name;
    return names;
}

QStringList blockNamesOfDrawing()
{
    KcEdSelectionSet references;
    kcedSSGet(QStringLiteral("X"), nullptr, nullptr, kcutBuildList(0, "INSERT"), references);
    QStringList names;
    CSs(references.ids()).GetBlockNames(names);
    names.erase(
        std::remove_if(names.begin(), names.end(), [](const QString& name) { return name.contains(u"*U"); }),
        names.end());
    return names;
}

// One name, without a list; nothing when cancelled.
std::optional<QString> askPlainly(const QString& usualName)
{
    QString name = usualName;
    if (!GetString(
            name, localised(QStringLiteral("INPUTTHENAME")) + QStringLiteral("%1<%1>:").arg(usualName)))
        return {};
    return name;
}

QString keywordsFor(qsizetype names, bool others)
{
    QStringList keywords;
    for (qsizetype number = 1; number <= names; ++number)
        keywords += QString::number(number);
    if (others)
        keywords += othersKeyword;
    return keywords.join(u' ');
}

// Lets the user edit the list; the limit then follows it where it is kept.
void editList(QStringList& names, int& limit, bool limitFollows)
{
    if (!listEditor())
        return kcedSay(QStringLiteral("名称列表的编辑功能尚未提供，请直接输入名称或编号。"));
    const KcApResourceScope resources(moduleHandle());
    const std::optional<QStringList> edited = listEditor()(names);
    if (!edited)
        return;
    names = *edited;
    if (limitFollows)
        limit = std::max(1, int(names.size()));
}

// A name out of the list or a new one; nothing when cancelled.
std::optional<QString> askFromList(QStringList& names, int& limit, const NamePrompt& what)
{
    const bool others = !what.candidates.isEmpty();
    for (;;) {
        QString answer = names.value(0);
        bool isKeyword = false;
        if (!GetString(
                answer, isKeyword, keywordsFor(names.size(), others),
                localised(QStringLiteral("INPUTTHENAMEOROTHER")) + nameChoices(names, others)))
            return {};
        if (!isKeyword)
            return answer;
        if (answer.compare(othersKeyword, Qt::CaseInsensitive) != 0)
            return names.value(answer.toInt() - 1);
        editList(names, limit, !what.limitKey.isEmpty());
    }
}

QString ask(const NamePrompt& what)
{
    const CVdlIni store = productSettings();
    // A limit below 1 could hold no name; it counts as absent.
    int limit = what.limitKey.isEmpty() ? usualLimit : store.integer(section, what.limitKey, usualLimit);
    limit = limit < 1 ? usualLimit : limit;
    const QString stored = store.text(section, what.recentKey);
    QStringList names = stored.isEmpty() ? QStringList() : splitFields(stored, u',');

    std::optional<QString> answer;
    if (what.candidates.isEmpty() && stored.isEmpty() && what.suggested.isEmpty()) {
        answer = askPlainly(what.usualName);
    } else {
        for (const QString& name : what.candidates) {
            if (names.size() >= limit)
                break;
            if (!names.contains(name))
                names += name;
        }
        if (!what.suggested.isEmpty() && !names.contains(what.suggested))
            names.prepend(what.suggested);
        answer = askFromList(names, limit, what);
    }
    if (!answer || answer->isEmpty())
        return {};

    if (!what.candidates.contains(*answer) && !areaNamesOfDrawing().contains(*answer))
        if (const auto config = GetDwgGlobal(VdlOpenMode::kForWrite))
            config->AppendAreaDimInfo(*answer, {});
    QString recent = withRecentName(names, *answer).mid(0, limit).join(u',');
    while (recent.endsWith(u','))
        recent.chop(1);
    store.WriteText(section, what.recentKey, recent);
    if (!what.limitKey.isEmpty())
        store.WriteInt(section, what.limitKey, limit);
    return *answer;
}

} // namespace

NameListEditor setNameListEditor(NameListEditor editor)
{
    return std::exchange(listEditor(), std::move(editor));
}

QString askAreaName(const QString& suggested)
{
    return ask({ QStringLiteral("sPreAreaDimName"), QStringLiteral("nPreAreaDimNameAmount"),
                 QStringLiteral("地毯草"), areaNamesOfDrawing(), suggested });
}

QString askTreeArrayName()
{
    return ask(
        { QStringLiteral("sPreCircesDimName"), {}, QStringLiteral("树阵"), blockNamesOfDrawing(), {} });
}

QString nameChoices(const QStringList& names, bool others)
{
    QString text;
    for (qsizetype i = 0; i < names.size(); ++i) {
        text += QStringLiteral("%1(%2)/").arg(names[i], QString::number(i + 1));
        if ((i + 1) % namesInARow == 0)
            text += QStringLiteral("\n   ");
    }
    if (others)
        text += QStringLiteral("其他(Q)");
    return text + QStringLiteral("]<%1>:").arg(names.value(0));
}

QStringList withRecentName(QStringList names, const QString& answer)
{
    const qsizetype at = names.indexOf(answer);
    if (at < 0)
        names.prepend(answer);
    else
        names.move(at, 0);
    return names;
}
