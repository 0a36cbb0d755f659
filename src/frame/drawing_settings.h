// The drawing settings as values: read from the settings file and the drawing, written back to both.
#pragma once

#include <QString>

#include <optional>

struct DrawingSettings {
    QString scale = QStringLiteral("100"); ///< n of 1:n, as it was typed
    QString textHeight = QStringLiteral("3.5"), tableTextHeight = QStringLiteral("3.5"); ///< one decimal
    int unit = 0; ///< 0 mm, 1 cm, 2 dm, 3 m
    QString textStyle = QStringLiteral("Standard");
    int labelStyle = 0; ///< 0 brackets, 1 blank, 2 dash
    bool autoAlign = true, groupLabels = true, backFill = false;

    int labelType = 1, countUnit = 0, arcType = 1;
    bool merge = true, breakLeaders = true, speciality = true;
    bool ownTreeLayer = false;
    QString treeLayer; ///< empty: none was chosen

    int areaDigits = 1; ///< 0 to 9
    int areaUnit = 2;
    bool ownAreaLayer = false;
    QString areaLayer;
};

/// What is stored, values out of range corrected; nothing when there is no settings file.
std::optional<DrawingSettings> readDrawingSettings();
/// Writes the settings file, and what belongs to the current drawing into it. Empty, or a sentence saying
/// what could not be written; without a settings file nothing is written and nothing said.
QString writeDrawingSettings(const DrawingSettings& settings);

/// A scale as it may be stored: the text, when it is a number greater than 0.
std::optional<QString> checkedScale(const QString& typed);
/// A text height rounded to one decimal, when it is greater than 0 then.
std::optional<QString> checkedTextHeight(const QString& typed);
/// A number of decimals from 0 to 9.
std::optional<int> checkedAreaDigits(const QString& typed);

/// The labels that show what the settings do: "香樟(4株)" and "发草(49.1m2)".
QString sampleTreeLabel(const DrawingSettings& settings);
QString sampleAreaLabel(const DrawingSettings& settings);
