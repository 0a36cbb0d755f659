// The texts of prompts and dialogs in the language of the user, looked up by key.
#pragma once

#include <QHash>
#include <QString>

/// The texts of one language file: UTF-8, lines KEY=text, comments behind ";". In a text "\n" is a line feed,
/// "\s" a blank (kept at either end, where plain blanks are dropped) and "\\" a backslash.
class CText {
public:
    /// Reads Sys/VDLText<suffix>.txt below the application root ("_zh": VDLText_zh.txt). Returns false,
    /// leaving no texts, when there is no such file or it is not UTF-8; the latter and lines that say nothing
    /// are named through the diagnostics.
    bool Initialize(const QString& suffix);

    /// The text of a key, letter case exact; empty when there is none.
    QString GetString(const QString& key) const { return m_texts.value(key); }

private:
    QHash<QString, QString> m_texts;
};
