// Reads any bytes as a profile file, changes a value and checks that it comes back and that nothing else
// changed.

#include "platform/profile_file.h"

#include <cstdlib>

namespace {

using platform::ProfileFile;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

// Every section and key with its value, in order, without one key.
QStringList content(const ProfileFile& file, const QString& without)
{
    QStringList all;
    for (const QString& section : file.sections())
        for (const QString& key : file.keys(section))
            if (key.compare(without, Qt::CaseInsensitive) != 0)
                all += section + u'\n' + key + u'\n' + file.value(section, key).value_or(QString());
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto parsed = ProfileFile::parse(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    if (!parsed) {
        require(!parsed.error.isEmpty());
        return 0;
    }
    const QString key = QStringLiteral("fuzzed key");
    // The start of the input serves as the value, too.
    const QString value
        = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(std::min<size_t>(size, 40)));
    QStringList sections = parsed->sections().mid(0, 3);
    sections += QStringLiteral("fuzzed section");
    for (const QString& section : sections) {
        ProfileFile file = *parsed;
        const QByteArray before = file.bytes();
        if (!file.setValue(section, key, value)) {
            require(file.bytes() == before);
            continue;
        }
        const auto again = ProfileFile::parse(file.bytes());
        require(again.ok());
        require(again->value(section, key) == value);
        require(
            content(*again, key).filter(QStringLiteral("fuzzed section\n"), Qt::CaseInsensitive).isEmpty());
        require(content(*again, key) == content(*parsed, key));

        file.removeKey(section, key);
        require(!file.value(section, key));
        file.removeSection(section);
        require(file.keys(section).isEmpty());
    }
    return 0;
}
