// Run-time classes of database objects: published names and inheritance.
#pragma once

/// Describes one class of objects. Descriptions are compared by address.
class KcRxClass {
public:
    constexpr KcRxClass(const char* name, const KcRxClass* parent)
        : m_name(name)
        , m_parent(parent)
    {
    }
    KcRxClass(const KcRxClass&) = delete;
    KcRxClass& operator=(const KcRxClass&) = delete;

    /// The published class name, such as "AcDbBlockReference".
    const char* name() const { return m_name; }
    const KcRxClass* parent() const { return m_parent; }
    bool isDerivedFrom(const KcRxClass* ancestor) const
    {
        for (const KcRxClass* c = this; c; c = c->m_parent)
            if (c == ancestor)
                return true;
        return false;
    }

private:
    const char* m_name;
    const KcRxClass* m_parent;
};

/// Inside a class: declares its description, the virtual that gives it, and the copy that undo and cloning take.
#define KCRX_DECLARE(Class)                                                                                  \
public:                                                                                                      \
    static const KcRxClass* desc();                                                                          \
    const KcRxClass* isA() const override { return desc(); }                                                 \
    std::unique_ptr<KcDbObject> copy() const override { return std::unique_ptr<KcDbObject>(new Class(*this)); }

/// In the source file of a class: defines its description under the published name.
#define KCRX_DEFINE(Class, Parent, name)                                                                     \
    const KcRxClass* Class::desc()                                                                           \
    {                                                                                                        \
        static const KcRxClass description(name, Parent::desc());                                            \
        return &description;                                                                                 \
    }
