#include "tests/programs/Office.h"

#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

namespace {

// No tip of the day, no question before cells are overwritten or a flat file is saved.
constexpr char settings[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry">
<item oor:path="/org.openoffice.Office.Common/Misc"><prop oor:name="ShowTipOfTheDay" oor:op="fuse"><value>false</value></prop></item>
<item oor:path="/org.openoffice.Office.Common/Misc"><prop oor:name="FirstRun" oor:op="fuse"><value>false</value></prop></item>
<item oor:path="/org.openoffice.Setup/Product"><prop oor:name="ooSetupLastVersion" oor:op="fuse"><value>7.4</value></prop></item>
<item oor:path="/org.openoffice.Office.Common/Save/Document"><prop oor:name="WarnAlienFormat" oor:op="fuse"><value>false</value></prop></item>
<item oor:path="/org.openoffice.Office.Calc/Input"><prop oor:name="ReplaceCellsWarning" oor:op="fuse"><value>false</value></prop></item>
</oor:items>
)";

constexpr char head[] =
    R"(<?xml version="1.0" encoding="UTF-8"?><office:document office:version="1.2")"
    R"( xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0")"
    R"( xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0")"
    R"( xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0")"
    R"( xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0")"
    R"( xmlns:of="urn:oasis:names:tc:opendocument:xmlns:of:1.2")"
    R"( xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0")"
    R"( office:mimetype="application/vnd.oasis.opendocument.%KIND%"><office:automatic-styles>)"
    R"(<style:style style:name="Heavy" style:family="%FAMILY%"><style:text-properties fo:font-weight="bold"/></style:style>)"
    R"(</office:automatic-styles><office:body>)";

QByteArray headOf(const QByteArray &kind, const QByteArray &family)
{
    return QByteArray(head).replace("%KIND%", kind).replace("%FAMILY%", family);
}

QByteArray textBody(const QByteArray &inside)
{
    return headOf("text", "text") + "<office:text>" + inside +
           "</office:text></office:body></office:document>";
}

QByteArray sheetBody(const QByteArray &rows)
{
    return headOf("spreadsheet", "table-cell") + "<office:spreadsheet><table:table table:name=\"Sheet\">" +
           rows + "</table:table></office:spreadsheet></office:body></office:document>";
}

QByteArray textCell(const QByteArray &text, const QByteArray &attributes = {})
{
    return "<table:table-cell office:value-type=\"string\"" + attributes + "><text:p>" + text +
           "</text:p></table:table-cell>";
}

QByteArray numberCell(const QByteArray &value, const QByteArray &attributes = {})
{
    return "<table:table-cell office:value-type=\"float\" office:value=\"" + value + "\"" + attributes +
           "><text:p>" + value + "</text:p></table:table-cell>";
}

QByteArray row(const QByteArray &cells)
{
    return "<table:table-row>" + cells + "</table:table-row>";
}

std::function<QString(const QString &)> fileOf(const QString &suffix, const QByteArray &bytes)
{
    return [=](const QString &path) {
        const QString file = path + suffix;
        const auto number = QFileInfo(path).fileName().toUtf8();
        writeFile(file, QByteArray(bytes).replace("%NUMBER%", number));
        return file;
    };
}

// Its own profile, made before the first window: the first start of all ends by itself, to start again.
Child::Setting officeOn(Stage &, const QString &file)
{
    const QString profile = qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/office");
    const QString binary = QStringLiteral("/usr/lib/libreoffice/program/soffice.bin");
    const QString where = QStringLiteral("-env:UserInstallation=file://") + profile;
    if (!QFileInfo::exists(profile)) {
        QDir().mkpath(profile + QStringLiteral("/user"));
        writeFile(profile + QStringLiteral("/user/registrymodifications.xcu"), settings);
        QProcess::execute(binary,
                          {where, QStringLiteral("--headless"), QStringLiteral("--terminate_after_init")});
    }
    return {binary,
            {where, QStringLiteral("--norestore"), QStringLiteral("--nologo"),
             QStringLiteral("--nolockcheck"), file},
            {},
            {QStringLiteral("SAL_USE_VCLPLUGIN=gtk3")}};
}

} // namespace

const Program &writer()
{
    static const Program program{
        .name = QStringLiteral("Writer"),
        .package = QStringLiteral("libreoffice-writer"),
        .windowClass = QStringLiteral("libreoffice-writer"),
        .command = officeOn,
        .makeBlank = fileOf(QStringLiteral(".fodt"), textBody("<text:p>blank %NUMBER%</text:p>")),
        .pasteTime = Desktop::Milliseconds(1000),
        .startBound = Desktop::Milliseconds(120000),
        .attempt = Desktop::Milliseconds(10000)};
    return program;
}

const Program &calc()
{
    static const Program program{
        .name = QStringLiteral("Calc"),
        .package = QStringLiteral("libreoffice-calc"),
        .windowClass = QStringLiteral("libreoffice-calc"),
        .command = officeOn,
        .makeBlank = fileOf(QStringLiteral(".fods"), sheetBody(row(textCell("blank %NUMBER%")))),
        .select = {QStringLiteral("Ctrl+Home"), QStringLiteral("Ctrl+Shift+End")},
        .beforePaste = {QStringLiteral("Ctrl+Home")},
        .pasteTime = Desktop::Milliseconds(1000),
        .startBound = Desktop::Milliseconds(120000),
        .attempt = Desktop::Milliseconds(10000)};
    return program;
}

std::function<QString(const QString &)> styledDocument(const QString &name)
{
    return fileOf(
        QStringLiteral(".fodt"),
        textBody("<text:h text:outline-level=\"1\">" + name.toUtf8() +
                 "</text:h><text:p>Plain and <text:span text:style-name=\"Heavy\">bold</text:span> "
                 "\xc3\xa8 \xe2\x82\xac \xf0\x9f\x8d\x90.</text:p><table:table table:name=\"Table\">"
                 "<table:table-column table:number-columns-repeated=\"2\"/>" +
                 row(textCell("first") + textCell("second")) + "</table:table><text:p>end</text:p>"));
}

std::function<QString(const QString &)> sheet(const QString &name)
{
    return fileOf(QStringLiteral(".fods"),
                  sheetBody(row(textCell(name.toUtf8(), " table:style-name=\"Heavy\"") + numberCell("2") +
                                numberCell("12.5")) +
                            row(textCell("\xc3\xa8 \xe2\x82\xac") + numberCell("4") +
                                numberCell("6", " table:formula=\"of:=[.B1]+[.B2]\""))));
}

QByteArray htmlBody(const QByteArray &html)
{
    return html.mid(html.indexOf("<body"));
}
