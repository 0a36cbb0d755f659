// Keeps track of where rows begin, and hands texts to whoever shows them.

#include "ed/console.h"

#include <cstdio>

namespace {

struct Console {
    KcEdOutput output;
    KcEdOutput errors;
    bool atRowStart = true;
};

Console& console()
{
    static Console instance;
    return instance;
}

void writeTo(FILE* file, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), file);
    std::fflush(file);
}

} // namespace

KcEdOutput kcedSetOutput(KcEdOutput output)
{
    console().atRowStart = true;
    return std::exchange(console().output, std::move(output));
}

void kcedPrint(const QString& text)
{
    Console& c = console();
    const QString shown = c.atRowStart && text.startsWith(QLatin1Char('\n')) ? text.mid(1) : text;
    if (shown.isEmpty())
        return;
    c.atRowStart = shown.endsWith(QLatin1Char('\n'));
    if (c.output)
        c.output(shown);
    else
        writeTo(stdout, shown);
}

void kcedFreshRow()
{
    if (!console().atRowStart)
        kcedPrint(QStringLiteral("\n"));
}

void kcedSay(const QString& sentence)
{
    kcedFreshRow();
    kcedPrint(sentence + QLatin1Char('\n'));
}

KcEdOutput kcedSetErrorOutput(KcEdOutput output)
{
    return std::exchange(console().errors, std::move(output));
}

void kcedSayError(const QString& sentence)
{
    kcedFreshRow();
    if (console().errors)
        console().errors(sentence);
    else
        writeTo(stderr, sentence + QLatin1Char('\n'));
}
