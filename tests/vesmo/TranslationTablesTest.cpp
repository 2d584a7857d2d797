// The tables against the sources: every phrase of the code has its translations, and they word this desktop.

#include "Vesmo/Localisation.h"

#include <QDirIterator>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QSvgRenderer>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <gtest/gtest.h>
#include <map>

namespace {

using Table = std::map<QString, QString>; // key → text

Table readTable(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    QXmlStreamReader xml(&file);
    Table table;
    QString key;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == u"source")
            key = xml.readElementText();
        else if (xml.name() == u"translation" && !xml.attributes().hasAttribute(QLatin1String("type")))
            table[key] = xml.readElementText();
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return table;
}

Table shippedTable(const char *language)
{
    return readTable(QStringLiteral(SOURCE_FOLDER "/resources/translations/norvane_%1.ts")
                         .arg(QString::fromLatin1(language)));
}

// As message ids, because lupdate skips a tr() outside of classes. It writes ids unescaped, so this is no
// XML.
QStringList keysOf(const QStringList &sources)
{
    const QTemporaryDir folder;
    QFile found(folder.filePath(QStringLiteral("found.ts")));
    QProcess lupdate;
    lupdate.start(QStringLiteral(LUPDATE), QStringList{"-silent", "-tr-function-alias", "qtTrId+=L"} +
                                               sources + QStringList{"-ts", found.fileName()});
    EXPECT_TRUE(lupdate.waitForFinished(120000) && lupdate.exitCode() == 0)
        << lupdate.readAllStandardError().toStdString();
    EXPECT_TRUE(found.open(QIODevice::ReadOnly));
    static const QRegularExpression message(QStringLiteral("^ *<message id=\"(.*?)\"(?: numerus=\"yes\")?>$"),
                                            QRegularExpression::MultilineOption);
    QStringList keys;
    for (auto matches = message.globalMatch(QString::fromUtf8(found.readAll())); matches.hasNext();)
        keys.append(matches.next().captured(1));
    return keys;
}

QStringList ourSources()
{
    QStringList sources;
    for (const char *room : {"/Norvane", "/Vesmo"}) {
        QDirIterator files(QStringLiteral(SOURCE_FOLDER) + QString::fromLatin1(room), {"*.cpp", "*.h"},
                           QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext())
            sources.append(files.next());
    }
    // This header explains the phrases by examples.
    sources.removeAll(QStringLiteral(SOURCE_FOLDER "/Vesmo/Localisation.h"));
    return sources;
}

// Keys that are put together when the program runs: modifiers and key symbols of a shortcut.
QStringList computedKeys()
{
    QStringList keys{"↩", "⇥", "Spazio", "⌫", "⌦", "⎋", "←", "→", "↑", "↓", "↖", "↘", "⇞", "⇟"};
    const QString symbols = QStringLiteral("⌃⌥⇧⌘");
    for (int mask = 1; mask < 16; ++mask) {
        QString key;
        for (int bit = 0; bit < 4; ++bit) {
            if (mask & (1 << bit))
                key += symbols[bit];
        }
        keys.append(key);
    }
    return keys;
}

TEST(TranslationTables, EveryPhraseOfTheCodeHasItsTranslations)
{
    const QStringList used = keysOf(ourSources());
    // Plain, formatted, told apart and spread over lines: the search sees every way of writing a key.
    for (const char *known : {"Al puntatore", "%@ di %@", "Annulla##undo"})
        EXPECT_TRUE(used.contains(QString(known))) << "lupdate no longer finds " << known;
    for (const char *language : {"it", "en"}) {
        const Table table = shippedTable(language);
        for (const QString &key : used + computedKeys()) {
            const auto entry = table.find(key);
            EXPECT_TRUE(entry != table.end() && !entry->second.isEmpty())
                << language << " lacks: " << key.toStdString();
        }
    }
}

TEST(TranslationTables, BothLanguagesHaveTheSameKeysAndPlaceholders)
{
    const Table italian = shippedTable("it"), english = shippedTable("en");
    EXPECT_EQ(italian.size(), english.size());
    static const QRegularExpression suffix(QStringLiteral("##.*$"));
    for (const auto *table : {&italian, &english}) {
        for (const auto &[key, text] : *table) {
            EXPECT_TRUE(italian.contains(key) && english.contains(key)) << key.toStdString();
            EXPECT_EQ(text.count(u"%@"), key.count(u"%@")) << key.toStdString();
            EXPECT_FALSE(text.contains(suffix)) << key.toStdString();
        }
    }
}

TEST(TranslationTables, NoTextNamesAnotherDesktop)
{
    static const QRegularExpression foreign(
        QStringLiteral("[⌘⌥⌃]|\\bMac\\b|macOS|Finder|Apple|Impostazioni di Sistema|System Settings"));
    for (const char *language : {"it", "en"}) {
        for (const auto &[key, text] : shippedTable(language))
            EXPECT_FALSE(text.contains(foreign)) << language << ": " << text.toStdString();
    }
}

TEST(TranslationTables, WhatIsCompiledInIsWhatTheTablesSay)
{
    for (const char *language : {"it", "en"}) {
        loadTranslations(QString::fromLatin1(language));
        for (const auto &[key, text] : shippedTable(language))
            EXPECT_EQ(localizedString(key), text) << key.toStdString();
    }
}

TEST(Icons, EveryIconIsCompiledInAndPaintsAtEverySize)
{
    const QDir icons(QStringLiteral(":/icons"));
    EXPECT_GT(icons.count(), 8U);
    for (const QFileInfo &file : icons.entryInfoList()) {
        QSvgRenderer renderer(file.filePath());
        ASSERT_TRUE(renderer.isValid()) << file.fileName().toStdString();
        for (const int size : {16, 22, 256}) {
            QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            renderer.render(&painter);
            painter.end();
            qsizetype painted = 0;
            for (int y = 0; y < size; ++y) {
                for (int x = 0; x < size; ++x)
                    painted += qAlpha(image.pixel(x, y)) > 64;
            }
            EXPECT_GT(painted, size * size / 20) << file.fileName().toStdString() << " at " << size;
            EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0) << "no transparent corner";
        }
    }
}

} // namespace
