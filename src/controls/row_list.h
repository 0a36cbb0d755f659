// The displayed rows of a grid in their order. A dialog may insert, move and fold rows by the ten thousand,
// so the order is kept in pieces: a change touches one piece of a few hundred rows and the list of pieces,
// and a row finds its index through the piece that it lies in.
#pragma once

#include <memory>
#include <utility>
#include <vector>

class CSGridRow;

/// The place of a row in the list: which piece holds it.
struct RowPiece {
    std::vector<CSGridRow*> rows;
    int ordinal = 0;
};

class RowList {
public:
    RowList() = default;
    RowList(const RowList&) = delete;
    RowList& operator=(const RowList&) = delete;

    int count() const { return m_count; }
    /// Null outside 0 … count()-1.
    CSGridRow* at(int index) const;
    /// -1 for a row that is not in the list.
    int indexOf(const CSGridRow* row) const;

    void insert(int index, CSGridRow* row);
    void insert(int index, const std::vector<CSGridRow*>& rows);
    CSGridRow* take(int index);
    /// Takes rows out that follow each other.
    void takeRange(int first, int count);
    void clear();
    void assign(const std::vector<CSGridRow*>& rows);
    std::vector<CSGridRow*> all() const;
    /// Grows with every row that comes, goes or moves.
    unsigned changes() const { return m_changes; }

private:
    /// The piece that holds an index, and the place in it.
    std::pair<size_t, int> placeOf(int index) const;
    int firstOf(size_t piece) const;
    void refreshSums() const;
    void resized(size_t piece, int by);
    void renumberPieces(size_t from);
    void split(size_t piece);

    std::vector<std::unique_ptr<RowPiece>> m_pieces;
    // Numbers of rows of the pieces as a tree of partial sums (P. Fenwick, 1994): a change and a question
    // touch as many of them as there are binary digits. Made anew when pieces come or go.
    mutable std::vector<int> m_sums;
    mutable bool m_sumsHold = false;
    int m_count = 0;
    unsigned m_changes = 0;
};
