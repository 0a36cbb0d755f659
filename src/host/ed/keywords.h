// Keyword lists of prompts: "Dimension Area _ Dimension Area", "A S".
#pragma once

#include <QStringList>

#include <optional>
#include <vector>

class KcEdKeywordList {
public:
    KcEdKeywordList() = default;
    /// Local keywords, then optionally an underscore and as many global ones, separated by blanks. A list
    /// without an underscore gives local keywords only; they are their own global names.
    KcEdKeywordList(const QString& list);

    bool isEmpty() const { return m_words.empty(); }
    /// The global name of the keyword that was typed: without regard to case, by its capitals or any longer
    /// prefix. What begins with an underscore is matched against the global names. Nothing when no keyword is
    /// meant.
    std::optional<QString> match(const QString& typed) const;
    /// Local keywords, for the user.
    QStringList localNames() const;
    /// A question as a window shows it, with a button for each keyword.
    struct Question {
        QString text; ///< in one row, without the list of keywords that the buttons stand for
        QStringList captions; ///< in the order of localNames(), as the list in the question calls them
    };
    /// Of "Blocks or [乔灌标注(D)]: " the text "Blocks or:" and "乔灌标注(D)" for the keyword that D means.
    /// What the list does not name keeps its own name; a list that names anything else stays in the text.
    Question shown(const QString& question) const;

private:
    struct Word {
        QString local, global;
    };
    std::vector<Word> m_words;
};
