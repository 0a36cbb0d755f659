// What may happen while something waits for the user: decided here, for the window, for modeless dialogs and
// for lines alike.
#pragma once

#include <QString>

#include <functional>

/// What the session does at this moment.
enum class KcEdActivity {
    Idle, ///< no command runs
    Prompt, ///< a prompt waits for its answer
    Dialog, ///< a modal dialog is open
    Working, ///< a command computes
};

/// What somebody would like to do beside it.
enum class KcEdWish {
    Look, ///< zoom, pan, change snaps and other settings of drawing, read a panel, help
    Change, ///< anything that may change the drawing: a command, undo, properties, actions of modeless
            ///< dialogs
    Close, ///< close the drawing or the program
};

enum class KcEdVerdict {
    Now,
    AfterCancel, ///< what waits is cancelled first
    Refused,
};

KcEdActivity kcedActivity();
/// The one table: looking goes on beside a prompt, what changes or closes the drawing cancels the prompt; a
/// modal dialog and a command that computes have to end by themselves.
KcEdVerdict kcedVerdict(KcEdActivity activity, KcEdWish wish);

/// Grants a wish by that table: at once, or when the prompt that waits has been cancelled and the command
/// that asked has ended, or not at all: then false, and the reason is said on the command line. `body` then
/// never runs.
bool kcedRequest(KcEdWish wish, std::function<void()> body);

/// Says for the length of a scope what the session does; scopes nest.
class KcEdActivityScope {
public:
    explicit KcEdActivityScope(KcEdActivity activity);
    ~KcEdActivityScope();
    KcEdActivityScope(const KcEdActivityScope&) = delete;
    KcEdActivityScope& operator=(const KcEdActivityScope&) = delete;
};
