#pragma once

#include "Platform/UserDefaults.h"

#include <QSettings>
#include <memory>

// The user's settings in $XDG_CONFIG_HOME/Norvane/settings.ini, written at every change. Main thread.
//
// The file is INI, section General, for the user's eyes only (0600, its folder 0700). Values are plain text
// that a person can edit: whole and decimal numbers, true or false, text, lists as JSON arrays, data as the
// JSON it is or else as base64. A value that does not read as the type asked for is absent.
//
// A file that is no INI is kept as settings.ini.bad before the first write replaces it. What cannot be
// written (full disk, read-only folder) stays in force until the program ends, and is logged once.
class XdgUserDefaults : public UserDefaults {
public:
    explicit XdgUserDefaults(const QString &path = defaultPath());

    [[nodiscard]] static QString defaultPath();

    [[nodiscard]] bool contains(const QString &key) const override;
    [[nodiscard]] std::optional<qint64> integer(const QString &key) const override;
    [[nodiscard]] std::optional<double> real(const QString &key) const override;
    [[nodiscard]] std::optional<bool> boolean(const QString &key) const override;
    [[nodiscard]] std::optional<QString> string(const QString &key) const override;
    [[nodiscard]] std::optional<QStringList> stringList(const QString &key) const override;
    [[nodiscard]] std::optional<QByteArray> data(const QString &key) const override;

    void setInteger(const QString &key, qint64 value) override;
    void setReal(const QString &key, double value) override;
    void setBoolean(const QString &key, bool value) override;
    void setString(const QString &key, const QString &value) override;
    void setStringList(const QString &key, const QStringList &value) override;
    void setData(const QString &key, const QByteArray &value) override;

private:
    void open();
    void write(const QString &key, const QString &text);
    void makePrivateFile() const;
    void keepDamagedFile();

    QString path;
    std::unique_ptr<QSettings> settings;
    bool isDamaged = false; // not an INI file, and not written yet
    bool isFailing = false; // the last write did not reach the disk
};
