#include "Norvane/app/Preferences.h"

#include "Platform/UserDefaults.h"
#include "Vesmo/Localisation.h"

#include <array>
#include <memory>

namespace {

namespace Key {
const QString shortcut = QStringLiteral("shortcut");
const QString maxItems = QStringLiteral("maxItems");
const QString retentionDays = QStringLiteral("retentionDays");
const QString autoPaste = QStringLiteral("autoPaste");
const QString position = QStringLiteral("position");
const QString saveImages = QStringLiteral("saveImages");
const QString recognizeText = QStringLiteral("recognizeText");
const QString saveFiles = QStringLiteral("saveFiles");
const QString maxClipMB = QStringLiteral("maxClipMB");
const QString showPreview = QStringLiteral("showPreview");
const QString ignoredApps = QStringLiteral("ignoredApps");
} // namespace Key

UserDefaults *sharedDefaults = nullptr;
std::unique_ptr<Preferences> sharedPreferences;

PopupPosition positionNamed(const QString &name)
{
    for (const auto position : {PopupPosition::caret, PopupPosition::mouse, PopupPosition::center}) {
        if (rawValue(position) == name)
            return position;
    }
    return PopupPosition::caret;
}

} // namespace

QString rawValue(PopupPosition position)
{
    switch (position) {
    case PopupPosition::mouse:
        return QStringLiteral("mouse");
    case PopupPosition::center:
        return QStringLiteral("center");
    case PopupPosition::caret:
        break;
    }
    return QStringLiteral("caret");
}

QString title(PopupPosition position)
{
    switch (position) {
    case PopupPosition::mouse:
        return L("Al puntatore");
    case PopupPosition::center:
        return L("Al centro dello schermo");
    case PopupPosition::caret:
        break;
    }
    return L("Al cursore di testo");
}

Preferences::Preferences(UserDefaults &defaults) : defaults_(defaults)
{
    const auto json = defaults.data(Key::shortcut);
    shortcut_ = decodeShortcut(json.value_or(QByteArray())).value_or(Shortcut());
    maxItems_ = defaults.integer(Key::maxItems).value_or(maxItems_);
    retentionDays_ = defaults.integer(Key::retentionDays).value_or(retentionDays_);
    autoPaste_ = defaults.boolean(Key::autoPaste).value_or(autoPaste_);
    position_ = positionNamed(defaults.string(Key::position).value_or(QString()));
    saveImages_ = defaults.boolean(Key::saveImages).value_or(saveImages_);
    recognizeText_ = defaults.boolean(Key::recognizeText).value_or(recognizeText_);
    saveFiles_ = defaults.boolean(Key::saveFiles).value_or(saveFiles_);
    maxClipMB_ = defaults.integer(Key::maxClipMB).value_or(maxClipMB_);
    showPreview_ = defaults.boolean(Key::showPreview).value_or(showPreview_);
    // Present but no list of strings is the user's to see empty, not a reason to bring the default back.
    if (defaults.contains(Key::ignoredApps))
        ignoredApps_ = defaults.stringList(Key::ignoredApps).value_or(QStringList());
    else
        ignoredApps_ = {QStringLiteral("com.apple.keychainaccess"), QStringLiteral("com.apple.Passwords")};
}

Preferences &Preferences::shared()
{
    if (!sharedPreferences) {
        if (!sharedDefaults)
            qFatal("Preferences::shared() needs setSharedDefaults() first");
        sharedPreferences = std::make_unique<Preferences>(*sharedDefaults);
    }
    return *sharedPreferences;
}

void Preferences::setSharedDefaults(UserDefaults &defaults)
{
    sharedPreferences.reset();
    sharedDefaults = &defaults;
}

template <typename Value>
void Preferences::change(Value &field, const Value &value, void (Preferences::*changed)(Value))
{
    Q_EMIT willChange();
    field = value;
    Q_EMIT(this->*changed)(value);
}

template <typename Value>
void Preferences::change(Value &field, const Value &value, void (Preferences::*changed)(const Value &))
{
    Q_EMIT willChange();
    field = value;
    Q_EMIT(this->*changed)(value);
}

// What is written is the field, not the argument: a listener may have set another value meanwhile.

void Preferences::setShortcut(const Shortcut &value)
{
    change(shortcut_, value, &Preferences::shortcutChanged);
    defaults_.setData(Key::shortcut, encodeShortcut(shortcut_));
}

void Preferences::setMaxItems(qint64 value)
{
    change(maxItems_, value, &Preferences::maxItemsChanged);
    defaults_.setInteger(Key::maxItems, maxItems_);
}

void Preferences::setRetentionDays(qint64 value)
{
    change(retentionDays_, value, &Preferences::retentionDaysChanged);
    defaults_.setInteger(Key::retentionDays, retentionDays_);
}

void Preferences::setAutoPaste(bool value)
{
    change(autoPaste_, value, &Preferences::autoPasteChanged);
    defaults_.setBoolean(Key::autoPaste, autoPaste_);
}

void Preferences::setPosition(PopupPosition value)
{
    change(position_, value, &Preferences::positionChanged);
    defaults_.setString(Key::position, rawValue(position_));
}

void Preferences::setSaveImages(bool value)
{
    change(saveImages_, value, &Preferences::saveImagesChanged);
    defaults_.setBoolean(Key::saveImages, saveImages_);
}

void Preferences::setRecognizeText(bool value)
{
    change(recognizeText_, value, &Preferences::recognizeTextChanged);
    defaults_.setBoolean(Key::recognizeText, recognizeText_);
}

void Preferences::setSaveFiles(bool value)
{
    change(saveFiles_, value, &Preferences::saveFilesChanged);
    defaults_.setBoolean(Key::saveFiles, saveFiles_);
}

void Preferences::setMaxClipMB(qint64 value)
{
    change(maxClipMB_, value, &Preferences::maxClipMBChanged);
    defaults_.setInteger(Key::maxClipMB, maxClipMB_);
}

void Preferences::setShowPreview(bool value)
{
    change(showPreview_, value, &Preferences::showPreviewChanged);
    defaults_.setBoolean(Key::showPreview, showPreview_);
}

void Preferences::setIgnoredApps(const QStringList &value)
{
    change(ignoredApps_, value, &Preferences::ignoredAppsChanged);
    defaults_.setStringList(Key::ignoredApps, ignoredApps_);
}

void Preferences::setRecordingShortcut(bool value)
{
    change(isRecordingShortcut_, value, &Preferences::recordingShortcutChanged);
}
