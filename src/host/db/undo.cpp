// Undo and redo by exchanging objects with their snapshots.

#include "db/undo.h"

#include "db/database.h"

#include <cassert>

void KcDbUndo::beginStep(const QString& name)
{
    if (m_depth++ > 0)
        return;
    ++m_number;
    m_open.name = name;
    m_open.changes.clear();
}

void KcDbUndo::endStep()
{
    assert(m_depth > 0);
    if (--m_depth > 0 || m_open.changes.empty())
        return;
    m_undone.clear();
    m_done.push_back(std::move(m_open));
    m_open = {};
}

void KcDbUndo::willChange(KcDbObjectStub& stub)
{
    if (m_depth == 0 || stub.undoStep == m_number)
        return;
    stub.undoStep = m_number;
    m_open.changes.push_back({ &stub, stub.object->copy(), stub.flags });
}

void KcDbUndo::wasCreated(KcDbObjectStub& stub)
{
    if (m_depth == 0)
        return;
    stub.undoStep = m_number;
    m_open.changes.push_back({ &stub, nullptr, stub.flags | KcDbObjectStub::kErased });
}

void KcDbUndo::swap(Change& change)
{
    KcDbObjectStub& stub = *change.stub;
    if (change.before) {
        KcDbObject* current = stub.object;
        stub.object = change.before.release();
        stub.object->m_stub = &stub;
        change.before.reset(current);
    }
    std::swap(stub.flags, change.flagsBefore);
    stub.undoStep = 0;
}

void KcDbUndo::notifyAll(const Step& step)
{
    for (const Change& change : step.changes)
        m_database.notifyRestored(*change.stub);
}

void KcDbUndo::rollBackTo(size_t mark)
{
    for (size_t i = m_open.changes.size(); i > mark; --i)
        swap(m_open.changes[i - 1]);
    for (size_t i = mark; i < m_open.changes.size(); ++i)
        m_database.notifyRestored(*m_open.changes[i].stub);
    m_open.changes.resize(std::min(mark, m_open.changes.size()));
    ++m_number;
}

QString KcDbUndo::undo()
{
    if (m_depth > 0 || m_done.empty())
        return {};
    Step step = std::move(m_done.back());
    m_done.pop_back();
    for (size_t i = step.changes.size(); i > 0; --i)
        swap(step.changes[i - 1]);
    notifyAll(step);
    m_undone.push_back(std::move(step));
    return m_undone.back().name;
}

QString KcDbUndo::redo()
{
    if (m_depth > 0 || m_undone.empty())
        return {};
    Step step = std::move(m_undone.back());
    m_undone.pop_back();
    for (Change& change : step.changes)
        swap(change);
    notifyAll(step);
    m_done.push_back(std::move(step));
    return m_done.back().name;
}

void KcDbUndo::clear()
{
    assert(m_depth == 0);
    m_done.clear();
    m_undone.clear();
}

void KcDbUndo::discard()
{
    m_depth = 0;
    m_open = {};
    clear();
}
