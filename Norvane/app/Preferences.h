#pragma once

#include "Norvane/app/Shortcut.h"

#include <QObject>
#include <QStringList>

class UserDefaults;

enum class PopupPosition { caret, mouse, center };
[[nodiscard]] QString rawValue(PopupPosition position);
[[nodiscard]] QString title(PopupPosition position);

// Every setting of the user. Main thread.
//
// A setter stores the value, emits `willChange` before and the setting's own signal after, and then writes it
// to the user defaults. Values are taken as stored, without a range check.
class Preferences : public QObject {
    Q_OBJECT

public:
    explicit Preferences(UserDefaults &defaults);

    // The one instance of the program, made on first use from the defaults given to `setSharedDefaults`,
    // which must be called before and whose defaults must live as long. Given anew (by tests), a new instance
    // is made.
    static Preferences &shared();
    static void setSharedDefaults(UserDefaults &defaults);

    [[nodiscard]] UserDefaults &defaults() const { return defaults_; }

    [[nodiscard]] const Shortcut &shortcut() const { return shortcut_; }
    [[nodiscard]] qint64 maxItems() const { return maxItems_; }
    [[nodiscard]] qint64 retentionDays() const { return retentionDays_; } // 0: no age limit
    [[nodiscard]] bool autoPaste() const { return autoPaste_; }
    [[nodiscard]] PopupPosition position() const { return position_; }
    [[nodiscard]] bool saveImages() const { return saveImages_; }
    [[nodiscard]] bool recognizeText() const { return recognizeText_; }
    [[nodiscard]] bool saveFiles() const { return saveFiles_; }
    [[nodiscard]] qint64 maxClipMB() const { return maxClipMB_; }
    [[nodiscard]] bool showPreview() const { return showPreview_; }
    [[nodiscard]] const QStringList &ignoredApps() const { return ignoredApps_; }
    [[nodiscard]] bool isRecordingShortcut() const { return isRecordingShortcut_; } // never stored

    void setShortcut(const Shortcut &value);
    void setMaxItems(qint64 value);
    void setRetentionDays(qint64 value);
    void setAutoPaste(bool value);
    void setPosition(PopupPosition value);
    void setSaveImages(bool value);
    void setRecognizeText(bool value);
    void setSaveFiles(bool value);
    void setMaxClipMB(qint64 value);
    void setShowPreview(bool value);
    void setIgnoredApps(const QStringList &value);
    void setRecordingShortcut(bool value);

Q_SIGNALS:
    void willChange();
    void shortcutChanged(const Shortcut &value);
    void maxItemsChanged(qint64 value);
    void retentionDaysChanged(qint64 value);
    void autoPasteChanged(bool value);
    void positionChanged(PopupPosition value);
    void saveImagesChanged(bool value);
    void recognizeTextChanged(bool value);
    void saveFilesChanged(bool value);
    void maxClipMBChanged(qint64 value);
    void showPreviewChanged(bool value);
    void ignoredAppsChanged(const QStringList &value);
    void recordingShortcutChanged(bool value);

private:
    template <typename Value>
    void change(Value &field, const Value &value, void (Preferences::*changed)(Value));
    template <typename Value>
    void change(Value &field, const Value &value, void (Preferences::*changed)(const Value &));

    UserDefaults &defaults_;
    Shortcut shortcut_;
    qint64 maxItems_ = 500;
    qint64 retentionDays_ = 0;
    bool autoPaste_ = true;
    PopupPosition position_ = PopupPosition::caret;
    bool saveImages_ = true;
    bool recognizeText_ = true;
    bool saveFiles_ = true;
    qint64 maxClipMB_ = 32;
    bool showPreview_ = true;
    QStringList ignoredApps_;
    bool isRecordingShortcut_ = false;
};
