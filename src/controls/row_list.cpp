// Rows in pieces of at most kFull; the index of each piece's first row is worked out when it is asked for.

#include "controls/row_list.h"

#include "controls/grid_model.h"

#include <algorithm>

namespace {
constexpr size_t kFull = 512;
}

void RowList::refreshFirsts() const
{
    if (m_valid >= m_pieces.size())
        return;
    m_firsts.resize(m_pieces.size());
    for (; m_valid < m_pieces.size(); ++m_valid)
        m_firsts[m_valid]
            = m_valid == 0 ? 0 : m_firsts[m_valid - 1] + int(m_pieces[m_valid - 1]->rows.size());
}

size_t RowList::pieceOf(int index) const
{
    refreshFirsts();
    const auto end = m_firsts.begin() + std::ptrdiff_t(m_pieces.size());
    return size_t(std::upper_bound(m_firsts.begin(), end, index) - m_firsts.begin()) - 1;
}

void RowList::changed(size_t piece)
{
    ++m_changes;
    m_valid = std::min(m_valid, piece + 1);
}

void RowList::renumberPieces(size_t from)
{
    for (size_t piece = from; piece < m_pieces.size(); ++piece)
        m_pieces[piece]->ordinal = int(piece);
    m_valid = std::min(m_valid, from);
}

CSGridRow* RowList::at(int index) const
{
    if (index < 0 || index >= m_count)
        return nullptr;
    const size_t piece = pieceOf(index);
    return m_pieces[piece]->rows[size_t(index - m_firsts[piece])];
}

int RowList::indexOf(const CSGridRow* row) const
{
    if (!row || !row->m_piece)
        return -1;
    refreshFirsts();
    const std::vector<CSGridRow*>& rows = row->m_piece->rows;
    const auto found = std::find(rows.begin(), rows.end(), row);
    return m_firsts[size_t(row->m_piece->ordinal)] + int(found - rows.begin());
}

void RowList::split(size_t piece)
{
    auto second = std::make_unique<RowPiece>();
    std::vector<CSGridRow*>& rows = m_pieces[piece]->rows;
    second->rows.assign(rows.begin() + std::ptrdiff_t(rows.size() / 2), rows.end());
    rows.resize(rows.size() / 2);
    for (CSGridRow* row : second->rows)
        row->m_piece = second.get();
    m_pieces.insert(m_pieces.begin() + std::ptrdiff_t(piece + 1), std::move(second));
    renumberPieces(piece + 1);
}

void RowList::insert(int index, CSGridRow* row)
{
    index = std::clamp(index, 0, m_count);
    if (m_pieces.empty()) {
        m_pieces.push_back(std::make_unique<RowPiece>());
        m_valid = 0;
    }
    size_t piece = index == m_count ? m_pieces.size() - 1 : pieceOf(index);
    refreshFirsts();
    RowPiece& home = *m_pieces[piece];
    home.rows.insert(home.rows.begin() + (index - m_firsts[piece]), row);
    row->m_piece = &home;
    ++m_count;
    changed(piece);
    if (home.rows.size() > kFull)
        split(piece);
}

void RowList::insert(int index, const std::vector<CSGridRow*>& rows)
{
    if (rows.size() > kFull) {
        std::vector<CSGridRow*> whole = all();
        whole.insert(whole.begin() + std::clamp(index, 0, m_count), rows.begin(), rows.end());
        assign(whole);
        return;
    }
    for (CSGridRow* row : rows)
        insert(index++, row);
}

CSGridRow* RowList::take(int index)
{
    if (index < 0 || index >= m_count)
        return nullptr;
    const size_t piece = pieceOf(index);
    RowPiece& home = *m_pieces[piece];
    const auto place = home.rows.begin() + (index - m_firsts[piece]);
    CSGridRow* row = *place;
    home.rows.erase(place);
    row->m_piece = nullptr;
    --m_count;
    changed(piece);
    if (home.rows.empty()) {
        m_pieces.erase(m_pieces.begin() + std::ptrdiff_t(piece));
        renumberPieces(piece);
    }
    return row;
}

void RowList::takeRange(int first, int count)
{
    first = std::max(first, 0);
    count = std::min(count, m_count - first);
    while (count > 0) {
        const size_t piece = pieceOf(first);
        std::vector<CSGridRow*>& rows = m_pieces[piece]->rows;
        const int from = first - m_firsts[piece];
        const int here = std::min(count, int(rows.size()) - from);
        for (int i = from; i < from + here; ++i)
            rows[size_t(i)]->m_piece = nullptr;
        rows.erase(rows.begin() + from, rows.begin() + from + here);
        m_count -= here;
        count -= here;
        changed(piece);
        if (rows.empty()) {
            m_pieces.erase(m_pieces.begin() + std::ptrdiff_t(piece));
            renumberPieces(piece);
        }
    }
}

void RowList::clear()
{
    ++m_changes;
    for (const auto& piece : m_pieces)
        for (CSGridRow* row : piece->rows)
            row->m_piece = nullptr;
    m_pieces.clear();
    m_firsts.clear();
    m_valid = 0;
    m_count = 0;
}

void RowList::assign(const std::vector<CSGridRow*>& rows)
{
    ++m_changes;
    clear();
    for (size_t first = 0; first < rows.size(); first += kFull / 2) {
        auto piece = std::make_unique<RowPiece>();
        const size_t last = std::min(rows.size(), first + kFull / 2);
        piece->rows.assign(rows.begin() + std::ptrdiff_t(first), rows.begin() + std::ptrdiff_t(last));
        for (CSGridRow* row : piece->rows)
            row->m_piece = piece.get();
        m_pieces.push_back(std::move(piece));
    }
    renumberPieces(0);
    m_count = int(rows.size());
}

std::vector<CSGridRow*> RowList::all() const
{
    std::vector<CSGridRow*> rows;
    rows.reserve(size_t(m_count));
    for (const auto& piece : m_pieces)
        rows.insert(rows.end(), piece->rows.begin(), piece->rows.end());
    return rows;
}
