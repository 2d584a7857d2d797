#include "Vesmo/Localisation.h"

#include <QDir>
#include <QTranslator>
#include <memory>
#include <mutex>

namespace {

constexpr char keysContext[] = "keys"; // the one context of the tables

struct Language {
    QString code;
    QLocale locale;
    QTranslator table;
};

QStringList carriedLanguages()
{
    QStringList codes;
    for (const QString &file : QDir(QStringLiteral(":/i18n")).entryList({QStringLiteral("norvane_*.qm")})) {
        const auto start = file.indexOf(u'_') + 1;
        codes.append(file.mid(start, file.lastIndexOf(u'.') - start));
    }
    return codes;
}

// QLocale::system() answers with the language of messages; times have a variable of their own.
QLocale regionalSettings()
{
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const QString name = qEnvironmentVariable(variable);
        if (!name.isEmpty())
            return QLocale(name.section(u'.', 0, 0).section(u'@', 0, 0));
    }
    return QLocale::c();
}

std::shared_ptr<const Language> makeLanguage(const QString &code)
{
    auto language = std::make_shared<Language>();
    language->code = code;
    language->locale = AppLanguage::localeFor(code, regionalSettings());
    const QString file = QStringLiteral(":/i18n/norvane_%1.qm").arg(code);
    if (QFile::exists(file))
        (void)language->table.load(file); // a table that does not load shows the phrases themselves
    return language;
}

std::mutex languageMutex;
std::shared_ptr<const Language> currentLanguage;

std::shared_ptr<const Language> language()
{
    const std::lock_guard lock(languageMutex);
    if (!currentLanguage) {
        const QLocale system = QLocale::system();
        currentLanguage = makeLanguage(AppLanguage::choose(carriedLanguages(), system.uiLanguages()));
    }
    return currentLanguage;
}

} // namespace

LocalizedText::LocalizedText(Interpolation interpolation)
    : key_(std::move(interpolation.key_)), arguments_(std::move(interpolation.arguments_))
{
}

LocalizedText::Interpolation::Interpolation(qsizetype literalCapacity, qsizetype interpolationCount)
{
    key_.reserve(literalCapacity + 2 * interpolationCount);
}

void LocalizedText::Interpolation::appendLiteral(QStringView literal)
{
    for (const QChar character : literal) {
        key_ += character;
        if (character == u'%')
            key_ += u'%';
    }
}

QString textOf(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString textOf(double value)
{
    QString text = QString::number(value, 'g', QLocale::FloatingPointShortest);
    const bool isWhole = std::ranges::all_of(text, [](QChar each) { return each.isDigit() || each == u'-'; });
    if (isWhole)
        text += u".0";
    return text;
}

QString localizedString(const QString &key)
{
    QString text = language()->table.translate(keysContext, key.toUtf8().constData());
    if (text.isNull())
        text = key;
    const auto suffix = text.indexOf(u"##");
    return suffix < 0 ? text : text.left(suffix);
}

QString formatted(const QString &format, const QStringList &arguments)
{
    QString result;
    result.reserve(format.size());
    qsizetype used = 0;
    for (qsizetype index = 0; index < format.size(); ++index) {
        const QChar character = format[index];
        const QChar next = index + 1 < format.size() ? format[index + 1] : QChar();
        if (character == u'%' && next == u'%') {
            result += u'%';
            ++index;
        } else if (character == u'%' && next == u'@' && used < arguments.size()) {
            result += arguments[used++];
            ++index;
        } else {
            result += character;
        }
    }
    return result;
}

QString L(const LocalizedText &text)
{
    const QString translated = localizedString(text.key());
    return text.arguments().isEmpty() ? translated : formatted(translated, text.arguments());
}

QString AppLanguage::code()
{
    return language()->code;
}

bool AppLanguage::isItalian()
{
    return code() == u"it";
}

QLocale AppLanguage::locale()
{
    return language()->locale;
}

QString AppLanguage::choose(const QStringList &carried, const QStringList &preferred)
{
    const auto isBase = [](const QString &each) { return each == u"Base"; };
    if (std::ranges::all_of(carried, isBase))
        return QStringLiteral("it");
    for (const QString &each : preferred) {
        // A region alone is no language of its own here: Swiss Italian comes as "it-CH" without a plain "it".
        const QString spoken = each.section(u'-', 0, 0).section(u'_', 0, 0);
        if (carried.contains(spoken))
            return spoken.left(2);
    }
    return QStringLiteral("en");
}

QLocale AppLanguage::localeFor(const QString &code, const QLocale &current)
{
    if (QLocale::languageToCode(current.language()) == code)
        return current;
    return code == u"it" ? QLocale(QLocale::Italian, QLocale::Italy)
                         : QLocale(QLocale::English, QLocale::UnitedStates);
}

void loadTranslations(const QString &languageCode)
{
    auto loaded = makeLanguage(languageCode);
    const std::lock_guard lock(languageMutex);
    currentLanguage = std::move(loaded);
}
