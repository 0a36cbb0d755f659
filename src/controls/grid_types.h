// Small types that the grid is made of: texts with their numbers, arrays that own what they point to, and
// what dialogs attach to rows.
#pragma once

#include "platform/numbers.h"

#include <QString>

#include <memory>
#include <vector>

/// A text that is read as a number where one is wanted: by the number at its start, 0 without one.
class TString : public QString {
public:
    TString() = default;
    TString(const QString& text) // NOLINT(google-explicit-constructor): a text is one
        : QString(text)
    {
    }
    TString(const char16_t* text) // NOLINT(google-explicit-constructor)
        : QString(QString::fromUtf16(text))
    {
    }

    explicit operator int() const { return platform::wtoi(*this); }
    explicit operator double() const { return platform::wtof(*this); }
};

/// What a dialog attaches to a row; the row owns it.
class CSRowData {
public:
    virtual ~CSRowData() = default;
};

/// An ordered array of pointers to objects that it owns. A look-up outside it gives null.
template <class T> class TPtrList {
public:
    int GetCount() const { return int(m_items.size()); }
    bool IsEmpty() const { return m_items.empty(); }
    T* GetAt(int index) const { return IsValid(index) ? m_items[size_t(index)].get() : nullptr; }
    T* operator[](int index) const { return GetAt(index); }

    void Append(std::unique_ptr<T> item) { m_items.push_back(std::move(item)); }
    /// An index past the end appends, a negative one inserts at the front.
    void Insert(int index, std::unique_ptr<T> item)
    {
        m_items.insert(m_items.begin() + std::clamp(index, 0, GetCount()), std::move(item));
    }
    /// Hands the object over; null outside the array.
    std::unique_ptr<T> Take(int index)
    {
        if (!IsValid(index))
            return nullptr;
        std::unique_ptr<T> item = std::move(m_items[size_t(index)]);
        m_items.erase(m_items.begin() + index);
        return item;
    }
    void Move(int from, int to)
    {
        if (IsValid(from) && IsValid(to) && from != to)
            Insert(to, Take(from));
    }
    int IndexOf(const T* item) const
    {
        for (int index = 0; index < GetCount(); ++index)
            if (m_items[size_t(index)].get() == item)
                return index;
        return -1;
    }
    void RemoveAll() { m_items.clear(); }

private:
    bool IsValid(int index) const { return index >= 0 && index < GetCount(); }

    std::vector<std::unique_ptr<T>> m_items;
};
