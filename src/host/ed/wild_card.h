// Patterns of names in selection filters: # a digit, @ a letter, . neither, * any sequence, ? any character,
// ~ at the beginning negates, [...] one of, [~...] none of, - a range in brackets, ` takes the next character
// literally, commas separate alternatives.
#pragma once

#include <QString>

#include <vector>

class KcEdWildCard {
public:
    explicit KcEdWildCard(const QString& pattern);
    /// Without regard to case.
    bool matches(const QString& name) const;

private:
    struct Alternative {
        QString pattern; ///< upper case
        bool negated = false;
        bool plain = false; ///< holds no wild card
    };
    std::vector<Alternative> m_alternatives;
};
