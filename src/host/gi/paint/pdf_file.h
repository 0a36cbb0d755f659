// The frame of a PDF file: numbered objects, streams, and the table that finds them (ISO 32000-1:2008,
// chapter 7).
#pragma once

#include <QByteArray>

#include <vector>

class KcGiPdfFile {
public:
    KcGiPdfFile();

    /// A number for an object that is written later.
    int reserve();
    void write(int number, const QByteArray& body);
    /// `entries` are those of the stream's dictionary besides length and filter.
    void writeStream(int number, const QByteArray& entries, const QByteArray& content);
    /// The whole file. `info` may be 0. Every reserved object has been written.
    QByteArray finish(int catalog, int info);

    static QByteArray reference(int number) { return QByteArray::number(number) + " 0 R"; }
    /// A text string, in UTF-16.
    static QByteArray text(const QString& text);

private:
    QByteArray m_bytes;
    std::vector<qsizetype> m_places; ///< by number; 0 is unused
};

/// Appends a number and a blank. Values beyond 1e9 become that: viewers keep single precision.
void kcgiPutNumber(QByteArray& out, double value, int decimals);
