// Copies of unsaved work, written in the background, and what a program that ended badly has left of them.
#pragma once

#include "platform/result.h"

#include <QDateTime>
#include <QString>

#include <functional>
#include <memory>
#include <sys/types.h>
#include <vector>

class KcDbDatabase;

class KcUiRecovery {
public:
    /// @param folder where the copies lie; empty: "verdelis/recovery" in the user's state folder
    ///               ($XDG_STATE_HOME or ~/.local/state)
    explicit KcUiRecovery(const QString& folder = {});
    /// The program ends as it should: its copy is removed.
    ~KcUiRecovery();
    KcUiRecovery(const KcUiRecovery&) = delete;
    KcUiRecovery& operator=(const KcUiRecovery&) = delete;

    /// Begins to write a copy in the place of the one before, which stays until the new one is whole. A
    /// process of its own writes the drawing as it is at this moment; nobody waits for it.
    platform::Status begin(KcDbDatabase& database);
    /// Why the copy that was begun could not be written, or an empty text when it is there; nothing while it
    /// is being written, unless that is waited for.
    std::optional<QString> finished(bool waits = false);
    bool isWriting() const { return m_writer > 0; }
    /// The work is saved or given up: its copy goes.
    void discard();

    /// What a program has left that is not running any more.
    struct Lost {
        QString copy; ///< the drawing to read
        QString drawing; ///< the path of the drawing that it is a copy of; empty for one that had none
        QDateTime time; ///< of the copy
        /// No other program offers the same copy while somebody holds this.
        std::shared_ptr<void> held;
    };
    std::vector<Lost> lost() const;
    /// Removes what was left.
    static void remove(const Lost& lost);

private:
    QString path(const char* extension) const { return m_stem + QLatin1String(extension); }
    void endWriter();
    QString whatWriterSaid();

    QString m_folder, m_stem;
    int m_lock = -1;
    pid_t m_writer = 0;
    int m_report = -1; ///< where the writer says what went wrong
};
