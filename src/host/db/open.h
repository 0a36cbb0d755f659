// Opening objects: handles that give access to an object for the length of a scope.
//
//     if (KcDbWrite<KcDbText> text(id); text)
//         text->setHeight(250.0);
//
// Opening for writing records the object for undo before it can be changed; when the handle goes out of scope, the
// object's reactors and the views of the drawing are told.
#pragma once

#include "db/object.h"

/// Shared, type-independent part of the handles.
class KcDbOpenBase {
public:
    Kcad::ErrorStatus status() const { return m_status; }

protected:
    Kcad::ErrorStatus m_status = Kcad::eNullObjectId;

    static Kcad::ErrorStatus check(KcDbObjectId id, const KcRxClass* type, bool erasedToo);
    static void beginWrite(KcDbObjectStub& stub);
    static void endWrite(KcDbObjectStub& stub);
};

/// Access for reading. False when the object could not be opened; `status` tells why.
template <class T> class KcDbRead : public KcDbOpenBase {
public:
    explicit KcDbRead(KcDbObjectId id, bool erasedToo = false)
    {
        m_status = check(id, T::desc(), erasedToo);
        if (m_status == Kcad::eOk)
            m_object = static_cast<const T*>(id.stub()->object);
    }
    KcDbRead(const KcDbRead&) = delete;
    KcDbRead& operator=(const KcDbRead&) = delete;

    explicit operator bool() const { return m_object; }
    const T* operator->() const { return m_object; }
    const T& operator*() const { return *m_object; }
    const T* get() const { return m_object; }

private:
    const T* m_object = nullptr;
};

/// Access for writing. False when the object could not be opened; `status` tells why.
template <class T> class KcDbWrite : public KcDbOpenBase {
public:
    explicit KcDbWrite(KcDbObjectId id, bool erasedToo = false)
    {
        m_status = check(id, T::desc(), erasedToo);
        if (m_status != Kcad::eOk)
            return;
        beginWrite(*id.stub());
        m_object = static_cast<T*>(id.stub()->object);
        m_stub = id.stub();
    }
    ~KcDbWrite() { close(); }
    KcDbWrite(const KcDbWrite&) = delete;
    KcDbWrite& operator=(const KcDbWrite&) = delete;

    /// Ends the access before the scope does.
    void close()
    {
        if (m_stub)
            endWrite(*m_stub);
        m_stub = nullptr;
        m_object = nullptr;
    }
    explicit operator bool() const { return m_object; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    T* get() const { return m_object; }

private:
    T* m_object = nullptr;
    KcDbObjectStub* m_stub = nullptr;
};
