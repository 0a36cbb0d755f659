// Reading names and numbers from the texts of dimension labels. Every command that reads a label reads it
// here.
#pragma once

#include <QString>

#include <optional>

/// What a tree label says: "香樟(4株)", "香樟-4", "香樟 4".
struct TreeLabel {
    QString name; ///< may be empty: "4株"
    int count = 0;
};

/// What an area label says: "草坪 12.50m2", "草坪(12.5m²)", "草坪/12".
struct AreaLabel {
    QString name; ///< may be empty
    double number = 0; ///< as it stands, in the unit of the label
};

/// Reads one entry of a tree label (what stands between two commas). The count is the last run of digits, the
/// unit "m2" or "M2" at the end aside; the name is what stands before it, without the blanks, brackets and
/// hyphens at its end. Nothing when there are no digits, or more than a count can hold.
std::optional<TreeLabel> parseTreeLabel(const QString& entry);

/// Reads the text of an area label. The number is the last one, with or without decimals, any unit of two
/// characters that begins with "m" aside; the name is what stands before it, without the blanks, brackets,
/// hyphens and slashes at its end. Nothing when there is no number.
std::optional<AreaLabel> parseAreaLabel(const QString& text);

/// The species that a plant name speaks of: the name without the figures, sizes, bracketed remarks and
/// separators at its end ("香樟A12" gives "香樟A", "香樟 φ12-15cm(丛生)" gives "香樟"); the whole name when
/// nothing would be left.
QString GetSpeciesName(const QString& name);
