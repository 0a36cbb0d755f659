// Reads hatch pattern files and keeps what they define.

#include "db/hatch_patterns.h"

#include "platform/app_root.h"
#include "platform/character_sets.h"
#include "platform/files.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace {

// Bounds against damaged files; real patterns stay far below them.
constexpr qsizetype kLongestFile = 16 << 20;
constexpr size_t kMostFamilies = 5000;
constexpr qsizetype kMostDashes = 64;

// The host's own two files hold the same patterns in inches and in millimetres.
constexpr const char* kInchFile = "korcad.pat";
constexpr const char* kMillimetreFile = "korcadiso.pat";

QString decoded(const QByteArray& bytes)
{
    const std::string_view view(bytes.constData(), size_t(bytes.size()));
    platform::Decoded text = platform::CharacterSet::utf8().decode(view);
    if (!text.clean())
        if (const auto gbk = platform::CharacterSet::named(u"GBK"))
            if (platform::Decoded chinese = gbk->decode(view); chinese.clean())
                text = std::move(chinese);
    if (text.text.startsWith(QChar(0xFEFF)))
        text.text.remove(0, 1);
    return text.text;
}

class Parser {
public:
    Parser(const QByteArray& bytes, const QString& file)
        : m_fileName(file)
    {
        if (bytes.size() > kLongestFile) {
            finding(0, QStringLiteral("too long for a pattern file"));
            return;
        }
        int number = 0;
        const QString text = decoded(bytes);
        for (QStringView line : QStringView(text).tokenize(u'\n'))
            readLine(line, ++number);
        finish();
    }

    KcDbPatternFile result;

private:
    void finding(int line, const QString& cause)
    {
        const QString where = line > 0 ? QStringLiteral("%1, line %2: ").arg(m_fileName).arg(line)
                                       : m_fileName + QStringLiteral(": ");
        result.findings.push_back({ line, where + cause });
    }

    void readLine(QStringView line, int number)
    {
        if (const qsizetype comment = line.indexOf(u';'); comment >= 0)
            line = line.left(comment);
        line = line.trimmed();
        if (line.isEmpty())
            return;
        if (line.front() == u'*')
            return begin(line.mid(1), number);
        if (!m_open) {
            if (!m_toldOfOrphans)
                finding(number, QStringLiteral("a pattern line stands before the first name"));
            m_toldOfOrphans = true;
            return;
        }
        const auto family = readFamily(line, number);
        if (!family)
            m_faulty = true;
        else if (m_pattern.families.size() < kMostFamilies)
            m_pattern.families.push_back(*family);
        else if (!m_faulty) {
            finding(number, QStringLiteral("more than %1 lines in one pattern").arg(kMostFamilies));
            m_faulty = true;
        }
    }

    void begin(QStringView header, int number)
    {
        finish();
        const qsizetype comma = header.indexOf(u',');
        m_pattern = {};
        m_pattern.name = (comma < 0 ? header : header.left(comma)).trimmed().toString();
        if (comma >= 0)
            m_pattern.description = header.mid(comma + 1).trimmed().toString();
        m_pattern.file = m_fileName;
        m_open = true;
        m_faulty = m_pattern.name.isEmpty();
        m_headerLine = number;
        if (m_faulty)
            finding(number, QStringLiteral("a pattern without a name"));
    }

    void finish()
    {
        if (!m_open)
            return;
        m_open = false;
        if (m_faulty)
            return;
        const QString key = m_pattern.name.toUpper();
        if (m_names.contains(key)) {
            finding(m_headerLine, QStringLiteral("%1 is defined a second time").arg(m_pattern.name));
            return;
        }
        if (m_pattern.families.empty() && key != QLatin1String("SOLID")) {
            finding(m_headerLine, QStringLiteral("%1 has no lines").arg(m_pattern.name));
            return;
        }
        m_names.insert(key);
        result.patterns.push_back(std::move(m_pattern));
    }

    std::optional<KcGeHatchFamily> readFamily(QStringView line, int number)
    {
        std::vector<double> values;
        for (QStringView field : line.tokenize(u',')) {
            field = field.trimmed();
            bool ok = false;
            const double value = field.toDouble(&ok); // always with a decimal point
            if (!ok || !std::isfinite(value)) {
                finding(number, QStringLiteral("\"%1\" is no number").arg(field.left(40)));
                return std::nullopt;
            }
            values.push_back(value);
            if (qsizetype(values.size()) > kMostDashes + 5) {
                finding(number, QStringLiteral("more than %1 dashes").arg(kMostDashes));
                return std::nullopt;
            }
        }
        if (values.size() < 5) {
            finding(
                number,
                QStringLiteral("a pattern line needs angle, base and offset: 5 numbers, not %1")
                    .arg(values.size()));
            return std::nullopt;
        }
        if (values[4] == 0.0) { // exact: any other distance is one
            finding(number, QStringLiteral("lines at a distance of 0"));
            return std::nullopt;
        }
        KcGeHatchFamily family;
        family.angle = std::fmod(values[0], 360.0) * (kPi / 180.0);
        family.base = { values[1], values[2] };
        family.offset = KcGeVector2d{ values[3], values[4] }.rotateBy(family.angle);
        family.dashes.assign(values.begin() + 5, values.end());
        return family;
    }

    QString m_fileName;
    KcDbHatchPattern m_pattern;
    QSet<QString> m_names;
    int m_headerLine = 0;
    bool m_open = false, m_faulty = false, m_toldOfOrphans = false;
};

} // namespace

KcDbPatternFile kcdbParsePatternFile(const QByteArray& bytes, const QString& name)
{
    return Parser(bytes, name).result;
}

KcDbHatchPatterns& KcDbHatchPatterns::instance()
{
    static KcDbHatchPatterns patterns;
    return patterns;
}

void KcDbHatchPatterns::reread()
{
    m_loaded = false;
}

void KcDbHatchPatterns::addFolder(const QString& folder)
{
    const QString path = platform::normalisedPath(folder);
    if (!m_folders.contains(path))
        m_folders.append(path);
    reread();
}

const std::vector<KcDbPatternFinding>& KcDbHatchPatterns::findings()
{
    load();
    return m_findings;
}

void KcDbHatchPatterns::loadFile(const QString& path)
{
    const auto bytes = platform::readWholeFile(path);
    if (!bytes) {
        m_findings.push_back({ 0, bytes.error });
        return;
    }
    const QFileInfo info(path);
    KcDbPatternFile file = kcdbParsePatternFile(*bytes, info.fileName());
    m_findings.insert(m_findings.end(), file.findings.begin(), file.findings.end());
    const bool inch = info.fileName().compare(QLatin1String(kInchFile), Qt::CaseInsensitive) == 0;
    const bool metric = info.fileName().compare(QLatin1String(kMillimetreFile), Qt::CaseInsensitive) == 0;
    for (KcDbHatchPattern& pattern : file.patterns) {
        const bool own = pattern.name.compare(info.completeBaseName(), Qt::CaseInsensitive) == 0;
        m_entries.push_back({ std::move(pattern), own, !metric, !inch });
    }
}

void KcDbHatchPatterns::load()
{
    const QString root = platform::appRoot();
    if (m_loaded && m_root == root)
        return;
    m_loaded = true;
    m_root = root;
    m_entries.clear();
    m_findings.clear();
    KcDbHatchPattern solid;
    solid.name = QStringLiteral("SOLID");
    m_entries.push_back({ solid, true });
    QStringList files;
    QStringList folders{ root + QStringLiteral("/Sys"), root + QStringLiteral("/Sys/Pattern") };
    // A root that was made before the host had patterns of its own goes on with those that are shipped.
    if (!QFileInfo::exists(platform::findPath(root + QStringLiteral("/Sys/") + QLatin1String(kMillimetreFile))))
        folders += { platform::shippedRoot() + QStringLiteral("/Sys"),
                     platform::shippedRoot() + QStringLiteral("/Sys/Pattern") };
    folders += m_folders;
    QSet<QString> seen;
    for (const QString& folder : folders) {
        const QDir directory(platform::findPath(folder));
        if (seen.contains(directory.canonicalPath()))
            continue;
        seen.insert(directory.canonicalPath());
        for (const QString& name :
             directory.entryList({ QStringLiteral("*.pat") }, QDir::Files, QDir::Name | QDir::IgnoreCase))
            files.append(directory.filePath(name));
    }
    for (const QString& file : files)
        loadFile(file);
    std::stable_partition(
        m_entries.begin(), m_entries.end(), [](const Entry& entry) { return entry.ownFile; });
}

const KcDbHatchPattern* KcDbHatchPatterns::find(const QString& name, Units units)
{
    load();
    for (const Entry& entry : m_entries)
        if ((units == Units::Inches ? entry.inches : entry.millimetres)
            && entry.pattern.name.compare(name, Qt::CaseInsensitive) == 0)
            return &entry.pattern;
    return nullptr;
}

QStringList KcDbHatchPatterns::names(Units units)
{
    load();
    QStringList names;
    for (const Entry& entry : m_entries)
        if (units == Units::Inches ? entry.inches : entry.millimetres)
            names.append(entry.pattern.name.toUpper());
    names.removeDuplicates();
    std::sort(names.begin() + 1, names.end());
    return names;
}
