#include "tests/programs/Browsers.h"

#include <QFileInfo>
#include <QImage>

namespace {

// The sum is FNV-1a over the bytes of red, green, blue and alpha, row by row.
constexpr char script[] = R"(<script>
const base = document.title, field = document.querySelector("textarea") || document.body;
function sum(image) {
    const canvas = document.createElement("canvas");
    canvas.width = image.naturalWidth; canvas.height = image.naturalHeight;
    const context = canvas.getContext("2d");
    context.drawImage(image, 0, 0);
    let sum = 2166136261;
    for (const byte of context.getImageData(0, 0, canvas.width, canvas.height).data)
        sum = Math.imul(sum ^ byte, 16777619) >>> 0;
    return canvas.width + "x" + canvas.height + " " + sum;
}
onload = () => field.focus();
field.addEventListener("input", async () => {
    let title = base + " changed";
    for (const image of document.images) {
        await image.decode();
        title += " " + sum(image);
    }
    document.title = title;
});
</script>)";

std::function<QString(const QString &)> pageOf(const QByteArray &body)
{
    return [body](const QString &path) {
        const QString file = path + QStringLiteral(".html");
        const auto name = QFileInfo(path).fileName().toUtf8();
        writeFile(file, "<!DOCTYPE html><meta charset=\"utf-8\"><title>" + name + "</title>" +
                            QByteArray(body).replace("%NUMBER%", name) + script);
        return file;
    };
}

Child::Setting chromiumOn(Stage &, const QString &file)
{
    const QString profile = qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/chromium");
    // The sandbox wants rights that a container and root lack.
    return {QStringLiteral("chromium"),
            {QStringLiteral("--no-sandbox"), QStringLiteral("--no-first-run"),
             QStringLiteral("--no-default-browser-check"), QStringLiteral("--disable-gpu"),
             QStringLiteral("--disable-background-networking"), QStringLiteral("--disable-component-update"),
             QStringLiteral("--password-store=basic"), QStringLiteral("--user-data-dir=") + profile,
             QStringLiteral("--app=file://") + file},
            {},
            {}};
}

constexpr char firefoxSettings[] = R"(user_pref("browser.shell.checkDefaultBrowser", false);
user_pref("browser.aboutwelcome.enabled", false);
user_pref("browser.preonboarding.enabled", false);
user_pref("termsofuse.bypassNotification", true);
user_pref("datareporting.policy.dataSubmissionEnabled", false);
user_pref("datareporting.policy.dataSubmissionPolicyBypassNotification", true);
user_pref("toolkit.startup.max_resumed_crashes", -1);
user_pref("browser.startup.page", 0);
user_pref("network.dns.disabled", true);
user_pref("app.update.auto", false);
)";

Child::Setting firefoxOn(Stage &, const QString &file)
{
    const QString profile = qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/firefox");
    QDir().mkpath(profile);
    writeFile(profile + QStringLiteral("/user.js"), firefoxSettings);
    return {QStringLiteral("firefox-esr"),
            {QStringLiteral("--profile"), profile, QStringLiteral("--no-remote"),
             QStringLiteral("--new-instance"), QStringLiteral("file://") + file},
            {},
            {}};
}

// "Copy image" has the same access key in both browsers.
void copyPicture(const OpenProgram &browser)
{
    const auto &desktop = browser.stage.desktop;
    browser.stage.keyboard.click(desktop.geometry(browser.window).center(), 1, 3);
    const WindowMatch menu{{}, {}, true, 100};
    if (desktop.awaitWindow(menu, Desktop::Milliseconds(2000)))
        browser.press({QStringLiteral("Y")});
    if (!desktop.waitFor([&] { return !desktop.findWindow(menu); }, Desktop::Milliseconds(1000)))
        browser.press({QStringLiteral("Esc")}); // it took no key yet
}

QString sumOf(const QImage &picture)
{
    const auto rgba = picture.convertToFormat(QImage::Format_RGBA8888);
    quint32 sum = 2166136261U;
    for (int y = 0; y < rgba.height(); ++y)
        for (int x = 0; x < rgba.width() * 4; ++x)
            sum = (sum ^ rgba.constScanLine(y)[x]) * 16777619U;
    return QStringLiteral("%1x%2 %3").arg(rgba.width()).arg(rgba.height()).arg(sum);
}

} // namespace

const Program &chromium()
{
    static const Program program{.name = QStringLiteral("Chromium"),
                                 .package = QStringLiteral("chromium"),
                                 .windowClass = QStringLiteral("Chromium"),
                                 .command = chromiumOn,
                                 .makeBlank = page("blank %NUMBER%"),
                                 .changedTitle = QStringLiteral(" changed"),
                                 .startBound = Desktop::Milliseconds(120000),
                                 .attempt = Desktop::Milliseconds(10000)};
    return program;
}

const Program &firefox()
{
    static const Program program{.name = QStringLiteral("Firefox"),
                                 .package = QStringLiteral("firefox-esr"),
                                 .windowClass = QStringLiteral("firefox-esr"),
                                 .command = firefoxOn,
                                 .makeBlank = page("blank %NUMBER%"),
                                 .changedTitle = QStringLiteral(" changed"),
                                 .startBound = Desktop::Milliseconds(120000),
                                 .attempt = Desktop::Milliseconds(10000)};
    return program;
}

const Program &copyingThePicture(const Program &browser)
{
    static std::map<QString, Program> programs;
    const auto [entry, isNew] = programs.try_emplace(browser.name, browser);
    if (isNew)
        entry->second.copyByHand = copyPicture;
    return entry->second;
}

std::function<QString(const QString &)> page(const QByteArray &html)
{
    return pageOf("<body contenteditable>" + html);
}

std::function<QString(const QString &)> picturePage(const QByteArray &png)
{
    return pageOf("<body><img style=\"width:90vw;height:90vh\" src=\"data:image/png;base64," +
                  png.toBase64() + "\">");
}

std::function<QString(const QString &)> plainField(const QByteArray &text)
{
    return pageOf("<body><textarea>" + text + "</textarea>");
}

Proof showsThePicture()
{
    return [](const OpenProgram &browser, const Original &original) {
        const auto picture = QImage::fromData(original.copied.value("image/png"));
        require(!picture.isNull(), QStringLiteral("the first copy was no PNG"));
        const auto title = [&] { return browser.stage.desktop.title(browser.window); };
        require(browser.stage.desktop.waitFor([&] { return title().contains(sumOf(picture)); }),
                QStringLiteral("the page shows %1, not %2").arg(title(), sumOf(picture)));
    };
}
