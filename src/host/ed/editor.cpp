// Asking, refusing, and reading commands.

#include "ed/editor.h"

#include "ed/activity.h"
#include "ed/command_stack.h"
#include "ed/console.h"
#include "ed/dialogs.h"
#include "ed/documents.h"
#include "ed/help.h"
#include "ed/next_point.h"
#include "ed/selection.h"
#include "ed/system_variables.h"

#include <QScopedValueRollback>

namespace {

KcEdPrompt commandPrompt()
{
    KcEdPrompt prompt;
    prompt.kind = KcEdPrompt::Kind::Command;
    prompt.text = QStringLiteral("\nCommand: ");
    return prompt;
}

bool isComment(const QString& line)
{
    return line.trimmed().startsWith(QLatin1Char(';'));
}

bool isEscape(const QString& line)
{
    return line.trimmed().compare(QLatin1String("^C"), Qt::CaseInsensitive) == 0;
}

// The text behind a backslash, which takes away the meaning of marks; the line itself where there is none.
struct Unmarked {
    QString text;
    bool literal = false;
};

Unmarked unmarked(const QString& line)
{
    if (line.startsWith(QLatin1Char('\\')))
        return { line.mid(1), true };
    return { line, false };
}

KcGePoint3d lastPoint()
{
    const KcApDocument* document = kcDocManagerPtr()->curDocument();
    return document ? document->lastPoint : KcGePoint3d();
}

void rememberPoint(const KcEdAnswer& answer)
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    if (!document)
        return;
    if (const auto* point = std::get_if<KcGePoint3d>(&answer))
        document->lastPoint = *point;
    if (const auto* pick = std::get_if<KcEdPick>(&answer); pick && pick->point)
        document->lastPoint = *pick->point;
}

// A point after something was said about it.
std::variant<KcEdAnswer, KcEdRefusal> meant(const KcEdPrompt& prompt, KcGePoint3d point)
{
    auto said = kcedSaidPoint(prompt, point);
    if (auto* refusal = std::get_if<KcEdRefusal>(&said))
        return std::move(*refusal);
    return KcEdAnswer(std::get<KcGePoint3d>(said));
}

// A click answers as the point would that is typed; a move counts only where moves are wanted.
std::optional<KcEdAnswer> answerFromClick(const KcEdPrompt& prompt, KcGePoint3d point)
{
    if (kcedTakesPoint(prompt.kind)) {
        auto answer = meant(prompt, point);
        if (auto* refusal = std::get_if<KcEdRefusal>(&answer)) {
            kcedSay(refusal->sentence);
            return {};
        }
        return std::move(std::get<KcEdAnswer>(answer));
    }
    switch (prompt.kind) {
    case KcEdPrompt::Kind::Selection:
        return KcEdSelectionLine{ KcEdSelectionLine::Mode::Point, false, { point }, {} };
    case KcEdPrompt::Kind::Entity:
        return KcEdPick{ 0, point };
    default:
        return {};
    }
}

// A selection or a pick made at one prompt is no answer to a prompt of another kind.
bool isMeantFor(const KcEdPrompt& prompt, const KcEdAnswer& answer)
{
    if (std::holds_alternative<KcEdSelectionLine>(answer))
        return prompt.kind == KcEdPrompt::Kind::Selection;
    return !std::holds_alternative<KcEdPick>(answer) || prompt.kind == KcEdPrompt::Kind::Entity;
}

// The answer if the prompt accepts it; else nothing, and the reason is said.
std::optional<KcEdAnswer> checked(const KcEdPrompt& prompt, std::optional<KcEdAnswer> answer)
{
    if (!answer || !prompt.check)
        return answer;
    const QString sentence = prompt.check(*answer);
    if (sentence.isEmpty())
        return answer;
    kcedSay(sentence);
    return {};
}

// What is typed at a prompt and leaves it waiting: help, and commands that only look, with an apostrophe
// before their names. A prompt for a text takes everything as text.
bool goesOnBeside(const KcEdPrompt& prompt, const QString& line)
{
    const QString text = line.trimmed();
    if (prompt.kind == KcEdPrompt::Kind::Text)
        return false;
    if (const auto path = kcedHelpPath(text)) {
        kcedShowHelp(*path);
        return true;
    }
    const KcEdCommand* command
        = text.startsWith(QLatin1Char('\'')) ? kcedCommandStack().lookup(text) : nullptr;
    if (!command)
        return false;
    if (command->flags & KcEdCommand::kTransparent) {
        // Points entered meanwhile are none of the command that asks.
        KcApDocument* document = kcDocManagerPtr()->curDocument();
        const KcGePoint3d last = lastPoint();
        const QScopedValueRollback<KcEdNextPoint> said(kcedNextPoint(), {});
        kcedCommandStack().run(*command);
        if (document)
            document->lastPoint = last;
    } else
        kcedSay(QStringLiteral("%1 cannot be used while a command asks.").arg(command->globalName));
    return true;
}

} // namespace

KcEdSourceScope::KcEdSourceScope(KcEdInputSource& source)
{
    KcEdEditor::instance().m_sources.push_back(&source);
}

KcEdSourceScope::~KcEdSourceScope()
{
    std::vector<KcEdInputSource*>& sources = KcEdEditor::instance().m_sources;
    std::vector<KcEdCall> calls = sources.back()->takeCalls();
    sources.pop_back();
    if (sources.empty())
        return;
    for (auto call = calls.rbegin(); call != calls.rend(); ++call)
        sources.back()->giveBack(std::move(*call));
}

KcEdEditor& KcEdEditor::instance()
{
    static KcEdEditor editor;
    return editor;
}

void KcEdEditor::refuse(const KcEdLine& line, const QString& reason)
{
    kcedFreshRow();
    source()->refused(line, reason);
}

std::optional<KcEdAnswer> KcEdEditor::answerFrom(const KcEdPrompt& prompt, const KcEdLine& line)
{
    if (line.text.startsWith(QLatin1Char('!'))) {
        if (const QString reason = kcedDriveModeless(line.text); !reason.isEmpty())
            refuse(line, reason);
        return {};
    }
    if (goesOnBeside(prompt, line.text))
        return {};
    const Unmarked typed = unmarked(line.text);
    auto parsed = kcedParseAnswer(prompt, typed.text, typed.literal, lastPoint());
    if (std::holds_alternative<KcEdRefusal>(parsed)) {
        if (const auto point = kcedPointAtDistance(prompt, typed.text, source()->cursor(prompt)))
            parsed = KcEdAnswer(*point);
        else if (kcedSayNextPoint(prompt, typed.text))
            return {};
    } else if (const auto* point = std::get_if<KcGePoint3d>(&std::get<KcEdAnswer>(parsed))) {
        parsed = meant(prompt, *point);
    }
    if (const auto* refusal = std::get_if<KcEdRefusal>(&parsed)) {
        refuse(line, refusal->sentence);
        return {};
    }
    KcEdAnswer& answer = std::get<KcEdAnswer>(parsed);
    if (const auto* move = std::get_if<KcEdMove>(&answer); move && prompt.drag) {
        prompt.drag(move->point);
        return {};
    }
    if (prompt.check)
        if (const QString sentence = prompt.check(answer); !sentence.isEmpty()) {
            refuse(line, sentence);
            return {};
        }
    return std::move(answer);
}

KcEdAnswer KcEdEditor::ask(const KcEdPrompt& prompt)
{
    if (m_sources.empty())
        return KcEdEscape();
    const KcEdActivityScope activity(KcEdActivity::Prompt);
    kcedPrint(prompt.text);
    for (;;) {
        const KcEdEvent event = source()->next(prompt);
        std::optional<KcEdAnswer> answer;
        if (std::holds_alternative<KcEdEnd>(event) || std::holds_alternative<KcEdEscape>(event)) {
            answer = KcEdEscape();
        } else if (const auto* click = std::get_if<KcEdClick>(&event)) {
            answer = checked(prompt, answerFromClick(prompt, click->point));
        } else if (std::holds_alternative<KcEdCall>(event)) {
            source()->giveBack(event);
            answer = KcEdEscape();
        } else if (const auto* given = std::get_if<KcEdGiven>(&event)) {
            if (std::holds_alternative<KcEdRestart>(given->answer)) {
                if (prompt.drag)
                    return given->answer;
            } else if (isMeantFor(prompt, given->answer)) {
                answer = checked(prompt, given->answer);
            }
        } else if (const auto* move = std::get_if<KcEdMove>(&event)) {
            if (prompt.kind == KcEdPrompt::Kind::Track)
                answer = *move;
            else if (prompt.drag)
                prompt.drag(move->point);
        } else {
            const KcEdLine& line = std::get<KcEdLine>(event);
            if (isComment(line.text))
                continue;
            if (source()->needsEcho())
                kcedPrint(line.text + QLatin1Char('\n'));
            answer = isEscape(line.text) ? KcEdEscape() : answerFrom(prompt, line);
            if (!answer) {
                kcedPrint(prompt.text);
                continue;
            }
        }
        if (!answer)
            continue;
        if (std::holds_alternative<KcEdEscape>(*answer))
            kcedSay(QStringLiteral("*Cancel*"));
        kcedFreshRow();
        rememberPoint(*answer);
        if (!std::holds_alternative<KcEdMove>(*answer))
            kcedNextPoint() = {};
        return *answer;
    }
}

void KcEdEditor::run()
{
    const KcEdPrompt prompt = commandPrompt();
    while (source()) {
        if (KcApDocument* document = kcDocManagerPtr()->curDocument())
            source()->insert(document->takeSentLines());
        if (!source()->needsEcho())
            kcedPrint(prompt.text);
        const KcEdEvent event = std::exchange(m_quits, false) ? KcEdEvent(KcEdEnd()) : source()->next(prompt);
        if (std::holds_alternative<KcEdEnd>(event)) {
            kcedFreshRow();
            // The last source that answers dialogs takes them with it.
            if (m_sources.size() == 1 && source()->drivesDialogs())
                kcedCloseModelessDialogs();
            return;
        }
        if (const auto* call = std::get_if<KcEdCall>(&event))
            call->body();
        else if (const auto* line = std::get_if<KcEdLine>(&event))
            executeLine(*line);
        else if (const auto* given = std::get_if<KcEdGiven>(&event))
            executeGiven(*given);
        else if (std::holds_alternative<KcEdEscape>(event) && kcDocManagerPtr()->curDocument())
            kcDocManagerPtr()->curDocument()->pickFirst.clear();
    }
}

void KcEdEditor::executeGiven(const KcEdGiven& given)
{
    if (const auto* words = std::get_if<KcEdSelectionLine>(&given.answer))
        if (const QString sentence = kcedSelectBeforeCommand(*words); !sentence.isEmpty())
            kcedSay(sentence);
}

void KcEdEditor::executeLine(const KcEdLine& line)
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    const QString text = line.text.trimmed();
    if (text.isEmpty() || isComment(text))
        return;
    if (source()->needsEcho())
        kcedPrint(QStringLiteral("\nCommand: ") + text + QLatin1Char('\n'));
    if (isEscape(text)) {
        if (document)
            document->pickFirst.clear();
        return;
    }
    if (text.startsWith(QLatin1Char('!'))) {
        if (const QString reason = kcedDriveModeless(text); !reason.isEmpty())
            refuse(line, reason);
        return;
    }

    const QString typed = unmarked(text).text;
    if (const auto path = kcedHelpPath(typed))
        return kcedShowHelp(*path);
    if (const KcEdCommand* command = kcedCommandStack().lookup(typed)) {
        kcedCommandStack().run(*command);
        return;
    }
    const auto selection = kcedParseSelectionLine(typed, lastPoint());
    if (const auto* refusal = std::get_if<KcEdRefusal>(&selection))
        return refuse(line, refusal->sentence);
    if (const auto* words = std::get_if<KcEdSelectionLine>(&selection)) {
        if (const QString sentence = kcedSelectBeforeCommand(*words); !sentence.isEmpty())
            refuse(line, sentence);
        return;
    }
    if (kcedHasVar(typed))
        return kcedAskVar(typed);
    refuse(line, QStringLiteral("Unknown command \"%1\".").arg(typed));
}
