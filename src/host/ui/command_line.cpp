// Typing, recalling, completing, clicking keywords.

#include "ui/command_line.h"

#include "ed/command_stack.h"
#include "ui/window_source.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QCoreApplication>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextCursor>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int kHistoryRows = 5000;
constexpr int kTypedLines = 200;
constexpr int kPromptCharacters = 160; // longer prompts are cut on screen; the history shows them whole

} // namespace

KcUiCommandLine::KcUiCommandLine(KcUiWindowSource& source, QWidget* parent)
    : QWidget(parent)
    , m_source(source)
    , m_history(new QPlainTextEdit(this))
    , m_prompt(new QLabel(this))
    , m_keywords(new QWidget(this))
    , m_field(new QLineEdit(this))
    , m_completer(new QCompleter(QStringList(), this))
{
    setObjectName(QStringLiteral("commandLine"));
    m_history->setObjectName(QStringLiteral("history"));
    m_history->setAccessibleName(QStringLiteral("Command history"));
    m_history->setReadOnly(true);
    m_history->setMaximumBlockCount(kHistoryRows);
    m_history->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_history->setFrameShape(QFrame::NoFrame);
    m_history->setMinimumHeight(m_history->fontMetrics().lineSpacing() * 2);
    m_prompt->setObjectName(QStringLiteral("prompt"));
    m_prompt->setTextFormat(Qt::PlainText);
    m_keywords->setObjectName(QStringLiteral("keywords"));
    m_field->setObjectName(QStringLiteral("field"));
    m_field->setAccessibleName(QStringLiteral("Command line"));
    m_field->setPlaceholderText(QStringLiteral("Type a command or an answer"));
    // Where a long question leaves little room, it gives way to the answer; the history shows it whole.
    constexpr int kAnswerCharacters = 24;
    m_field->setMinimumWidth(m_field->fontMetrics().averageCharWidth() * kAnswerCharacters);
    m_prompt->setMinimumWidth(1);
    m_field->installEventFilter(this);
    m_history->installEventFilter(this);

    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_completer->setFilterMode(Qt::MatchStartsWith);
    m_completer->setWidget(m_field);
    QObject::connect(
        m_completer, qOverload<const QString&>(&QCompleter::activated), m_field,
        [this](const QString& name) { m_field->setText(name); });
    QObject::connect(m_field, &QLineEdit::textEdited, this, [this](const QString& text) {
        const bool offers = m_kind == KcEdPrompt::Kind::Command && text.size() >= 2;
        m_completer->setCompletionPrefix(text);
        if (offers && m_completer->completionCount() > 0
            && m_completer->currentCompletion().compare(text, Qt::CaseInsensitive) != 0)
            m_completer->complete();
        else
            m_completer->popup()->hide();
    });

    auto* keywordRow = new QHBoxLayout(m_keywords);
    keywordRow->setContentsMargins(0, 0, 0, 0);
    keywordRow->setSpacing(2);
    auto* row = new QHBoxLayout;
    row->setSpacing(4);
    row->addWidget(m_prompt);
    row->addWidget(m_keywords);
    row->addWidget(m_field, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(4, 2, 4, 4);
    column->setSpacing(2);
    column->addWidget(m_history, 1);
    column->addLayout(row);
    setFocusProxy(m_field);
    setPrompt(nullptr);
}

void KcUiCommandLine::append(const QString& text)
{
    m_unshown += text;
    if (m_flushPlanned)
        return;
    // A command that prints ten thousand rows costs one update of the screen.
    m_flushPlanned = true;
    QTimer::singleShot(0, this, [this] { flush(); });
}

void KcUiCommandLine::flush()
{
    m_flushPlanned = false;
    if (m_unshown.isEmpty())
        return;
    QTextCursor cursor(m_history->document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(m_unshown);
    m_unshown.clear();
    m_history->verticalScrollBar()->setValue(m_history->verticalScrollBar()->maximum());
}

void KcUiCommandLine::setPrompt(const KcEdPrompt* prompt)
{
    qDeleteAll(m_keywords->findChildren<QToolButton*>());
    m_keywords->hide();
    if (!prompt) {
        m_prompt->setText(QStringLiteral("…"));
        m_prompt->setToolTip(QStringLiteral("A command is working"));
        return;
    }
    m_kind = prompt->kind;
    m_flags = prompt->flags;
    const QStringList keywords = prompt->keywords.localNames();
    auto [text, captions] = prompt->keywords.shown(prompt->text);
    m_prompt->setToolTip(text.size() > kPromptCharacters ? text : QString());
    if (text.size() > kPromptCharacters)
        text = text.left(kPromptCharacters) + QStringLiteral("…");
    m_prompt->setText(text);
    for (int i = 0; i < keywords.size(); ++i) {
        const QString& keyword = keywords[i];
        auto* button = new QToolButton(m_keywords);
        button->setObjectName(QStringLiteral("keyword ") + keyword);
        button->setText(captions[i]);
        button->setFocusPolicy(Qt::NoFocus);
        button->setToolTip(QStringLiteral("Answer with %1").arg(keyword));
        m_keywords->layout()->addWidget(button);
        QObject::connect(button, &QToolButton::clicked, this, [this, keyword] {
            m_field->clear();
            m_source.pushLine(keyword);
        });
        m_keywords->show();
    }
}

void KcUiCommandLine::setCompletions(const QStringList& names)
{
    m_completer->setModel(new QStringListModel(names, m_completer));
    // After the completer's own, so that it is asked first: the completer gives keys to the field past its
    // filter.
    m_completer->popup()->removeEventFilter(this);
    m_completer->popup()->installEventFilter(this);
}

// What is typed right behind an answer is for the question after it: only then is it known what a blank or
// Enter means. Escape is for everything that waits.
bool KcUiCommandLine::typedAhead(const QEvent& event)
{
    const bool isKey
        = event.type() == QEvent::KeyPress && static_cast<const QKeyEvent&>(event).key() != Qt::Key_Escape;
    // In this order: a window that is being destroyed has no source any more, and still hides its parts.
    if ((!isKey && event.type() != QEvent::InputMethod) || !m_source.isAnswered())
        return false;
    m_source.pushWhenAsked([this, later = std::shared_ptr<QEvent>(event.clone())] {
        QCoreApplication::sendEvent(m_field, later.get());
    });
    return true;
}

void KcUiCommandLine::type(QKeyEvent* event)
{
    if (typedAhead(*event))
        return;
    if (keyPressed(event))
        return;
    if (!event->text().isEmpty() && event->text().front().isPrint()
        && !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
        m_field->setFocus();
        m_field->insert(event->text());
        emit m_field->textEdited(m_field->text());
    } else if (event->key() == Qt::Key_Backspace) {
        m_field->setFocus();
        m_field->backspace();
    }
}

// Names and values hold no blanks, so that a blank ends them as Enter does: "W" asks for the corners then.
// Texts, lists of handles and lines for dialogs keep theirs.
bool KcUiCommandLine::blankIsEnter() const
{
    if (m_kind == KcEdPrompt::Kind::Text)
        return m_field->text().isEmpty();
    const QString typed = m_field->text();
    if (typed.isEmpty())
        return true;
    return !QStringLiteral("(\"!\\;#~").contains(typed.front());
}

bool KcUiCommandLine::keyPressed(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_completer->popup()->isVisible() && m_completer->popup()->currentIndex().isValid()) {
            m_field->setText(m_completer->popup()->currentIndex().data().toString());
            m_completer->popup()->hide();
        }
        enter();
        return true;
    case Qt::Key_Space:
        if (event->modifiers() != Qt::NoModifier || !blankIsEnter())
            return false;
        enter();
        return true;
    case Qt::Key_Escape:
        escape();
        return true;
    case Qt::Key_Tab:
        if (m_kind != KcEdPrompt::Kind::Command || m_completer->completionCount() == 0
            || m_field->text().isEmpty())
            return false;
        m_field->setText(m_completer->currentCompletion());
        m_completer->popup()->hide();
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        recall(event->key() == Qt::Key_Up ? -1 : 1);
        return true;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        m_history->verticalScrollBar()->triggerAction(
            event->key() == Qt::Key_PageUp ? QAbstractSlider::SliderPageStepSub
                                           : QAbstractSlider::SliderPageStepAdd);
        return true;
    default:
        return false;
    }
}

void KcUiCommandLine::enter()
{
    m_completer->popup()->hide();
    QString text = m_field->text();
    m_field->clear();
    m_recalled = -1;
    if (!text.isEmpty()) {
        m_typed.removeAll(text);
        m_typed += text;
        if (m_typed.size() > kTypedLines)
            m_typed.removeFirst();
    }
    if (m_source.waiting() && m_source.waiting()->kind == KcEdPrompt::Kind::Command) {
        if (text.trimmed().isEmpty())
            text = m_lastCommand;
        else if (kcedCommandStack().lookup(text.trimmed()))
            m_lastCommand = text.trimmed();
        if (text.isEmpty())
            return;
    }
    m_source.pushLine(text);
}

void KcUiCommandLine::escape()
{
    m_completer->popup()->hide();
    m_field->clear();
    m_recalled = -1;
    m_source.push(KcEdEscape());
}

void KcUiCommandLine::recall(int step)
{
    if (m_typed.isEmpty())
        return;
    if (m_recalled < 0) {
        if (step > 0)
            return;
        m_draft = m_field->text();
        m_recalled = int(m_typed.size());
    }
    m_recalled = std::max(0, m_recalled + step);
    if (m_recalled >= m_typed.size()) {
        m_recalled = -1;
        m_field->setText(m_draft);
        return;
    }
    m_field->setText(m_typed[m_recalled]);
}

bool KcUiCommandLine::eventFilter(QObject* watched, QEvent* event)
{
    // An empty field has nothing to undo, mark, delete or go over: these keys are the menus' then.
    if (event->type() == QEvent::ShortcutOverride && watched == m_field && m_field->text().isEmpty()) {
        const auto* shortcut = static_cast<QKeyEvent*>(event);
        if ((shortcut->modifiers() & Qt::ControlModifier) || shortcut->key() == Qt::Key_Delete
            || shortcut->key() == Qt::Key_Home) {
            event->ignore();
            return true;
        }
    }
    // A list of names that has just been closed still gets the keys that were on their way to it.
    if ((watched == m_field || watched == m_completer->popup()) && typedAhead(*event))
        return true;
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    // The list of names has the keys while it is open; what ends, cancels or recalls goes where it always
    // does.
    if (watched == m_completer->popup())
        return (key->key() != Qt::Key_Up && key->key() != Qt::Key_Down && keyPressed(key))
            || QWidget::eventFilter(watched, event);
    if (watched == m_field)
        return keyPressed(key) || QWidget::eventFilter(watched, event);
    // In the history, marking and copying work; everything else types.
    if (watched == m_history && !(key->modifiers() & Qt::ControlModifier) && !key->text().isEmpty()) {
        type(key);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
