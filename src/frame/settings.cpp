// Layered settings: which file a key is read from and written to depends on a level kept beside it.

#include "frame/settings.h"

#include "core/application.h"
#include "core/settings_overrides.h"
#include "platform/numbers.h"
#include "platform/profile_file.h"

namespace {

// Lowest first; a value is looked for from the position of its level downwards.
constexpr std::array<int, 5> precedence{ -1, 0, 1, 3, 2 };

constexpr int bufferSize = 4096;

int positionOf(int level)
{
    for (int i = int(precedence.size()) - 1; i >= 0; --i)
        if (precedence[size_t(i)] == level)
            return i;
    return -1;
}

QString withoutBrackets(QString section)
{
    return section.remove(u'[').remove(u']');
}

// A value that is there but empty counts as absent.
std::optional<QString> readFile(const QString& path, const QString& section, const QString& key)
{
    QString value;
    if (!platform::GetPrivateProfileStringW(section, key, {}, value, bufferSize, path))
        return std::nullopt;
    return value;
}

bool toFlag(const QString& text)
{
    return text.compare(u"true", Qt::CaseInsensitive) == 0 || platform::wtoi(text) == 1;
}

} // namespace

CVdlIni::CVdlIni(const QString& path)
    : m_basePath(path)
{
    m_layerPaths.fill(path);
}

void CVdlIni::setLayerPath(int level, const QString& path)
{
    if (const int position = positionOf(level); position >= 0)
        m_layerPaths[size_t(position)] = path;
}

bool CVdlIni::ReadText(
    const QString& section, const QString& key, QString& value, TextInfo* info, bool skipLevelLookup) const
{
    if (withoutBrackets(section).isEmpty() || key.isEmpty())
        return false;
    TextInfo found;
    auto text = stored(section, key, found, skipLevelLookup);
    const bool isStored = text.has_value();
    if (isStored)
        value = std::move(*text);
    else
        value.replace(QStringLiteral("[projectfolder]"), m_basePath);
    if (info)
        *info = found;
    return isStored || !value.isEmpty();
}

bool CVdlIni::ReadInt(const QString& section, const QString& key, int& value) const
{
    TextInfo info;
    const auto text = stored(section, key, info, false);
    if (text)
        value = platform::wtoi(*text);
    return text.has_value();
}

bool CVdlIni::ReadDouble(const QString& section, const QString& key, double& value) const
{
    TextInfo info;
    const auto text = stored(section, key, info, false);
    if (text)
        value = platform::wtof(*text);
    return text.has_value();
}

bool CVdlIni::ReadBool(const QString& section, const QString& key, bool& value) const
{
    TextInfo info;
    const auto text = stored(section, key, info, false);
    if (text)
        value = toFlag(*text);
    return text.has_value();
}

QString CVdlIni::text(const QString& section, const QString& key, const QString& fallback) const
{
    QString value = fallback;
    ReadText(section, key, value);
    return value;
}

int CVdlIni::integer(const QString& section, const QString& key, int fallback) const
{
    ReadInt(section, key, fallback);
    return fallback;
}

double CVdlIni::real(const QString& section, const QString& key, double fallback) const
{
    ReadDouble(section, key, fallback);
    return fallback;
}

bool CVdlIni::flag(const QString& section, const QString& key, bool fallback) const
{
    ReadBool(section, key, fallback);
    return fallback;
}

bool CVdlIni::WriteText(const QString& section, const QString& key, const QString& value) const
{
    const QString name = withoutBrackets(section);
    if (name.isEmpty() || key.isEmpty())
        return false;
    // The lowest layer is read only: its keys, like those of unknown levels, are written to the default one.
    const int level = levelOf(name, key);
    const QString& path = layerPath(level == -1 ? defaultLevel : level);
    // A null text would remove the key.
    return platform::WritePrivateProfileStringW(name, key, value.isNull() ? QStringLiteral("") : value, path);
}

bool CVdlIni::WriteInt(const QString& section, const QString& key, int value) const
{
    return WriteText(section, key, QString::number(value));
}

bool CVdlIni::WriteDouble(const QString& section, const QString& key, double value) const
{
    return std::isfinite(value) && WriteText(section, key, platform::formatC("%f", value));
}

bool CVdlIni::WriteBool(const QString& section, const QString& key, bool value) const
{
    return WriteInt(section, key, value ? 1 : 0);
}

const QString& CVdlIni::layerPath(int level) const
{
    const int position = positionOf(level);
    return m_layerPaths[size_t(position < 0 ? positionOf(defaultLevel) : position)];
}

std::optional<QString>
CVdlIni::stored(const QString& section, const QString& key, TextInfo& info, bool skipLevel) const
{
    const QString name = withoutBrackets(section);
    if (name.isEmpty() || key.isEmpty())
        return std::nullopt;
    if (auto overridden = findSettingsOverride(name, key))
        return overridden;

    if (!skipLevel)
        info.level = levelOf(name, key);
    if (const auto unlocked = storedAboutKey(name, u'b' + key.mid(1) + QStringLiteral("Unlocked")))
        info.unlocked = toFlag(*unlocked);

    const int known = positionOf(info.level);
    const QString* tried = nullptr;
    for (int position = known < 0 ? positionOf(defaultLevel) : known; position >= 0; --position) {
        const QString& path = m_layerPaths[size_t(position)];
        if (tried && *tried == path)
            continue;
        tried = &path;
        if (auto value = readFile(path, name, key))
            return value->replace(QStringLiteral("[projectfolder]"), m_basePath);
    }
    return std::nullopt;
}

std::optional<QString> CVdlIni::storedAboutKey(const QString& section, const QString& name) const
{
    auto value = readFile(layerPath(0), section, name);
    if (!value && layerPath(-1) != layerPath(0))
        value = readFile(layerPath(-1), section, name);
    return value;
}

int CVdlIni::levelOf(const QString& section, const QString& key) const
{
    const auto level = storedAboutKey(section, u'i' + key.mid(1) + QStringLiteral("Level"));
    return level ? platform::wtoi(*level) : defaultLevel;
}

CVdlIni productSettings()
{
    return CVdlIni(settingsFilePath());
}
