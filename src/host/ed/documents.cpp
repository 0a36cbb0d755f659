// Open drawings, their locks and the texts sent to them.

#include "ed/documents.h"

#include <cassert>

KcApDocument::KcApDocument(std::unique_ptr<KcDbDatabase> database)
    : m_database(std::move(database))
{
    markSaved();
}

QStringList KcApDocument::takeSentLines()
{
    QString text = std::exchange(m_sent, QString());
    if (text.isEmpty())
        return {};
    text.remove(QLatin1Char('\r'));
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    return text.split(QLatin1Char('\n'));
}

KcApDocManager* kcDocManagerPtr()
{
    static KcApDocManager manager;
    return &manager;
}

KcDbDatabase* kcedCurrentDatabase()
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    return document ? &document->database() : nullptr;
}

bool KcApDocManager::knows(const KcApDocument* document) const
{
    return std::any_of(
        m_documents.begin(), m_documents.end(), [&](const auto& open) { return open.get() == document; });
}

KcApDocument& KcApDocManager::open(std::unique_ptr<KcDbDatabase> database)
{
    m_documents.push_back(std::make_unique<KcApDocument>(std::move(database)));
    becomeCurrent(m_documents.back().get());
    return *m_current;
}

void KcApDocManager::becomeCurrent(KcApDocument* document)
{
    m_current = document;
    if (onCurrentChanged)
        onCurrentChanged();
}

Kcad::ErrorStatus KcApDocManager::close(KcApDocument& document)
{
    if (document.m_locks > 0)
        return Kcad::eLockViolation;
    const auto at = std::find_if(
        m_documents.begin(), m_documents.end(), [&](const auto& open) { return open.get() == &document; });
    if (at == m_documents.end())
        return Kcad::eInvalidInput;
    const std::unique_ptr<KcApDocument> closing = std::move(*at);
    m_documents.erase(at);
    if (m_current == &document)
        becomeCurrent(m_documents.empty() ? nullptr : m_documents.back().get());
    return Kcad::eOk;
}

Kcad::ErrorStatus KcApDocManager::setCurDocument(KcApDocument& document)
{
    if (!knows(&document))
        return Kcad::eInvalidInput;
    becomeCurrent(&document);
    return Kcad::eOk;
}

Kcad::ErrorStatus KcApDocManager::lockDocument(KcApDocument* document)
{
    if (!knows(document))
        return Kcad::eNullObjectId;
    if (document->m_writeProtected)
        return Kcad::eLockViolation;
    ++document->m_locks;
    return Kcad::eOk;
}

Kcad::ErrorStatus KcApDocManager::unlockDocument(KcApDocument* document)
{
    if (!knows(document))
        return Kcad::eNullObjectId;
    if (document->m_locks == 0)
        return Kcad::eLockViolation;
    --document->m_locks;
    return Kcad::eOk;
}

void KcApDocManager::sendStringToExecute(KcApDocument* document, const QString& text, bool, bool, bool)
{
    if (knows(document))
        document->m_sent += text;
}

void KcApDocManager::popResourceHandle()
{
    assert(!m_resources.empty());
    if (!m_resources.empty())
        m_resources.pop_back();
}
