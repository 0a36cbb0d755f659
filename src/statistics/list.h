// The lists of the counting commands: doubly linked, with a cursor, so that loops by ascending or descending
// index take one step for each element.
#pragma once

#include <QString>

#include <algorithm>
#include <vector>

/// What both lists share. The cursor stands on the element reached last, or nowhere.
template <class Stored> class LinkedList {
public:
    LinkedList(const LinkedList&) = delete;
    LinkedList& operator=(const LinkedList&) = delete;

    int count() const { return m_count; }
    bool isEmpty() const { return m_count == 0; }

protected:
    struct Node {
        Stored value;
        Node* previous = nullptr;
        Node* next = nullptr;
    };

    LinkedList() = default;
    ~LinkedList() { removeNodes(); }

    /// The node at an index, which becomes the cursor; null, leaving the cursor, outside 0 … count()-1.
    Node* nodeAt(int index) const
    {
        if (index < 0 || index >= m_count)
            return nullptr;
        if (!m_cursor || std::abs(index - m_cursorIndex) > std::min(index, m_count - 1 - index)) {
            const bool fromHead = index <= m_count - 1 - index;
            m_cursor = fromHead ? m_head : m_tail;
            m_cursorIndex = fromHead ? 0 : m_count - 1;
        }
        for (; m_cursorIndex < index; ++m_cursorIndex)
            m_cursor = m_cursor->next;
        for (; m_cursorIndex > index; --m_cursorIndex)
            m_cursor = m_cursor->previous;
        return m_cursor;
    }

    Node* head() const { return m_head; }
    Node* cursor() const { return m_cursor; }

    void resetCursor() const
    {
        m_cursor = nullptr;
        m_cursorIndex = -1;
    }

    void appendNode(Stored value)
    {
        resetCursor();
        Node* node = new Node{ std::move(value), m_tail, nullptr };
        (m_tail ? m_tail->next : m_head) = node;
        m_tail = node;
        ++m_count;
    }

    /// Takes the node at the cursor out; the cursor goes to the one that followed it, if any.
    void removeNodeAtCursor()
    {
        Node* node = m_cursor;
        (node->previous ? node->previous->next : m_head) = node->next;
        (node->next ? node->next->previous : m_tail) = node->previous;
        m_cursor = node->next;
        if (!m_cursor)
            m_cursorIndex = -1;
        --m_count;
        delete node;
    }

    void removeNodes()
    {
        while (m_head)
            delete std::exchange(m_head, m_head->next);
        m_tail = nullptr;
        m_count = 0;
        resetCursor();
    }

    /// Brings the elements into the order that the exchange of neighbours would, equal ones staying as they
    /// are.
    template <class Before> void sortNodes(Before before)
    {
        std::vector<Stored> values;
        values.reserve(size_t(m_count));
        for (Node* node = m_head; node; node = node->next)
            values.push_back(std::move(node->value));
        std::stable_sort(values.begin(), values.end(), before);
        size_t i = 0;
        for (Node* node = m_head; node; node = node->next)
            node->value = std::move(values[i++]);
        resetCursor();
    }

private:
    Node* m_head = nullptr;
    Node* m_tail = nullptr;
    int m_count = 0;
    mutable Node* m_cursor = nullptr;
    mutable int m_cursorIndex = -1;
};

/// A list of pointers to elements, which it deletes when it is cleared or destroyed unless told otherwise.
template <class T> class DList : public LinkedList<T*> {
public:
    explicit DList(bool ownsElements = true)
        : m_ownsElements(ownsElements)
    {
    }
    virtual ~DList() { clear(); }

    /// The element at an index; null outside 0 … count()-1. The cursor goes there.
    T* at(int index) const
    {
        const auto* node = this->nodeAt(index);
        return node ? node->value : nullptr;
    }

    /// Adds an element at the end and gives it back. The cursor is reset first.
    T* append(T* element)
    {
        this->appendNode(element);
        return element;
    }

    /// Removes the element that at() reached last; false when there is none. The cursor goes to the one that
    /// followed it, which now has the same index.
    bool removeAtCursor()
    {
        if (!this->cursor())
            return false;
        T* element = this->cursor()->value;
        this->removeNodeAtCursor();
        if (m_ownsElements)
            delete element;
        return true;
    }

    void clear()
    {
        if (m_ownsElements)
            for (auto* node = this->head(); node; node = node->next)
                delete node->value;
        this->removeNodes();
    }

    /// The first element whose name is exactly this one; null when there is none. The cursor stays.
    T* findByName(const QString& name) const requires requires(const T& element) { element.name == name; }
    {
        for (auto* node = this->head(); node; node = node->next)
            if (node->value->name == name)
                return node->value;
        return nullptr;
    }

    /// Sorts; elements of which neither comes before the other keep their order. The cursor is reset.
    /// @param before takes two elements as const T& and tells whether the first belongs before the second
    template <class Before> void sort(Before before)
    {
        this->sortNodes([&](const T* a, const T* b) { return before(*a, *b); });
    }

private:
    bool m_ownsElements;
};

/// The same for texts and numbers, which are held as values.
template <class T> class TList : public LinkedList<T> {
public:
    TList() = default;
    virtual ~TList() = default;

    /// The element at an index; null outside 0 … count()-1. The cursor goes there.
    T* at(int index) const
    {
        auto* node = this->nodeAt(index);
        return node ? &node->value : nullptr;
    }

    /// Adds an element at the end. The cursor is reset first.
    void append(T element) { this->appendNode(std::move(element)); }

    /// As in DList.
    bool removeAtCursor()
    {
        if (!this->cursor())
            return false;
        this->removeNodeAtCursor();
        return true;
    }

    void clear() { this->removeNodes(); }
};
