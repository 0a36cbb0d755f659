// Asking, refusing, and reading commands.

#include "ed/editor.h"

#include "ed/command_stack.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/help.h"
#include "ed/selection.h"
#include "ed/system_variables.h"

namespace {

QString noDialogHere()
{
    return QStringLiteral("There is no dialog to answer: dialogs need the window, which is not there yet.");
}

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

// A click answers as the point would that is typed; a move counts only where moves are wanted.
std::optional<KcEdAnswer> answerFromClick(const KcEdPrompt& prompt, KcGePoint3d point)
{
    switch (prompt.kind) {
    case KcEdPrompt::Kind::Point:
    case KcEdPrompt::Kind::Corner:
    case KcEdPrompt::Kind::Distance:
    case KcEdPrompt::Kind::Track:
        return point;
    case KcEdPrompt::Kind::Selection:
        return KcEdSelectionLine{ KcEdSelectionLine::Mode::Point, false, { point }, {} };
    case KcEdPrompt::Kind::Entity:
        return KcEdPick{ 0, point };
    default:
        return {};
    }
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

// Counts the prompts that wait, on every way out.
struct Asking {
    explicit Asking(int& count)
        : m_count(count)
    {
        ++m_count;
    }
    ~Asking() { --m_count; }
    int& m_count;
};

} // namespace

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
        refuse(line, noDialogHere());
        return {};
    }
    const Unmarked typed = unmarked(line.text);
    auto parsed = kcedParseAnswer(prompt, typed.text, typed.literal, lastPoint());
    if (const auto* refusal = std::get_if<KcEdRefusal>(&parsed)) {
        refuse(line, refusal->sentence);
        return {};
    }
    KcEdAnswer& answer = std::get<KcEdAnswer>(parsed);
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
    const Asking asking(m_asking);
    kcedPrint(prompt.text);
    for (;;) {
        const KcEdEvent event = source()->next(prompt);
        std::optional<KcEdAnswer> answer;
        if (std::holds_alternative<KcEdEnd>(event) || std::holds_alternative<KcEdEscape>(event)) {
            answer = KcEdEscape();
        } else if (const auto* click = std::get_if<KcEdClick>(&event)) {
            answer = checked(prompt, answerFromClick(prompt, click->point));
        } else if (const auto* given = std::get_if<KcEdGiven>(&event)) {
            answer = checked(prompt, given->answer);
        } else if (const auto* move = std::get_if<KcEdMove>(&event)) {
            if (prompt.kind == KcEdPrompt::Kind::Track)
                answer = *move;
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
        const KcEdEvent event = source()->next(prompt);
        if (std::holds_alternative<KcEdEnd>(event)) {
            kcedFreshRow();
            return;
        }
        if (const auto* line = std::get_if<KcEdLine>(&event))
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
    if (text.startsWith(QLatin1Char('!')))
        return refuse(line, noDialogHere());

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

platform::MessageBoxAnswer KcEdEditor::answerMessageBox(const platform::MessageBoxRequest& request)
{
    using platform::MessageBoxAnswer;
    using platform::MessageBoxButtons;
    kcedSay(request.caption.isEmpty() ? request.text : request.caption + QStringLiteral(": ") + request.text);
    const MessageBoxAnswer none = platform::unattendedAnswer(request.buttons);
    if (!request.asks() || !source())
        return none;

    MessageBoxAnswer yes = MessageBoxAnswer::Ok;
    MessageBoxAnswer no = none;
    if (request.buttons == MessageBoxButtons::YesNo || request.buttons == MessageBoxButtons::YesNoCancel) {
        yes = MessageBoxAnswer::Yes;
        no = MessageBoxAnswer::No;
    } else if (request.buttons != MessageBoxButtons::OkCancel) {
        yes = MessageBoxAnswer::Retry;
    }

    KcEdPrompt prompt;
    prompt.kind = KcEdPrompt::Kind::Command;
    prompt.text = yes == MessageBoxAnswer::Yes ? QStringLiteral("\n[!yes/!no]: ")
                                               : QStringLiteral("\n[!ok/!cancel]: ");
    for (;;) {
        kcedPrint(prompt.text);
        const KcEdEvent event = source()->next(prompt);
        const auto* line = std::get_if<KcEdLine>(&event);
        if (!line) {
            kcedFreshRow();
            return none;
        }
        const QString text = line->text.trimmed().toLower();
        if (isComment(text))
            continue;
        if (!text.startsWith(QLatin1Char('!'))) {
            source()->giveBack(*line);
            kcedSayError(QStringLiteral("A question got no answer and was cancelled: %1").arg(request.text));
            return none;
        }
        if (source()->needsEcho())
            kcedPrint(line->text + QLatin1Char('\n'));
        if (text == QLatin1String("!yes") || text == QLatin1String("!ok"))
            return yes;
        if (text == QLatin1String("!no"))
            return no;
        if (text == QLatin1String("!cancel") || text == QLatin1String("!close"))
            return none;
        refuse(*line, QStringLiteral("A question is answered by !yes, !no, !ok or !cancel."));
    }
}
