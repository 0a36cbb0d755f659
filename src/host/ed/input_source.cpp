// Scripts, streams and lists as sources of input.

#include "ed/input_source.h"

#include "ed/console.h"

#include <iostream>

KcEdEvent KcEdInputSource::next(const KcEdPrompt& prompt)
{
    if (m_waiting.empty())
        return read(prompt);
    KcEdEvent event = std::move(m_waiting.front());
    m_waiting.pop_front();
    return event;
}

std::vector<KcEdCall> KcEdInputSource::takeCalls()
{
    std::vector<KcEdCall> calls;
    for (KcEdEvent& event : m_waiting)
        if (auto* call = std::get_if<KcEdCall>(&event))
            calls.push_back(std::move(*call));
    std::erase_if(m_waiting, [](const KcEdEvent& event) { return std::holds_alternative<KcEdCall>(event); });
    return calls;
}

void KcEdInputSource::insert(const QStringList& lines)
{
    for (qsizetype i = lines.size(); i > 0; --i)
        giveBack(KcEdLine{ lines[i - 1], {}, 0 });
}

void KcEdScriptSource::append(const QString& text, const QString& origin, int firstNumber)
{
    QString content = text.startsWith(QChar(0xFEFF)) ? text.mid(1) : text;
    content.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (content.endsWith(QLatin1Char('\n')))
        content.chop(1);
    else if (content.isEmpty())
        return;
    int number = firstNumber;
    for (const QString& line : content.split(QLatin1Char('\n')))
        m_lines.push_back({ line, origin, number++ });
}

KcEdEvent KcEdScriptSource::read(const KcEdPrompt&)
{
    if (m_next == m_lines.size())
        return KcEdEnd();
    return m_lines[m_next++];
}

void KcEdScriptSource::refused(const KcEdLine& line, const QString& reason)
{
    ++m_refusals;
    if (line.number == 0)
        kcedSayError(QStringLiteral("\"%1\" was not taken. %2").arg(line.text, reason));
    else
        kcedSayError(QStringLiteral("%1, line %2: \"%3\" was not taken. %4")
                         .arg(line.origin, QString::number(line.number), line.text, reason));
}

KcEdEvent KcEdStreamSource::read(const KcEdPrompt&)
{
    std::string bytes;
    if (!std::getline(m_stream, bytes))
        return KcEdEnd();
    QString line = QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
    if (line.endsWith(QLatin1Char('\r')))
        line.chop(1);
    return KcEdLine{ line, {}, 0 };
}

void KcEdStreamSource::refused(const KcEdLine&, const QString& reason)
{
    kcedSay(reason);
}

void KcEdListSource::refused(const KcEdLine& line, const QString& reason)
{
    if (m_refusal.isEmpty())
        m_refusal = QStringLiteral("\"%1\" was not taken. %2").arg(line.text, reason);
}
