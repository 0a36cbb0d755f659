// The settings store of the commands: single values of a profile file, which may be spread over several
// layers. Nothing is cached; a store lives for one sequence of reads or writes.
#pragma once

#include <QString>

#include <array>
#include <optional>

/// Sections may be given with or without square brackets. An empty section or key makes every operation fail.
class CVdlIni {
public:
    static constexpr int defaultLevel = 2;

    /// What is known about a value besides the value.
    struct TextInfo {
        bool unlocked = true;
        int level = defaultLevel;
    };

    /// A store whose layers are all the one file.
    explicit CVdlIni(const QString& path);
    virtual ~CVdlIni() = default;

    /// Replaces the file of one level (-1, 0, 1, 2 or 3; others are ignored).
    void setLayerPath(int level, const QString& path);

    /// Reads a text. The value passed in is the default: it stays when nothing, or an empty value, is stored,
    /// and counts as found unless it is empty. In what is read, "[projectfolder]" stands for the path of the
    /// store.
    /// @param info receives level and unlocked flag when not null
    /// @param skipLevelLookup takes the default level instead of the one kept in the files
    bool ReadText(
        const QString& section, const QString& key, QString& value, TextInfo* info = nullptr,
        bool skipLevelLookup = false) const;

    /// Read a number or a flag. Each returns false, leaving the value alone, when nothing is stored. A flag
    /// is true for the word "true" in any case and for texts that begin with the integer 1.
    bool ReadInt(const QString& section, const QString& key, int& value) const;
    bool ReadDouble(const QString& section, const QString& key, double& value) const;
    bool ReadBool(const QString& section, const QString& key, bool& value) const;

    /// The same as values: what is stored, else the fallback.
    QString text(const QString& section, const QString& key, const QString& fallback = {}) const;
    int integer(const QString& section, const QString& key, int fallback) const;
    double real(const QString& section, const QString& key, double fallback) const;
    bool flag(const QString& section, const QString& key, bool fallback) const;

    /// Write to the file of the key's level. Numbers are written as "%d" and "%f" (six decimals), flags as 0
    /// or 1. Each returns false when the file was not written; a number that is not finite is not.
    bool WriteText(const QString& section, const QString& key, const QString& value) const;
    bool WriteInt(const QString& section, const QString& key, int value) const;
    bool WriteDouble(const QString& section, const QString& key, double value) const;
    bool WriteBool(const QString& section, const QString& key, bool value) const;

private:
    const QString& layerPath(int level) const;
    std::optional<QString>
    stored(const QString& section, const QString& key, TextInfo& info, bool skipLevel) const;
    std::optional<QString> storedAboutKey(const QString& section, const QString& name) const;
    int levelOf(const QString& section, const QString& key) const;

    QString m_basePath;
    std::array<QString, 5> m_layerPaths; ///< in the order of precedence
};

/// The store over the settings file of the product.
CVdlIni productSettings();
