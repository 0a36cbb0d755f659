// Open drawings and what belongs to each while it is worked on: selections, the last point, locks, texts that
// wait to be executed.
#pragma once

#include "db/database.h"
#include "ed/selection_set.h"
#include "ed/view.h"

class QWidget;

class KcApDocument {
public:
    explicit KcApDocument(std::unique_ptr<KcDbDatabase> database);
    KcApDocument(const KcApDocument&) = delete;
    KcApDocument& operator=(const KcApDocument&) = delete;

    KcDbDatabase& database() { return *m_database; }

    /// True when something changed since the drawing was opened or saved.
    bool isModified() const { return m_database->changeCount() != m_savedAt; }
    void markSaved() { m_savedAt = m_database->changeCount(); }
    /// What is in memory is in no file yet, although nothing changed since it was read.
    void markUnsaved() { m_savedAt = ~uint64_t(0); }

    /// Selected while no command ran; the next command that may take it takes it.
    KcEdSelectionSet pickFirst;
    /// What the last selection prompt gave; "P" selects it again.
    KcEdSelectionSet lastSelection;
    /// What is shown of each space, by the id of its block; see ed/view.h.
    struct Views {
        std::optional<KcEdView> current; ///< none until it is asked for
        std::vector<KcEdView> before; ///< the latest last
    };
    std::map<KcDbObjectId, Views> views;
    /// User coordinate systems that were current before, to world coordinates, the latest last.
    std::vector<KcGeMatrix3d> coordinateSystems;
    /// The last point that was entered, in user coordinates; relative points count from it.
    KcGePoint3d lastPoint;

    /// A drawing that must not be changed (while it is being saved) refuses locks for writing.
    void setWriteProtected(bool on) { m_writeProtected = on; }
    bool isWriteProtected() const { return m_writeProtected; }
    int lockCount() const { return m_locks; }

    /// Takes the texts that wait for execution, as lines.
    QStringList takeSentLines();

private:
    friend class KcApDocManager;
    std::unique_ptr<KcDbDatabase> m_database;
    uint64_t m_savedAt = 0;
    bool m_writeProtected = false;
    int m_locks = 0;
    QString m_sent;
};

class KcApDocManager {
public:
    /// The drawing that commands work on; null when none is open.
    KcApDocument* curDocument() const { return m_current; }
    /// Opens a document on a database and makes it current.
    KcApDocument& open(std::unique_ptr<KcDbDatabase> database);
    /// eLockViolation while somebody holds a lock.
    Kcad::ErrorStatus close(KcApDocument& document);
    Kcad::ErrorStatus setCurDocument(KcApDocument& document);

    /// Locks a document for writing. Locks nest and are counted; they keep a document from being closed.
    /// eNullObjectId for a null document, eLockViolation when it must not be changed now.
    Kcad::ErrorStatus lockDocument(KcApDocument* document);
    Kcad::ErrorStatus unlockDocument(KcApDocument* document);

    /// Text to be executed as if it were typed, when no command runs and before any further input. The last
    /// line counts whether or not a line feed ends it. `activate`, `wrapUpInactive` and `echo` are what a
    /// window may heed.
    void sendStringToExecute(
        KcApDocument* document, const QString& text, bool activate = true, bool wrapUpInactive = false,
        bool echo = true);

    /// The module whose texts and pictures dialogs take while it is on top. Pushing and popping pair up.
    void pushResourceHandle(const void* module) { m_resources.push_back(module); }
    void popResourceHandle();
    const void* resourceHandle() const { return m_resources.empty() ? nullptr : m_resources.back(); }

    /// Told when another document, or none, has become the current one.
    std::function<void()> onCurrentChanged;

    /// Parent of dialogs; null without a window.
    QWidget* mainWindow() const { return m_mainWindow; }
    void setMainWindow(QWidget* window) { m_mainWindow = window; }

private:
    bool knows(const KcApDocument* document) const;
    void becomeCurrent(KcApDocument* document);

    std::vector<std::unique_ptr<KcApDocument>> m_documents;
    KcApDocument* m_current = nullptr;
    std::vector<const void*> m_resources;
    QWidget* m_mainWindow = nullptr;
};

KcApDocManager* kcDocManagerPtr();

/// The drawing that commands work on; null when none is open.
KcDbDatabase* kcedCurrentDatabase();

/// Holds a lock for the length of a scope; false when it was refused.
class KcApDocLock {
public:
    explicit KcApDocLock(KcApDocument* document = kcDocManagerPtr()->curDocument())
        : m_document(document)
        , m_status(kcDocManagerPtr()->lockDocument(document))
    {
    }
    ~KcApDocLock()
    {
        if (m_status == Kcad::eOk)
            kcDocManagerPtr()->unlockDocument(m_document);
    }
    KcApDocLock(const KcApDocLock&) = delete;
    KcApDocLock& operator=(const KcApDocLock&) = delete;
    explicit operator bool() const { return m_status == Kcad::eOk; }
    Kcad::ErrorStatus status() const { return m_status; }

private:
    KcApDocument* m_document;
    Kcad::ErrorStatus m_status;
};

/// A resource handle pushed for the length of a scope.
class KcApResourceScope {
public:
    explicit KcApResourceScope(const void* module) { kcDocManagerPtr()->pushResourceHandle(module); }
    ~KcApResourceScope() { kcDocManagerPtr()->popResourceHandle(); }
    KcApResourceScope(const KcApResourceScope&) = delete;
    KcApResourceScope& operator=(const KcApResourceScope&) = delete;
};

/// Makes what is changed in a scope one undo step, or part of the step that is open: what a modeless dialog
/// does between two clicks.
class KcApUndoStep {
public:
    KcApUndoStep(KcDbDatabase& database, const QString& name)
        : m_database(database)
    {
        m_database.undo().beginStep(name);
    }
    ~KcApUndoStep() { m_database.undo().endStep(); }
    KcApUndoStep(const KcApUndoStep&) = delete;
    KcApUndoStep& operator=(const KcApUndoStep&) = delete;

private:
    KcDbDatabase& m_database;
};
