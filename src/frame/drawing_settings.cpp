// Reading, checking and writing the drawing settings.

#include "frame/drawing_settings.h"

#include "core/application.h"
#include "core/drawing_config.h"
#include "core/labels.h"
#include "core/styles.h"
#include "ed/documents.h"
#include "frame/settings.h"
#include "platform/files.h"
#include "platform/numbers.h"

namespace {

const QString kSection = QStringLiteral("DRAWING SETTINGS");

bool settingsFileExists()
{
    return QFileInfo(platform::findPath(settingsFilePath())).isFile();
}

QString key(const char* name)
{
    return QLatin1String(name);
}

} // namespace

std::optional<QString> checkedScale(const QString& typed)
{
    bool isNumber = false;
    const double value = typed.trimmed().toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value) || value <= 0.0)
        return {};
    return typed.trimmed();
}

std::optional<QString> checkedTextHeight(const QString& typed)
{
    bool isNumber = false;
    const double value = typed.trimmed().toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value))
        return {};
    const QString rounded = platform::formatC("%.1f", value);
    return rounded.toDouble() > 0.0 ? std::optional(rounded) : std::nullopt;
}

std::optional<int> checkedAreaDigits(const QString& typed)
{
    bool isNumber = false;
    const int value = typed.trimmed().toInt(&isNumber);
    return isNumber && value >= 0 && value <= 9 ? std::optional(value) : std::nullopt;
}

std::optional<DrawingSettings> readDrawingSettings()
{
    if (!settingsFileExists())
        return {};
    const CVdlIni ini = productSettings();
    DrawingSettings result;
    const auto choice = [&](const char* name, int fallback, int count) {
        return std::clamp(ini.integer(kSection, key(name), fallback), 0, count - 1);
    };
    const auto height = [&](const char* name, const QString& fallback) {
        return checkedTextHeight(QString::number(ini.real(kSection, key(name), 0.0))).value_or(fallback);
    };
    const auto flag
        = [&](const char* name, bool fallback) { return ini.flag(kSection, key(name), fallback); };

    // What cannot be read as a number at its beginning counts as 0, as everywhere in the settings.
    const QString scale = ini.text(kSection, key("dDrawingScale"), result.scale);
    if (platform::wtof(scale) > 0.0)
        result.scale = scale;
    result.textHeight = height("dTextHeight", result.textHeight);
    result.tableTextHeight = height("dTableTextHeight", result.tableTextHeight);
    result.unit = choice("iDrawingUnit", result.unit, 4);
    QString style;
    if (GetCurrentTextStyle(style))
        result.textStyle = style;
    result.labelStyle = choice("iDimStyle", result.labelStyle, 3);
    result.autoAlign = flag("bAutoAlign", result.autoAlign);
    result.groupLabels = flag("bDimGrouping", result.groupLabels);
    result.backFill = flag("bTextBackFill", result.backFill);
    GetTextBackFill(result.backFill);

    result.labelType = choice("iDimType", result.labelType, 5);
    result.countUnit = choice("iDimUnit", result.countUnit, 3);
    result.arcType = choice("iArcType", result.arcType, 2);
    result.merge = flag("bAutoMerge", result.merge);
    result.breakLeaders = flag("bAutoBroken", result.breakLeaders);
    result.speciality = flag("bDimType", result.speciality);
    result.ownTreeLayer = flag("bTreeDimLayer", result.ownTreeLayer);
    GetTreeDimLayer(result.treeLayer);

    result.areaDigits = choice("iAreaDigit", result.areaDigits, 10);
    result.areaUnit = choice("iAreaUnit", result.areaUnit, 4);
    result.ownAreaLayer = flag("bAreaDimLayer", result.ownAreaLayer);
    GetAreaDimLayer(result.areaLayer);
    return result;
}

QString writeDrawingSettings(const DrawingSettings& settings)
{
    if (!settingsFileExists())
        return {};
    const CVdlIni ini = productSettings();
    bool written = true;
    const auto text = [&](const char* name, const QString& value) {
        written = ini.WriteText(kSection, key(name), value) && written;
    };
    const auto number
        = [&](const char* name, int value) { written = ini.WriteInt(kSection, key(name), value) && written; };
    const auto flag = [&](const char* name, bool value) {
        written = ini.WriteBool(kSection, key(name), value) && written;
    };

    text("dDrawingScale", settings.scale);
    text("dTextHeight", settings.textHeight);
    text("dTableTextHeight", settings.tableTextHeight);
    number("iDrawingUnit", settings.unit);
    if (QString before; !GetCurrentTextStyle(before) || before != settings.textStyle)
        if (const auto config = GetDwgGlobal(VdlOpenMode::kForWrite))
            config->SetCurrentTextStyle(settings.textStyle);
    number("iDimStyle", settings.labelStyle);
    flag("bAutoAlign", settings.autoAlign);
    flag("bDimGrouping", settings.groupLabels);
    flag("bTextBackFill", settings.backFill);
    number("iDimType", settings.labelType);
    number("iDimUnit", settings.countUnit);
    number("iArcType", settings.arcType);
    flag("bAutoMerge", settings.merge);
    flag("bAutoBroken", settings.breakLeaders);
    flag("bDimType", settings.speciality);
    flag("bTreeDimLayer", settings.ownTreeLayer);
    if (settings.ownTreeLayer)
        SetTreeDimLayer(settings.treeLayer);
    number("iAreaDigit", settings.areaDigits);
    number("iAreaUnit", settings.areaUnit);
    flag("bAreaDimLayer", settings.ownAreaLayer);
    if (settings.ownAreaLayer)
        SetAreaDimLayer(settings.areaLayer);
    SetTextBackFill(settings.backFill);
    return written ? QString() : QStringLiteral("设置文件无法写入：%1").arg(settingsFilePath());
}

QString sampleTreeLabel(const DrawingSettings& settings)
{
    return QStringLiteral("香樟") + SetTreeDim(4, settings.labelStyle, settings.countUnit);
}

QString sampleAreaLabel(const DrawingSettings& settings)
{
    QString area = QString::number(platform::wtof(QStringLiteral("49.1234567890")), 'f', settings.areaDigits)
        + SetAreaDim(settings.areaUnit);
    SetDimStyle(area, settings.labelStyle);
    return QStringLiteral("发草") + area;
}
