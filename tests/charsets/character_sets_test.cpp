// Character sets: the names that files use lead to the right set, and nothing is lost without being reported.
#include "platform/character_sets.h"

#include <gtest/gtest.h>

using platform::CharacterSet;

namespace {

CharacterSet set(const char* name)
{
    auto found = CharacterSet::named(QString::fromLatin1(name));
    if (!found)
        throw std::runtime_error(std::string("no character set ") + name);
    return std::move(*found);
}

} // namespace

// A name that leads to a neighbouring set garbles every text of the file: each row holds bytes that only the
// right set reads so.
TEST(CharacterSets, NamesLeadToTheirSets)
{
    const struct {
        const char* name;
        std::string_view bytes;
        QString text;
    } rows[] = {
        { "windows-1252", "\x80\xe9", u"€é"_qs },
        { "ANSI_1252", "\x80", u"€"_qs },
        { "1252", "\x80", u"€"_qs },
        { "ANSI_1251", "\xcf", u"П"_qs },
        { "ansi_1254", "\xde", u"Ş"_qs },
        { "iso_8859-9:1989", "\xde", u"Ş"_qs },
        { "ISO8859-1", "\xe9", u"é"_qs },
        { "dos850", "\xe9", u"Ú"_qs },
        { "DOS437", "\x9b", u"¢"_qs },
        { "dos866", "\x8f", u"П"_qs },
        { "csgb2312", "\xcf\xe3\xd5\xc1", u"香樟"_qs },
        { "GB2312", "\xe9\x46", QString(QChar(0x9555)) },
        { "ANSI_936", "\xe9\x46", QString(QChar(0x9555)) },
        { "gb18030", "\x81\x30\x81\x30", QString(QChar(0x80)) },
        { "hz-gb-2312", "~{OcUA~}\n", u"香樟\n"_qs },
        { "ks_c_5601-1987", "\xb0\xa1\x81\x41", u"가갂"_qs },
        { "ks_c_5601_1987", "\x81\x41", u"갂"_qs },
        { "ANSI_949", "\x81\x41", u"갂"_qs },
        { "ANSI_950", "\xa4\xa4", u"中"_qs },
        { "big5", "\xa4\xa4", u"中"_qs },
        { "dos932", "\x83\x5c\\", u"ソ\\"_qs },
        { "shift_jis", "\x82\xa0", u"あ"_qs },
        { "euc-jp", "\xa4\xa2", u"あ"_qs },
        { "UTF8", "\xe9\xa6\x99", u"香"_qs },
        { "utf-16le", std::string_view("\x99\x99", 2), QString(QChar(0x9999)) },
        { "mac-roman", "\x8e", u"é"_qs },
        { "koi8-r", "\xf0", u"П"_qs },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CharacterSet charset = set(row.name);
        const auto decoded = charset.decode(row.bytes);
        EXPECT_EQ(decoded.text.toStdString(), row.text.toStdString());
        EXPECT_TRUE(decoded.clean());
        const auto encoded = charset.encode(row.text);
        EXPECT_EQ(encoded.bytes.toStdString(), row.bytes);
        EXPECT_TRUE(encoded.clean());
    }
}

TEST(CharacterSets, UnknownNamesGiveNothing)
{
    for (const QString& name :
         { u""_qs, u"  "_qs, u"klingon"_qs, u"ANSI_99999"_qs, u"香樟"_qs, QString(200, 'x') })
        EXPECT_FALSE(CharacterSet::named(name)) << name.toStdString();
}

TEST(CharacterSets, BadBytesAreLocatedAndTheRestIsRead)
{
    const struct {
        const char* name;
        std::string_view bytes;
        const char* text;
        std::vector<qsizetype> positions;
        qsizetype badBytes;
    } rows[] = {
        { "utf-8",
          "a\xff"
          "b",
          "a�b",
          { 1 },
          1 },
        { "utf-8", "\xe9\xa6", "�", { 0 }, 2 },
        { "gbk", "\xcf\xe3\xd5 \xd5\xc1", "香� 樟", { 2 }, 1 },
        { "gbk", "A\xcf", "A�", { 1 }, 1 },
        { "us-ascii", "a\xe9\xe9", "a��", { 1, 2 }, 2 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " " + row.text);
        const CharacterSet charset = set(row.name);
        for (int round = 0; round < 2; ++round) { // the second text must not inherit the state of the first
            const auto decoded = charset.decode(row.bytes);
            EXPECT_EQ(decoded.text.toStdString(), row.text);
            EXPECT_EQ(decoded.badPositions, row.positions);
            EXPECT_EQ(decoded.badBytes, row.badBytes);
        }
    }
}

TEST(CharacterSets, UnmappableCharactersAreLocatedAndReplaced)
{
    const CharacterSet gbk = set("gb2312");
    const QString text = u"香😀樟각"_qs;
    const auto plain = gbk.encode(text);
    EXPECT_EQ(plain.unmappable, (std::vector<qsizetype>{ 1, 4 }));
    EXPECT_EQ(gbk.decode({ plain.bytes.data(), size_t(plain.bytes.size()) }).text, u"香?樟?"_qs);

    const auto escaped
        = gbk.encode(text, [](char32_t c) { return u"\\U+%1"_qs.arg(uint(c), 4, 16, QChar('0')); });
    EXPECT_EQ(
        gbk.decode({ escaped.bytes.data(), size_t(escaped.bytes.size()) }).text, u"香\\U+1f600樟\\U+ac01"_qs);

    // In a set with shifts the replacement must be written in the state the bytes are in.
    const CharacterSet hz = set("hz-gb-2312");
    const auto shifted = hz.encode(u"香각樟"_qs);
    EXPECT_EQ(hz.decode({ shifted.bytes.data(), size_t(shifted.bytes.size()) }).text, u"香?樟"_qs);

    // An approximate character is a loss too; a lone surrogate has no bytes anywhere.
    EXPECT_EQ(set("windows-1252").encode(u"Ａ"_qs).unmappable, (std::vector<qsizetype>{ 0 }));
    EXPECT_EQ(CharacterSet::utf8().encode(QString(QChar(0xd800))).unmappable, (std::vector<qsizetype>{ 0 }));
}

TEST(CharacterSets, LongTextsAndByteOrderMarks)
{
    const CharacterSet gbk = set("gbk");
    const QString longText = u"香樟 Cinnamomum 桂花\n"_qs.repeated(20000);
    const auto bytes = gbk.encode(longText).bytes;
    EXPECT_EQ(gbk.decode({ bytes.data(), size_t(bytes.size()) }).text, longText);
    EXPECT_EQ(CharacterSet::utf8().decode("\xef\xbb\xbfx").text, QString(QChar(0xfeff)) + 'x');
    EXPECT_EQ(CharacterSet::utf8().decode("").text, QString());
}
