// Rows in pieces of at most kFull, and how many rows lie before a piece.

#include "controls/row_list.h"

#include "controls/grid_model.h"

#include <algorithm>
#include <bit>

namespace {
constexpr size_t kFull = 512;
}

void RowList::refreshSums() const
{
    if (m_sumsHold)
        return;
    m_sums.assign(m_pieces.size() + 1, 0);
    for (size_t i = 1; i < m_sums.size(); ++i) {
        m_sums[i] += int(m_pieces[i - 1]->rows.size());
        if (const size_t above = i + (i & -i); above < m_sums.size())
            m_sums[above] += m_sums[i];
    }
    m_sumsHold = true;
}

int RowList::firstOf(size_t piece) const
{
    refreshSums();
    int first = 0;
    for (size_t i = piece; i > 0; i -= i & -i)
        first += m_sums[i];
    return first;
}

std::pair<size_t, int> RowList::placeOf(int index) const
{
    refreshSums();
    size_t before = 0; // pieces that end before the index
    int rest = index;
    for (size_t step = std::bit_floor(m_pieces.size()); step > 0; step /= 2)
        if (before + step < m_sums.size() && m_sums[before + step] <= rest) {
            before += step;
            rest -= m_sums[before];
        }
    return { before, rest };
}

void RowList::resized(size_t piece, int by)
{
    ++m_changes;
    m_count += by;
    if (m_sumsHold)
        for (size_t i = piece + 1; i < m_sums.size(); i += i & -i)
            m_sums[i] += by;
}

void RowList::renumberPieces(size_t from)
{
    for (size_t piece = from; piece < m_pieces.size(); ++piece)
        m_pieces[piece]->ordinal = int(piece);
    m_sumsHold = false;
}

CSGridRow* RowList::at(int index) const
{
    if (index < 0 || index >= m_count)
        return nullptr;
    const auto [piece, place] = placeOf(index);
    return m_pieces[piece]->rows[size_t(place)];
}

int RowList::indexOf(const CSGridRow* row) const
{
    if (!row || !row->m_piece)
        return -1;
    const std::vector<CSGridRow*>& rows = row->m_piece->rows;
    const auto found = std::find(rows.begin(), rows.end(), row);
    return firstOf(size_t(row->m_piece->ordinal)) + int(found - rows.begin());
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
        m_sumsHold = false;
    }
    const size_t last = m_pieces.size() - 1;
    const auto [piece, place]
        = index == m_count ? std::pair(last, int(m_pieces[last]->rows.size())) : placeOf(index);
    RowPiece& home = *m_pieces[piece];
    home.rows.insert(home.rows.begin() + place, row);
    row->m_piece = &home;
    resized(piece, 1);
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
    const auto [piece, place] = placeOf(index);
    RowPiece& home = *m_pieces[piece];
    CSGridRow* const row = home.rows[size_t(place)];
    home.rows.erase(home.rows.begin() + place);
    row->m_piece = nullptr;
    resized(piece, -1);
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
        const auto [piece, from] = placeOf(first);
        std::vector<CSGridRow*>& rows = m_pieces[piece]->rows;
        const int here = std::min(count, int(rows.size()) - from);
        for (int i = from; i < from + here; ++i)
            rows[size_t(i)]->m_piece = nullptr;
        rows.erase(rows.begin() + from, rows.begin() + from + here);
        count -= here;
        resized(piece, -here);
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
    m_sumsHold = false;
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
