// Merging the groups of a changed object into its record.

#include "dxf/patch.h"

#include <algorithm>
#include <map>

namespace dxf {

namespace {

constexpr size_t kNone = ~size_t(0);

// Class marks and the beginning of extended data cut a record into sections; groups are only matched inside
// one.
struct Section {
    size_t begin = 0, end = 0;
    QString name; ///< of the class mark; "*" for extended data
    int occurrence = 0; ///< among sections of the same name
};

std::vector<Section> sectionsOf(const std::vector<OutGroup>& groups)
{
    std::vector<Section> sections(1);
    std::map<QString, int> seen;
    bool inXData = false;
    for (size_t i = 0; i < groups.size(); ++i) {
        const bool mark = (groups[i].code == 100 || groups[i].code == 101) && !inXData;
        const bool xdata = groups[i].code >= 1000 && !inXData;
        if (!mark && !xdata)
            continue;
        inXData |= xdata;
        sections.back().end = i;
        const auto* name = std::get_if<QString>(&groups[i].value);
        Section next;
        next.begin = i;
        next.name = xdata ? QStringLiteral("*") : name ? *name : QString();
        next.occurrence = seen[next.name]++;
        sections.push_back(next);
    }
    sections.back().end = groups.size();
    return sections;
}

const Section* findSection(const std::vector<Section>& sections, const Section& like)
{
    for (const Section& section : sections)
        if (section.name == like.name && section.occurrence == like.occurrence)
            return &section;
    return nullptr;
}

// For each group of `before` the group of the source that holds it, or none where the source left a default
// out.
void matchSection(
    const std::vector<OutGroup>& before, const Section& a, const SourceGroups& source, const Section& s,
    std::vector<size_t>& matchOfBefore, std::vector<bool>& taken)
{
    // In order first: `before` holds every known group, so the source's groups are met on the way. What is
    // not met within a few groups is unknown to the class.
    constexpr size_t kReach = 200;
    size_t at = a.begin;
    for (size_t j = s.begin; j < s.end; ++j) {
        if (taken[j])
            continue;
        const size_t last = std::min(a.end, at + kReach);
        for (size_t i = at; i < last; ++i) {
            if (matchOfBefore[i] == kNone && before[i].sameValue(source.groups[j])) {
                matchOfBefore[i] = j;
                taken[j] = true;
                at = i + 1;
                break;
            }
        }
    }
    // Then whatever stands in another order.
    for (size_t i = a.begin; i < a.end; ++i) {
        if (matchOfBefore[i] != kNone)
            continue;
        for (size_t j = s.begin; j < s.end && j < s.begin + 4 * kReach; ++j) {
            if (!taken[j] && before[i].sameValue(source.groups[j])) {
                matchOfBefore[i] = j;
                taken[j] = true;
                break;
            }
        }
    }
}

// Some programs close the mark AcDbEntity at once and say layer, colour and the like under the mark of the
// class.
void matchMisplacedCommon(
    const std::vector<OutGroup>& before, const std::vector<Section>& beforeSections,
    const SourceGroups& source, const std::vector<Section>& sourceSections,
    std::vector<size_t>& matchOfBefore, std::vector<bool>& taken)
{
    for (size_t k = 0; k + 1 < sourceSections.size(); ++k) {
        const Section& common = sourceSections[k];
        if (common.name != QLatin1String("AcDbEntity"))
            continue;
        if (common.end == common.begin + 1)
            if (const Section* there = findSection(beforeSections, common))
                matchSection(before, *there, source, sourceSections[k + 1], matchOfBefore, taken);
        return;
    }
}

// Pairs of equal groups of two sequences, in order: equal ends first, the longest common subsequence of what
// is between.
std::vector<size_t> pairEqual(const std::vector<OutGroup>& before, const std::vector<OutGroup>& after)
{
    std::vector<size_t> pairOfAfter(after.size(), kNone);
    size_t head = 0;
    while (head < before.size() && head < after.size() && before[head].sameValue(after[head])) {
        pairOfAfter[head] = head;
        ++head;
    }
    size_t tail = 0;
    while (tail < before.size() - head && tail < after.size() - head
           && before[before.size() - 1 - tail].sameValue(after[after.size() - 1 - tail])) {
        pairOfAfter[after.size() - 1 - tail] = before.size() - 1 - tail;
        ++tail;
    }
    const size_t n = before.size() - head - tail, m = after.size() - head - tail;
    constexpr size_t kMost = 4000000; // cells of the table
    if (n == 0 || m == 0 || n > kMost / m)
        return pairOfAfter;
    std::vector<std::vector<uint32_t>> length(n + 1, std::vector<uint32_t>(m + 1));
    for (size_t i = n; i-- > 0;)
        for (size_t j = m; j-- > 0;)
            length[i][j] = before[head + i].sameValue(after[head + j])
                ? length[i + 1][j + 1] + 1
                : std::max(length[i + 1][j], length[i][j + 1]);
    for (size_t i = 0, j = 0; i < n && j < m;) {
        if (before[head + i].sameValue(after[head + j])) {
            pairOfAfter[head + j] = head + i;
            ++i;
            ++j;
        } else if (length[i + 1][j] >= length[i][j + 1]) {
            ++i;
        } else {
            ++j;
        }
    }
    return pairOfAfter;
}

} // namespace

SourceGroups parseRecord(std::string_view record, Form form, Strings& strings)
{
    SourceGroups result;
    GroupCursor cursor(record.data(), record.data() + record.size(), form);
    Group group;
    while (cursor.next(group)) {
        result.groups.push_back(toOutGroup(group, strings));
        result.bytes.emplace_back(group.begin, size_t(group.end - group.begin));
    }
    return result;
}

bool sameGroups(const std::vector<OutGroup>& a, const std::vector<OutGroup>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const OutGroup& x, const OutGroup& y) {
        return x.sameValue(y);
    });
}

void dropStalePictures(SourceGroups& source)
{
    std::vector<bool> stale(source.groups.size(), false);
    bool inEntity = false;
    size_t embedded = kNone;
    bool hasColumns = false;
    for (size_t i = 0; i < source.groups.size(); ++i) {
        const OutGroup& group = source.groups[i];
        if (group.code == 100) {
            const auto* name = std::get_if<QString>(&group.value);
            inEntity = name && *name == QLatin1String("AcDbEntity");
        }
        stale[i] = inEntity && (group.code == 92 || group.code == 160 || group.code == 310);
        if (group.code == 101)
            embedded = i;
        else if (embedded != kNone && group.code == 71)
            hasColumns |= group.value != decltype(group.value)(int64_t(0));
    }
    if (embedded != kNone && !hasColumns)
        for (size_t i = embedded; i < source.groups.size() && source.groups[i].code < 1000; ++i)
            stale[i] = true;
    SourceGroups kept;
    for (size_t i = 0; i < source.groups.size(); ++i) {
        if (stale[i])
            continue;
        kept.groups.push_back(std::move(source.groups[i]));
        kept.bytes.push_back(source.bytes[i]);
    }
    source = std::move(kept);
}

std::string patchRecord(
    const SourceGroups& source, const std::vector<OutGroup>& before, const std::vector<OutGroup>& after,
    Form form, const Strings& strings, const char* lineEnd)
{
    // What of `before` stands where in the source.
    std::vector<size_t> matchOfBefore(before.size(), kNone);
    std::vector<bool> taken(source.groups.size(), false);
    const std::vector<Section> sourceSections = sectionsOf(source.groups),
                               beforeSections = sectionsOf(before);
    for (const Section& section : beforeSections)
        if (const Section* there = findSection(sourceSections, section))
            matchSection(before, section, source, *there, matchOfBefore, taken);
        else if (sourceSections.size() <= 2) // a program that leaves the class marks out
            matchSection(before, section, source, sourceSections.front(), matchOfBefore, taken);

    matchMisplacedCommon(before, beforeSections, source, sourceSections, matchOfBefore, taken);

    const std::vector<size_t> pairOfAfter = pairEqual(before, after);
    std::vector<bool> kept(before.size(), false);
    for (const size_t i : pairOfAfter)
        if (i != kNone)
            kept[i] = true;

    // Groups of the source that go: those of values that are gone, and others of the same code that the class
    // did not recognise (values it reads differently) in the same section.
    std::vector<bool> dropped(source.groups.size(), false);
    for (size_t i = 0; i < before.size(); ++i)
        if (!kept[i] && matchOfBefore[i] != kNone)
            dropped[matchOfBefore[i]] = true;

    // New values take the place of the ones they replace; what is added follows the group before it.
    std::vector<std::string> inPlace(source.groups.size());
    std::vector<std::string> behind(
        source.groups.size() + 1); ///< [j + 1]: behind group j; [0]: at the very beginning
    size_t lastBefore = 0; ///< the group of `before` up to which replaced ones were looked for
    size_t lastPlace = 0; ///< one more than the source group that the last written group stands at
    for (size_t k = 0; k < after.size(); ++k) {
        if (const size_t i = pairOfAfter[k]; i != kNone) {
            lastBefore = std::max(lastBefore, i + 1);
            if (matchOfBefore[i] != kNone)
                lastPlace = matchOfBefore[i] + 1;
            continue;
        }
        // The next value of the same code that is gone, before the next kept one: this replaces it.
        size_t replaced = kNone;
        for (size_t i = lastBefore; i < before.size() && !kept[i]; ++i) {
            if (before[i].code == after[k].code) {
                replaced = i;
                break;
            }
        }
        if (replaced != kNone)
            lastBefore = replaced + 1;
        const size_t place = replaced != kNone ? matchOfBefore[replaced] : kNone;
        if (after[k].isDefault && (place == kNone || after[k].isName))
            continue; // absent before or dropped now: readers take the default
        std::string bytes;
        appendGroup(bytes, after[k], form, strings, lineEnd);
        if (place != kNone) {
            inPlace[place] += bytes;
            lastPlace = place + 1;
        } else {
            behind[lastPlace] += bytes;
        }
    }

    std::string result = behind[0];
    for (size_t j = 0; j < source.groups.size(); ++j) {
        if (!dropped[j])
            result += source.bytes[j];
        result += inPlace[j];
        result += behind[j + 1];
    }
    return result;
}

} // namespace dxf
