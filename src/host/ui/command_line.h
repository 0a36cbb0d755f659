// The command line: what was said, what is asked, and the field in which answers are typed.
#pragma once

#include "ed/prompt.h"

#include <QStringList>
#include <QWidget>

class KcUiWindowSource;
class QCompleter;
class QHBoxLayout;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

class KcUiCommandLine : public QWidget {
public:
    explicit KcUiCommandLine(KcUiWindowSource& source, QWidget* parent = nullptr);

    /// Text as it is printed, not whole rows. Rows beyond some thousands are forgotten.
    void append(const QString& text);
    /// What waits for an answer; null while a command computes.
    void setPrompt(const KcEdPrompt* prompt);
    /// A key pressed in the drawing: typing anywhere goes to the command line.
    void type(QKeyEvent* event);
    /// The names that the field completes while a command is asked for.
    void setCompletions(const QStringList& names);
    /// Takes what stands in the field as the answer; an empty field is Enter.
    void enter();
    /// Forgets what was typed and sends Escape.
    void escape();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool keyPressed(QKeyEvent* event);
    bool typedAhead(const QEvent& event);
    bool blankIsEnter() const;
    void recall(int step);
    void flush();

    KcUiWindowSource& m_source;
    QPlainTextEdit* m_history;
    QLabel* m_prompt;
    QWidget* m_keywords;
    QLineEdit* m_field;
    QCompleter* m_completer;
    QStringList m_typed; ///< past input, the latest last
    int m_recalled = -1; ///< the place in the past input that the field shows; -1: none
    QString m_draft; ///< what stood in the field before recalling
    QString m_lastCommand; ///< what Enter repeats
    QString m_unshown; ///< printed, and shown with the next turn of the event loop
    bool m_flushPlanned = false;
    KcEdPrompt::Kind m_kind = KcEdPrompt::Kind::Command;
    int m_flags = 0;
};
