// Undo and redo: one step a command, each the list of objects as they were before the step changed them.
#pragma once

#include "db/object.h"

#include <QString>

#include <deque>
#include <memory>
#include <vector>

class KcDbUndo {
public:
    explicit KcDbUndo(KcDbDatabase& database)
        : m_database(database)
    {
    }

    /// Begins a step, or joins the one that is open; steps nest by counting.
    void beginStep(const QString& name);
    /// Ends what the matching `beginStep` began; a step that changed nothing leaves no trace.
    void endStep();
    bool isRecording() const { return m_depth > 0; }
    /// True when the open step has changed the object since its last mark.
    bool hasChanged(const KcDbObjectStub& stub) const { return m_depth > 0 && stub.undoStep == m_number; }

    /// A point inside the open step to which `rollBackTo` returns.
    size_t mark()
    {
        ++m_number; // what changes from here on takes snapshots of its own
        return m_open.changes.size();
    }
    /// Takes back what the open step did since the mark.
    void rollBackTo(size_t mark);

    /// Takes back the last step, or brings it back. The step's name; an empty text when there is none.
    QString undo();
    QString redo();
    bool canUndo() const { return !m_done.empty(); }
    bool canRedo() const { return !m_undone.empty(); }
    void clear();
    /// Forgets everything, an open step included; for the end of the database.
    void discard();

    /// Called before an object is changed, and after one was made.
    void willChange(KcDbObjectStub& stub);
    void wasCreated(KcDbObjectStub& stub);

private:
    struct Change {
        KcDbObjectStub* stub = nullptr;
        std::unique_ptr<KcDbObject> before; ///< null: only the flags changed
        uint32_t flagsBefore = 0;
    };
    struct Step {
        QString name;
        std::vector<Change> changes;
    };

    void swap(Change& change);
    void notifyAll(const Step& step);

    KcDbDatabase& m_database;
    Step m_open;
    int m_depth = 0;
    uint32_t m_number = 0;
    std::vector<Step> m_done;
    std::vector<Step> m_undone;
};
