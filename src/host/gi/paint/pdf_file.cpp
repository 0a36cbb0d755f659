// Writing PDF objects.

#include "gi/paint/pdf_file.h"

#include <QString>

#include <algorithm>
#include <cmath>

namespace {

// Plots are long and even: the quickest level takes a third of the time of the usual one, for a file a tenth
// larger.
constexpr int kCompression = 1;

} // namespace

KcGiPdfFile::KcGiPdfFile()
    : m_bytes("%PDF-1.5\n%\xe2\xe3\xcf\xd3\n")
    , m_places(1, 0)
{
}

int KcGiPdfFile::reserve()
{
    m_places.push_back(0);
    return int(m_places.size()) - 1;
}

void KcGiPdfFile::write(int number, const QByteArray& body)
{
    m_places[size_t(number)] = m_bytes.size();
    m_bytes += QByteArray::number(number) + " 0 obj\n" + body + "\nendobj\n";
}

void KcGiPdfFile::writeStream(int number, const QByteArray& entries, const QByteArray& content)
{
    constexpr qsizetype kWorthwhile = 64;
    constexpr qsizetype kLengthBefore = 4; // that the toolkit puts before what it compresses
    const bool packed = content.size() > kWorthwhile;
    const QByteArray bytes = packed ? qCompress(content, kCompression).mid(kLengthBefore) : content;
    m_places[size_t(number)] = m_bytes.size();
    m_bytes += QByteArray::number(number) + " 0 obj\n<< " + entries + (packed ? " /Filter /FlateDecode" : "")
        + " /Length " + QByteArray::number(bytes.size()) + " >>\nstream\n" + bytes + "\nendstream\nendobj\n";
}

QByteArray KcGiPdfFile::finish(int catalog, int info)
{
    const qsizetype table = m_bytes.size();
    m_bytes += "xref\n0 " + QByteArray::number(qsizetype(m_places.size())) + "\n0000000000 65535 f \n";
    for (size_t i = 1; i < m_places.size(); ++i)
        m_bytes += QByteArray::number(m_places[i]).rightJustified(10, '0') + " 00000 n \n";
    m_bytes += "trailer\n<< /Size " + QByteArray::number(qsizetype(m_places.size())) + " /Root "
        + reference(catalog);
    if (info > 0)
        m_bytes += " /Info " + reference(info);
    m_bytes += " >>\nstartxref\n" + QByteArray::number(table) + "\n%%EOF\n";
    return std::move(m_bytes);
}

QByteArray KcGiPdfFile::text(const QString& text)
{
    QByteArray hex = "<FEFF";
    for (const QChar c : text)
        hex += QByteArray::number(c.unicode(), 16).rightJustified(4, '0');
    return hex + '>';
}

void kcgiPutNumber(QByteArray& out, double value, int decimals)
{
    static constexpr int64_t kPowers[]
        = { 1, 10, 100, 1000, 10'000, 100'000, 1'000'000, 10'000'000, 100'000'000 };
    constexpr double kLargest = 1e9;
    const int64_t power = kPowers[decimals];
    int64_t scaled
        = std::isfinite(value) ? std::llround(std::clamp(value, -kLargest, kLargest) * double(power)) : 0;
    char digits[32];
    char* const end = digits + sizeof digits;
    char* p = end;
    *--p = ' ';
    const bool negative = scaled < 0;
    scaled = std::abs(scaled);
    int64_t fraction = scaled % power, whole = scaled / power;
    if (fraction > 0) {
        int places = decimals;
        for (; fraction % 10 == 0; --places)
            fraction /= 10;
        for (; places > 0; --places, fraction /= 10)
            *--p = char('0' + fraction % 10);
        *--p = '.';
    }
    do
        *--p = char('0' + whole % 10);
    while ((whole /= 10) > 0);
    if (negative)
        *--p = '-';
    out.append(p, end - p);
}
